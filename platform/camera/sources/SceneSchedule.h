#pragma once

#include "camera/sources/Scene.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace camera {

// The analysis learns for the first five seconds: whatever moves in their last part would leave its ghost in the model.
inline constexpr int64_t TRAFFIC_START = 5500; // ms

/// Gathers the actors of a scene.
class SceneSchedule {
public:
    /// A part of a way: pixels a second for some ms.
    struct Leg {
        int64_t time;
        int32_t speedX, speedY;
    };

    explicit SceneSchedule(int32_t width)
        : mWidth(width)
    {
    }

    /// A figure at (x, bottom) from start on, moving by pixels a second, down being positive.
    SceneActor& add(
        SceneFigure const& figure, int32_t x, int32_t bottom, int32_t speedX, int32_t speedY, int64_t start, int64_t time)
    {
        SceneActor actor;
        actor.figure = speedX < 0 ? figure.mirrored() : figure;
        actor.x = x;
        actor.bottom = bottom;
        actor.speedX = speedX;
        actor.speedY = speedY;
        actor.start = start;
        actor.stop = start + time;
        mActors.push_back(std::move(actor));
        return mActors.back();
    }

    /// Lets a figure cross the whole width; speed in pixels a second, negative to the left.
    SceneActor& cross(SceneFigure const& figure, int32_t bottom, int32_t speed, int64_t start)
    {
        return add(figure, speed < 0 ? mWidth : -figure.width(), bottom, speed, 0, start, crossingTime(figure, speed));
    }

    /// Lets a figure follow a way of at least one leg.
    SceneActor& follow(SceneFigure const& figure, int32_t x, int32_t bottom, int64_t start, std::vector<Leg> const& way)
    {
        SceneActor& actor = add(figure, x, bottom, way.front().speedX, way.front().speedY, start, 0);
        for (Leg const& leg : way) {
            if (actor.stop > actor.start)
                actor.turns.push_back({actor.stop, leg.speedX, leg.speedY});
            actor.stop += leg.time;
        }
        return actor;
    }

    int64_t crossingTime(SceneFigure const& figure, int32_t speed) const
    {
        return int64_t(mWidth + figure.width()) * 1000 / (speed < 0 ? -speed : speed);
    }

    /// In the order of their entry, numbered from 1.
    std::vector<SceneActor> take()
    {
        std::stable_sort(mActors.begin(), mActors.end(), [](auto const& a, auto const& b) { return a.start < b.start; });
        for (size_t i = 0; i < mActors.size(); ++i)
            mActors[i].id = uint32_t(i + 1);
        return std::move(mActors);
    }

private:
    int32_t const mWidth;
    std::vector<SceneActor> mActors;
};

} // namespace camera
