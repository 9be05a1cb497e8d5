#include "support/FrameInput.h"

#include "support/Dump.h"
#include "support/Pnm.h"
#include "application/CameraFrame.h"

#include <fstream>
#include <stdexcept>

namespace tools {

namespace {

constexpr size_t LINE_MAX_BYTES = size_t(64) << 20;
constexpr int64_t TIME_MAX = int64_t(1) << 42; // ms; enough for 139 years

/// A picture that frees itself.
struct OwnedImage : rk_image {
    OwnedImage()
        : rk_image{}
    {
    }
    ~OwnedImage() { rk_free_image(this); }
    OwnedImage(OwnedImage const&) = delete;
    OwnedImage& operator=(OwnedImage const&) = delete;
};

struct Entry {
    uint64_t frame = 0;
    int64_t position = 0;
    std::optional<int64_t> wall;
    bool colour = false;
};

class DumpInput final : public FrameInput {
public:
    explicit DumpInput(std::filesystem::path const& folder)
        : mFolder(folder)
    {
        readEntries();
    }

    bool advance() override
    {
        if (mNext == mEntries.size())
            return false;
        ++mNext;
        return true;
    }

    int64_t position() const override { return entry().position - mEntries.front().position; }
    std::optional<int64_t> wall() const override { return entry().wall; }
    std::optional<int64_t> length() const override
    {
        return mEntries.empty() ? 0 : mEntries.back().position - mEntries.front().position;
    }

    bool wrap(ProcessFrame& frame) override
    {
        readPicture(".pgm", 1, mGray);
        if (!entry().colour) {
            CameraFrame::setNativeImage(mGray, frame);
            return false;
        }
        readPicture(".ppm", 4, mColour);
        if (!rk_add_alpha(&mGray, &mColour))
            throw std::runtime_error(imagePath(".ppm").string() + ": is not of the size of its .pgm");
        CameraFrame::setNativeImage(mColour, frame);
        return true;
    }

private:
    Entry const& entry() const { return mEntries[mNext - 1]; }

    std::filesystem::path imagePath(char const* extension) const
    {
        return dump::imageFile(mFolder, entry().frame, "Native Image", extension);
    }

    void readPicture(char const* extension, uint32_t channels, rk_image& image)
    {
        readPnm(imagePath(extension), image);
        if (image.channels != channels)
            throw std::runtime_error(imagePath(extension).string() + ": is not what its name says");
    }

    void readEntries()
    {
        std::filesystem::path const path = dump::framesFile(mFolder);
        std::ifstream file(path, std::ios::binary);
        if (!file)
            throw std::runtime_error(mFolder.string() + ": is no folder of a dump: it has no readable frames.jsonl");
        std::string line;
        for (uint64_t number = 1; std::getline(file, line); ++number) {
            try {
                mEntries.push_back(readEntry(line));
            } catch (std::exception const& error) {
                throw std::runtime_error(path.string() + ", line " + std::to_string(number) + ": " + error.what());
            }
        }
    }

    Entry readEntry(std::string const& line) const
    {
        if (line.size() > LINE_MAX_BYTES)
            throw std::runtime_error("is too long");
        Json const json = Json::parse(line);
        Entry entry;
        entry.frame = uint64_t(readWhole(json, "frame"));
        entry.position = readWhole(json, "position_ms");
        if (json.contains("time_ms"))
            entry.wall = readWhole(json, "time_ms");
        if (!json.contains("colour") || !json["colour"].is_boolean())
            throw std::runtime_error("colour: expected true or false");
        entry.colour = json["colour"].get<bool>();
        if (!mEntries.empty() && entry.position < mEntries.back().position)
            throw std::runtime_error("position_ms: lies before that of the frame before");
        return entry;
    }

    static int64_t readWhole(Json const& json, char const* name)
    {
        if (json.is_object() && json.contains(name) && json[name].is_number_integer())
            if (auto const number = json[name].get<int64_t>(); number >= 0 && number <= TIME_MAX)
                return number;
        throw std::runtime_error(std::string(name) + ": expected a whole number from 0 on");
    }

    std::filesystem::path const mFolder;
    std::vector<Entry> mEntries;
    size_t mNext = 0; // index of the entry behind the current one
    OwnedImage mGray;
    OwnedImage mColour;
};

} // namespace

std::unique_ptr<FrameInput> openDump(std::string const& folder)
{
    return std::make_unique<DumpInput>(folder);
}

} // namespace tools
