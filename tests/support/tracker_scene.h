#pragma once

#include "detection/rk_tracker.h"
#include "image/rk_image.h"
#include "image/rk_vertex.h"

#include <cstdint>
#include <deque>
#include <vector>

/// A picture of 160 x 120 pixels with boxes of one colour each, the chain of their regions, and the frame record for them.
class TrackerScene {
public:
    static constexpr uint32_t Width = 160;
    static constexpr uint32_t Height = 120;

    TrackerScene()
        : mPixels(Width * Height * 4)
    {
        mImage = {mPixels.data(), Width, Height, 4, Width * Height * 4};
        frame.image = &mImage;
        frame.min_score = 0.5f;
        frame.defer_time = 1000;
        frame.min_track_length = 3;
        frame.max_track_merges = 2;
    }

    /// Takes all boxes away; the picture is black.
    TrackerScene& clear()
    {
        mPixels.assign(mPixels.size(), 0);
        mRegions.clear();
        frame.vertices = nullptr;
        frame.vertex_count = 0;
        return *this;
    }

    /// colour: red, green, blue as 0xRRGGBB.
    TrackerScene& paint(rk_bbox box, uint32_t colour)
    {
        for (uint32_t y = box.y; y < box.y + box.height; ++y)
            for (uint32_t x = box.x; x < box.x + box.width; ++x) {
                unsigned char* const pixel = &mPixels[4 * (x + Width * y)];
                pixel[0] = colour & 255;
                pixel[1] = colour >> 8 & 255;
                pixel[2] = colour >> 16 & 255;
            }
        return *this;
    }

    /// A region, at the end of the chain.
    TrackerScene& region(rk_bbox box, float motion = 1.0f)
    {
        mRegions.push_back({box.x, box.y, box.width, box.height, motion, nullptr});
        if (mRegions.size() > 1)
            mRegions[mRegions.size() - 2].next = &mRegions.back();
        frame.vertices = &mRegions.front();
        ++frame.vertex_count;
        return *this;
    }

    /// A painted region.
    TrackerScene& blob(rk_bbox box, uint32_t colour, float motion = 1.0f) { return paint(box, colour).region(box, motion); }

    rk_tracker_frame frame = {};

private:
    std::vector<unsigned char> mPixels;
    rk_image mImage = {};
    std::deque<rk_vertex> mRegions;
};

/// An rk_object_list for one test.
struct ListOwner : rk_object_list {
    explicit ListOwner(uint32_t is_static_list = 0) { rk_object_list_init(this, is_static_list); }
    ~ListOwner() { rk_object_list_free(this); }
    ListOwner(ListOwner const&) = delete;
    ListOwner& operator=(ListOwner const&) = delete;

    std::vector<uint32_t> ids() const
    {
        std::vector<uint32_t> found;
        for (rk_object const* object = objects; object; object = object->next)
            found.push_back(object->id);
        return found;
    }
};
