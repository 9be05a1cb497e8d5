#include "goals/PixelRun.h"

#include "goals/Clip.h"
#include "goals/Extraction.h"
#include "goals/Peer.h"
#include "image/rk_row.h"

#include <cstring>
#include <functional>

namespace {

constexpr uint32_t learnFrames = 60;
constexpr uint32_t frames = 180;
constexpr uint32_t updateInterval = 13; // frames: once in 500 ms

/// One road through the pipeline in one form, with a model of its own.
class Candidate {
public:
    Candidate(char const* form, uint32_t width, uint32_t height)
        : mForm(form)
        , mExtraction(width, height)
    {
    }

    /// Stages are timed one by one: motion, comparison with threshold, morphology, components.
    void run(rk_image const& frame, double (&stages)[4])
    {
        rk_row_use(mForm);
        stages[0] = seconds([&] { mExtraction.detectMotion(frame); });
        stages[1] = seconds([&] {
            mExtraction.compare(frame);
            mExtraction.threshold();
        });
        stages[2] = seconds([&] { mExtraction.closeAndOpen(); });
        stages[3] = seconds([&] { mExtraction.label(); });
        rk_row_use(nullptr);
    }

    double learn(rk_image const& frame)
    {
        rk_row_use(mForm);
        double const spent = seconds([&] { mExtraction.learn(frame); });
        rk_row_use(nullptr);
        return spent;
    }

private:
    char const* const mForm; // null: the fastest
    Extraction mExtraction;
};

double sum(double const (&stages)[4])
{
    return stages[0] + stages[1] + stages[2] + stages[3];
}

} // namespace

PixelRun::PixelRun(std::string const& video, uint32_t width, uint32_t height)
{
    Clip clip(video, width, height, frames);
    Candidate fast(nullptr, width, height), slow("plain", width, height);
    auto const mixture = Peer::mixture();
    auto const counting = Peer::counting();
    std::vector<unsigned char> target(size_t(width) * height);

    for (uint32_t n = 0; n < frames; ++n) {
        rk_image const frame = clip.frame(n);
        bool const isMeasured = n >= learnFrames;
        bool const learns = !isMeasured || n % updateInterval == 0;
        auto const keep = [=](Samples& samples, double value) {
            if (isMeasured)
                samples.push_back(value);
        };
        std::function<void()> const candidates[] = {
            [&] { keep(copy, seconds([&] { memcpy(target.data(), frame.data, target.size()); })); },
            [&] {
                double stages[4];
                fast.run(frame, stages);
                keep(motion, stages[0]);
                keep(compare, stages[1]);
                keep(morphology, stages[2]);
                keep(components, stages[3]);
                keep(pipeline, sum(stages));
                if (!learns)
                    return;
                double const learned = fast.learn(frame);
                keep(update, learned);
                keep(learning, sum(stages) + learned);
            },
            [&] {
                double stages[4];
                slow.run(frame, stages);
                keep(plain, sum(stages));
                if (learns)
                    slow.learn(frame);
            },
            [&] {
                if (!mixture)
                    return;
                double const subtraction = seconds([&] { mixture->subtract(frame); });
                keep(peerSubtraction, subtraction);
                keep(peer, subtraction + seconds([&] { mixture->findRegions(); }));
            },
            [&] {
                if (counting)
                    keep(countingPeer, seconds([&] {
                        counting->subtract(frame);
                        counting->findRegions();
                    }));
            },
        };
        constexpr std::size_t count = std::size(candidates);
        for (std::size_t i = 0; i < count; ++i)
            candidates[(i + n) % count]();
    }
}
