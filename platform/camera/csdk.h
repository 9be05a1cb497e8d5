/**
 * The interface of the camera maker's library, as the application uses it. On a camera the maker's library stands behind it;
 * here the stand-in of this folder does (libsdk.so), which is driven by environment variables (see README.md beside this file).
 *
 * All functions but csdk_strerr belong to one thread, the one that called csdk_init. The three callbacks come from a thread of
 * the library. The library is not re-entrant: one application, one camera. After csdk_deinit it can be initialised again.
 */
#pragma once

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#define CSDK_EXPORT __attribute__((visibility("default")))

#ifdef __cplusplus
extern "C" {
#endif

typedef struct csdk_video csdk_video;   /* resolutions and frames */
typedef struct csdk_image csdk_image;   /* day and night, infrared cut filter and light */
typedef struct csdk_vframe csdk_vframe; /* one frame at a time, refreshed in place */

/** Day or night. A plain integer, since a camera may report a value that is neither. */
typedef int32_t csdk_daynight;
enum { CSDK_DAY = 1, CSDK_NIGHT = 2 };

/** Bits of csdk_settings.services. */
enum {
    CSDK_SERVICE_AUDIO = 1 << 0,
    CSDK_SERVICE_VIDEO = 1 << 1,
    CSDK_SERVICE_SERIAL = 1 << 2,
    CSDK_SERVICE_EVENTS = 1 << 3,
    CSDK_SERVICE_PTZ = 1 << 4
};

/** What the application tells the library before csdk_init. The texts stay the application's and must live until csdk_deinit. */
typedef struct csdk_settings_record {
    char const* application_name;
    char const* vendor_name;
    int32_t interface_version; /* 2 */
    uint8_t log_enabled;       /* 0 or 1 */
    uint8_t services;          /* CSDK_SERVICE_... */
    uint8_t reserved[2];
    char const* log_path;
    char const* error_log_path;
    uint8_t reserved2;
    uint8_t callbacks_enabled; /* 1: the functions below are called when they are not null */
    uint8_t reserved3[2];
    void (*on_daynight)(csdk_daynight mode);
    void (*on_ircut)(bool on);
    void (*on_irled)(bool on);
} csdk_settings_record;

/** The handles that csdk_init fills in and csdk_deinit clears. */
typedef struct csdk_record {
    csdk_video* video;
    void* audio;
    void* serial;
    void* ptz;
    csdk_image* image;
} csdk_record;

CSDK_EXPORT extern csdk_settings_record csdk_settings;
CSDK_EXPORT extern csdk_record csdk;

/** 0, or an error code for csdk_strerr. Calling it while the library is initialised is an error. */
CSDK_EXPORT int csdk_init(void);

/** Ends the library; frame handles must have been freed. Does nothing when it is not initialised. */
CSDK_EXPORT void csdk_deinit(void);

/** The text for an error code of csdk_init, with details when it is the last one returned. Never null; valid until csdk_init. */
CSDK_EXPORT char const* csdk_strerr(int error);

/**
 * Delivers the offered resolutions one by one, in no particular order: 0 with a size in pixels, non-zero after the last one. A
 * further call begins anew.
 */
CSDK_EXPORT int csdk_next_resolution(csdk_video* video, int32_t* width, int32_t* height);

/**
 * Selects one of the offered resolutions, before the first frame handle is taken; without it the camera delivers the first one
 * that it offers. 0, or negative when the size is not offered or frames are under way already.
 */
CSDK_EXPORT int csdk_set_resolution(csdk_video* video, int32_t width, int32_t height);

/**
 * A frame handle, which holds a black frame until its first refresh; null at the end of the video. There is one at a time: null
 * while another one is out.
 */
CSDK_EXPORT csdk_vframe* csdk_get_vframe(csdk_video* video);

/** Waits for the next frame and puts it into the handle. 0, or non-zero when none came; the handle then keeps its frame. */
CSDK_EXPORT int csdk_refresh_vframe(csdk_vframe* frame);

/**
 * The frame's bytes, valid and unchanged until the next refresh or csdk_free_vframe: width x height bytes of luma, row by row,
 * then ceil(width / 2) x ceil(height / 2) pairs of chroma, one for each 2 x 2 block, row by row: first the byte that scales blue
 * (Cb), then the one that scales red (Cr). Neutral chroma is 128.
 */
CSDK_EXPORT unsigned char const* csdk_vframe_ptr(csdk_vframe const* frame);
CSDK_EXPORT int32_t csdk_vframe_width(csdk_vframe const* frame);
CSDK_EXPORT int32_t csdk_vframe_height(csdk_vframe const* frame);

/** Releases the handle. Null is allowed. */
CSDK_EXPORT void csdk_free_vframe(csdk_vframe* frame);

CSDK_EXPORT csdk_daynight csdk_get_daynight_mode(csdk_image* image);

/** Non-zero for yes. */
CSDK_EXPORT int csdk_is_ircut_supported(csdk_image* image);
CSDK_EXPORT int csdk_is_ircut_on(csdk_image* image);
CSDK_EXPORT int csdk_is_irled_supported(csdk_image* image);
CSDK_EXPORT int csdk_is_irled_enabled(csdk_image* image);
CSDK_EXPORT int csdk_is_irled_on(csdk_image* image);

/** Hands an event to the camera. options: 0. length: bytes of payload. 0, or an error code. */
CSDK_EXPORT int csdk_event_send(char const* payload, int options, size_t length);

#ifdef __cplusplus
}

/* The maker's library is built for cameras with 4-byte pointers and reads these records by their offsets. */
static_assert(sizeof(void*) != 4 || sizeof(csdk_settings_record) == 40, "csdk_settings is 40 bytes");
static_assert(sizeof(void*) != 4 ||
        (offsetof(csdk_settings_record, application_name) == 0 && offsetof(csdk_settings_record, vendor_name) == 4 &&
            offsetof(csdk_settings_record, interface_version) == 8),
    "offsets of csdk_settings");
static_assert(sizeof(void*) != 4 ||
        (offsetof(csdk_settings_record, log_enabled) == 12 && offsetof(csdk_settings_record, services) == 13 &&
            offsetof(csdk_settings_record, log_path) == 16 && offsetof(csdk_settings_record, error_log_path) == 20),
    "offsets of csdk_settings");
static_assert(sizeof(void*) != 4 ||
        (offsetof(csdk_settings_record, callbacks_enabled) == 25 && offsetof(csdk_settings_record, on_daynight) == 28 &&
            offsetof(csdk_settings_record, on_ircut) == 32 && offsetof(csdk_settings_record, on_irled) == 36),
    "offsets of csdk_settings");
static_assert(offsetof(csdk_record, video) == 0 && offsetof(csdk_record, image) == 4 * sizeof(void*), "offsets of csdk");
#endif
