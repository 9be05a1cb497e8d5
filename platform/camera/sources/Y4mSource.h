#pragma once

#include "camera/sources/FrameSource.h"

#include <istream>

namespace camera {

/// A YUV4MPEG2 stream: a header line, then frames of a line "FRAME" and raw planes. 8 bits, 4:2:0 (all sitings), 4:2:2, 4:4:4
/// and mono; the values are passed on as they are, chroma averaged down to one pair a 2 x 2 block. Interlaced frames are taken
/// as they stand.
class Y4mSource final : public FrameSource {
public:
    /// name: for messages. rate: in place of the header's; without either it is 25 frames per second.
    /// Throws SourceError for a header that cannot be read.
    Y4mSource(std::unique_ptr<std::istream> stream, std::string name, std::optional<FrameRate> rate = std::nullopt);

    static std::unique_ptr<Y4mSource> openFile(std::string const& path, std::optional<FrameRate> rate = std::nullopt);

    uint32_t width() const override { return mWidth; }
    uint32_t height() const override { return mHeight; }
    bool advance() override;
    int64_t time() const override { return mRate.time(mFrames - 1); }
    std::optional<int64_t> duration() const override;
    void picture(Picture& picture) override;

private:
    [[noreturn]] void fail(std::string const& what) const;
    std::string readLine(size_t limit, char const* what);
    void readHeader(std::optional<FrameRate> rate);
    void readSize(std::string const& value, uint32_t& size);
    void readRate(std::string const& value);
    void readChroma(std::string const& value);
    bool readFrame();
    size_t frameSize() const;
    void measureStream();

    std::unique_ptr<std::istream> mStream;
    std::string mName;
    uint32_t mWidth = 0;
    uint32_t mHeight = 0;
    FrameRate mRate;
    uint32_t mStepX = 2; // luma columns and rows for one chroma sample; 0 for mono
    uint32_t mStepY = 2;
    uint64_t mFrames = 0;    // read so far
    int64_t mStreamSize = 0; // bytes of all frames; 0 when the stream does not tell
    bool mEnded = false;
    std::vector<uint8_t> mPlanes; // the current frame as in the stream
};

} // namespace camera
