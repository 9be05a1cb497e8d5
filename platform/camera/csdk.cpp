#include "camera/csdk.h"

#include "camera/CameraOptions.h"
#include "camera/DayNight.h"
#include "camera/EventFile.h"
#include "camera/Video.h"

#include <algorithm>
#include <memory>

// What stands behind the handles of the C interface.
struct csdk_video {
    explicit csdk_video(camera::CameraOptions const& options)
        : video(options)
    {
    }
    camera::Video video;
    size_t nextResolution = 0;
    bool frameIsOut = false;
};

struct csdk_image {
    explicit csdk_image(camera::CameraOptions const& options)
        : dayNight(options.dayNight, csdk_settings)
    {
    }
    camera::DayNight dayNight;
};

struct csdk_vframe {
    csdk_video& owner;
    camera::Picture picture;
};

csdk_settings_record csdk_settings;
csdk_record csdk;

namespace {

enum Error { ERROR_NONE, ERROR_INITIALISED, ERROR_FAULT, ERROR_OPTION, ERROR_SOURCE, ERROR_EVENTS, ERROR_OTHER, ERROR_ARGUMENT };

/// All that lives between csdk_init and csdk_deinit.
struct Library {
    explicit Library(camera::CameraOptions const& options)
        : faults(options.faults)
        , video(options)
        , events(options.events)
        , image(options) // last: from here on callbacks come
    {
    }
    camera::Faults faults;
    uint64_t eventFailures = 0;
    csdk_video video;
    camera::EventFile events;
    csdk_image image;
};

std::unique_ptr<Library> library;
int lastError = ERROR_NONE;
std::string lastText;

int fail(int error, std::string const& text)
{
    lastError = error;
    lastText = text;
    return error;
}

int initialise()
{
    if (library)
        return fail(ERROR_INITIALISED, "the camera library is initialised already");
    try {
        auto const options = camera::CameraOptions::fromEnvironment();
        if (options.faults.init)
            return fail(ERROR_FAULT, "CSDK_FAULTS asks for a failing initialisation");
        library = std::make_unique<Library>(options);
    } catch (camera::OptionError const& error) {
        return fail(ERROR_OPTION, error.what());
    } catch (camera::SourceError const& error) {
        return fail(ERROR_SOURCE, error.what());
    } catch (std::runtime_error const& error) {
        return fail(ERROR_EVENTS, error.what());
    } catch (std::exception const& error) {
        return fail(ERROR_OTHER, error.what());
    }
    csdk.video = &library->video;
    csdk.image = &library->image;
    return fail(ERROR_NONE, "no error");
}

bool isNight(csdk_image const* image)
{
    return image != nullptr && image->dayNight.mode() == CSDK_NIGHT;
}

} // namespace

int csdk_init(void)
{
    return initialise();
}

void csdk_deinit(void)
{
    csdk = {};
    library.reset();
}

char const* csdk_strerr(int error)
{
    if (error == lastError)
        return lastText.c_str();
    switch (error) {
    case ERROR_NONE:
        return "no error";
    case ERROR_INITIALISED:
        return "the camera library is initialised already";
    case ERROR_FAULT:
        return "a fault was asked for";
    case ERROR_OPTION:
        return "an environment variable has a bad value";
    case ERROR_SOURCE:
        return "the video source cannot be opened";
    case ERROR_EVENTS:
        return "the events file cannot be opened";
    case ERROR_ARGUMENT:
        return "a handle or an argument is missing";
    default:
        return "unknown error";
    }
}

int csdk_next_resolution(csdk_video* video, int32_t* width, int32_t* height)
{
    if (video == nullptr || width == nullptr || height == nullptr)
        return ERROR_ARGUMENT;
    auto const& sizes = video->video.resolutions();
    if (video->nextResolution >= sizes.size()) {
        video->nextResolution = 0;
        return 1;
    }
    camera::FrameSize const size = sizes[video->nextResolution++];
    *width = int32_t(size.width);
    *height = int32_t(size.height);
    return 0;
}

int csdk_set_resolution(csdk_video* video, int32_t width, int32_t height)
{
    bool const valid = video != nullptr && width > 0 && height > 0;
    return valid && video->video.setSize({uint32_t(width), uint32_t(height)}) ? 0 : -1;
}

csdk_vframe* csdk_get_vframe(csdk_video* video)
{
    if (video == nullptr || video->frameIsOut || video->video.ended())
        return nullptr;
    auto frame = std::make_unique<csdk_vframe>(csdk_vframe{*video, {}});
    camera::FrameSize const size = video->video.size();
    frame->picture.resize(size.width, size.height);
    std::fill_n(frame->picture.chroma(), frame->picture.bytes.size() - frame->picture.lumaSize(), uint8_t(128));
    video->frameIsOut = true;
    return frame.release();
}

int csdk_refresh_vframe(csdk_vframe* frame)
{
    if (frame == nullptr)
        return ERROR_ARGUMENT;
    return frame->owner.video.next(frame->picture) ? 0 : 1;
}

unsigned char const* csdk_vframe_ptr(csdk_vframe const* frame)
{
    return frame == nullptr ? nullptr : frame->picture.luma();
}

int32_t csdk_vframe_width(csdk_vframe const* frame)
{
    return frame == nullptr ? 0 : int32_t(frame->picture.width);
}

int32_t csdk_vframe_height(csdk_vframe const* frame)
{
    return frame == nullptr ? 0 : int32_t(frame->picture.height);
}

void csdk_free_vframe(csdk_vframe* frame)
{
    if (frame == nullptr)
        return;
    frame->owner.frameIsOut = false;
    delete frame;
}

csdk_daynight csdk_get_daynight_mode(csdk_image* image)
{
    return image == nullptr ? 0 : image->dayNight.mode();
}

int csdk_is_ircut_supported(csdk_image* image)
{
    return image != nullptr;
}

int csdk_is_ircut_on(csdk_image* image)
{
    return image != nullptr && !isNight(image);
}

int csdk_is_irled_supported(csdk_image* image)
{
    return image != nullptr;
}

int csdk_is_irled_enabled(csdk_image* image)
{
    return image != nullptr;
}

int csdk_is_irled_on(csdk_image* image)
{
    return isNight(image);
}

int csdk_event_send(char const* payload, int, size_t length)
{
    if (!library || payload == nullptr)
        return ERROR_ARGUMENT;
    if (library->eventFailures < library->faults.eventFailures) {
        ++library->eventFailures;
        return ERROR_FAULT;
    }
    return library->events.append({payload, length}) ? 0 : ERROR_EVENTS;
}
