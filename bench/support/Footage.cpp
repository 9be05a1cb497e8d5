#include "support/Footage.h"

#include "camera/sources/FrameSource.h"
#include "camera/sources/Scaler.h"

#include <cstdio>
#include <cstdlib>

namespace {

template <class Take> void readVideo(Take take)
{
    char const* const video = std::getenv("CONTRAFLOW_BENCH_VIDEO");
    try {
        auto const source = camera::openSource(video ? video : "scene:street");
        bool const fits = source->width() == Footage::width && source->height() == Footage::height;
        camera::Picture picture, scaled;
        camera::Scaler scaler;
        for (uint32_t n = 0; n < Footage::framesMax && source->advance(); ++n) {
            source->picture(picture);
            if (!fits)
                scaler.scale(picture, scaled, Footage::width, Footage::height);
            take(fits ? picture : scaled);
        }
    } catch (camera::SourceError const& error) {
        std::fprintf(stderr, "%s\n", error.what());
        std::exit(1);
    }
}

} // namespace

Footage const& Footage::get()
{
    static Footage const footage;
    return footage;
}

Footage::Footage()
{
    readVideo([&](camera::Picture const& picture) {
        mPixels.insert(mPixels.end(), picture.luma(), picture.luma() + picture.lumaSize());
    });
    if (frames() <= learnFrames) {
        std::fprintf(stderr, "The video has %u frames; more than %u are needed.\n", frames(), learnFrames);
        std::exit(1);
    }
}

uint32_t Footage::decode()
{
    uint32_t count = 0;
    readVideo([&](camera::Picture const&) { ++count; });
    return count;
}
