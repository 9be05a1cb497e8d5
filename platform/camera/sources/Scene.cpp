#include "camera/sources/Scene.h"

#include "camera/sources/SceneRandom.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace camera {

namespace {

constexpr uint32_t NOISE_OFFSETS = 1u << 16;
constexpr int64_t DRIFT_PERIOD = 40000; // ms
constexpr int32_t DRIFT = 30;           // 1/1024 of the light

int64_t floorDivide(int64_t a, int64_t b)
{
    int64_t const quotient = a / b;
    return a % b < 0 ? quotient - 1 : quotient;
}

/// Bell-shaped noise: the mean of four uniform values from -limit to limit, so a standard deviation of 0.29 limit.
std::vector<int8_t> makeNoise(size_t size, int32_t limit, uint32_t seed)
{
    SceneRandom random(seed);
    std::vector<int8_t> noise(size);
    for (int8_t& value : noise) {
        int32_t sum = 0;
        for (int i = 0; i < 4; ++i)
            sum += random.range(-limit, limit);
        value = int8_t(sum / 4);
    }
    return noise;
}

uint32_t noiseOffset(uint64_t frame, uint32_t seed)
{
    return SceneRandom(uint32_t(frame) * 2246822519u + seed).next() % NOISE_OFFSETS;
}

/// A wave of one period from -1024 to 1024, in two parabolas.
int32_t wave(int64_t time, int64_t period)
{
    int64_t const half = period / 2, phase = time % period, x = phase % half;
    int32_t const arch = int32_t(4096 * x * (half - x) / (half * half));
    return phase < half ? arch : -arch;
}

/// bytes = (bytes - zero) * gain / 1024 + zero + noise, clamped.
void applyLight(uint8_t* bytes, size_t count, int8_t const* noise, int32_t gain, int32_t zero)
{
    for (size_t i = 0; i < count; ++i) {
        int32_t const value = (((int32_t(bytes[i]) - zero) * gain) >> 10) + zero + noise[i];
        bytes[i] = uint8_t(value < 0 ? 0 : value > 255 ? 255 : value);
    }
}

struct Position {
    int32_t x, y;
};

Position positionAt(SceneActor const& actor, int64_t time)
{
    SceneTurn leg = {actor.start, actor.speedX, actor.speedY};
    int64_t x = 0, y = 0; // thousandths of pixels from where it began
    auto const walk = [&](int64_t until) {
        x += leg.speedX * (until - leg.at);
        y += leg.speedY * (until - leg.at);
    };
    for (SceneTurn const& turn : actor.turns) {
        if (turn.at >= time)
            break;
        walk(turn.at);
        leg = turn;
    }
    walk(time);
    return {actor.x + int32_t(floorDivide(x, 1000)), actor.bottom - actor.figure.height() + int32_t(floorDivide(y, 1000))};
}

/// The step of its walk that an actor shows; the first while it stands.
size_t stepAt(SceneActor const& actor, int64_t time)
{
    SceneTurn leg = {actor.start, actor.speedX, actor.speedY};
    for (SceneTurn const& turn : actor.turns)
        if (turn.at < time)
            leg = turn;
    if (leg.speedX == 0 && leg.speedY == 0)
        return 0;
    return size_t((time - actor.start) / actor.figure.stepTime) % actor.figure.steps.size();
}

bool onStage(SceneActor const& actor, int64_t time)
{
    return time >= actor.start && time < actor.stop;
}

void drawActor(SceneActor const& actor, int64_t time, Picture& picture)
{
    Position const at = positionAt(actor, time);
    int32_t const width = actor.figure.width(), bottom = at.y + actor.figure.height();
    drawShadow(picture, at.x - 2, bottom - 4, width + 4, 7);
    actor.figure.steps[stepAt(actor, time)].drawOn(picture, at.x, at.y);
}

} // namespace

double SceneActor::heading() const
{
    double const degrees = std::atan2(double(-speedY), double(speedX)) * 180.0 / std::numbers::pi;
    return degrees < 0 ? degrees + 360.0 : degrees;
}

Scene::Scene(Picture backdrop, std::vector<SceneActor> actors, std::vector<SceneLight> lights, int64_t duration)
    : mBackdrop(std::move(backdrop))
    , mActors(std::move(actors))
    , mLights(std::move(lights))
    , mDuration(duration)
    , mLumaNoise(makeNoise(mBackdrop.lumaSize() + NOISE_OFFSETS, 12, 11))
    , mChromaNoise(makeNoise(mBackdrop.bytes.size() - mBackdrop.lumaSize() + NOISE_OFFSETS, 5, 12))
{
    for (size_t i = 0; i < mActors.size(); ++i)
        mDrawOrder.push_back(i);
    std::stable_sort(
        mDrawOrder.begin(), mDrawOrder.end(), [this](size_t a, size_t b) { return mActors[a].bottom < mActors[b].bottom; });
}

int32_t Scene::gain(int64_t time) const
{
    int32_t gain = 1024 + wave(time, DRIFT_PERIOD) * DRIFT / 1024;
    for (SceneLight const& light : mLights)
        if (time >= light.start && time < light.stop)
            gain = gain * light.gain / 1024;
    return gain;
}

std::vector<SceneObject> Scene::objectsAt(int64_t time) const
{
    std::vector<SceneObject> objects;
    for (SceneActor const& actor : mActors) {
        if (!onStage(actor, time))
            continue;
        Position const at = positionAt(actor, time);
        int32_t const left = std::max(at.x, 0), right = std::min(at.x + actor.figure.width(), int32_t(width()));
        int32_t const top = std::max(at.y, 0), bottom = std::min(at.y + actor.figure.height(), int32_t(height()));
        if (left < right && top < bottom)
            objects.push_back({&actor, left, top, right - left, bottom - top});
    }
    return objects;
}

void Scene::draw(int64_t time, uint64_t frame, Picture& picture) const
{
    picture = mBackdrop;
    for (size_t const index : mDrawOrder)
        if (onStage(mActors[index], time))
            drawActor(mActors[index], time, picture);
    int32_t const light = gain(time);
    size_t const luma = picture.lumaSize();
    applyLight(picture.luma(), luma, mLumaNoise.data() + noiseOffset(frame, 1), light, 0);
    applyLight(picture.chroma(), picture.bytes.size() - luma, mChromaNoise.data() + noiseOffset(frame, 2), light, 128);
}

} // namespace camera
