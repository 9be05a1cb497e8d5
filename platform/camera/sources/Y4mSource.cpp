#include "camera/sources/Y4mSource.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fstream>
#include <sstream>

namespace camera {

namespace {

constexpr size_t MAX_HEADER = 4096; // bytes of the stream header line
constexpr size_t MAX_FRAME_HEADER = 256;
constexpr size_t CHUNK = 1u << 20;

uint32_t divideUp(uint32_t a, uint32_t b)
{
    return (a + b - 1) / b;
}

/// One plane of chroma to every second byte of target, averaged over what falls into each 2 x 2 block of luma.
void subsample(uint8_t const* plane, uint32_t width, uint32_t height, uint32_t perBlockX, uint32_t perBlockY, uint8_t* target)
{
    for (uint32_t y = 0; y < height; y += perBlockY) {
        uint32_t const rows = std::min(perBlockY, height - y);
        for (uint32_t x = 0; x < width; x += perBlockX) {
            uint32_t const columns = std::min(perBlockX, width - x);
            uint32_t sum = 0;
            for (uint32_t row = 0; row < rows; ++row)
                for (uint32_t column = 0; column < columns; ++column)
                    sum += plane[size_t(y + row) * width + x + column];
            *target = uint8_t((sum + rows * columns / 2) / (rows * columns));
            target += 2;
        }
    }
}

} // namespace

std::unique_ptr<Y4mSource> Y4mSource::openFile(std::string const& path, std::optional<FrameRate> rate)
{
    auto file = std::make_unique<std::ifstream>(path, std::ios::binary);
    if (!*file)
        throw SourceError(path + ": cannot be opened: " + std::strerror(errno));
    return std::make_unique<Y4mSource>(std::move(file), path, rate);
}

Y4mSource::Y4mSource(std::unique_ptr<std::istream> stream, std::string name, std::optional<FrameRate> rate)
    : mStream(std::move(stream))
    , mName(std::move(name))
{
    readHeader(rate);
    measureStream();
}

std::optional<int64_t> Y4mSource::duration() const
{
    if (mStreamSize == 0)
        return std::nullopt;
    return mRate.time(uint64_t(mStreamSize) / (frameSize() + std::strlen("FRAME\n")));
}

void Y4mSource::measureStream()
{
    auto const here = mStream->tellg();
    if (here != std::istream::pos_type(-1) && mStream->seekg(0, std::ios::end))
        mStreamSize = int64_t(mStream->tellg() - here);
    mStream->clear(); // pipes cannot seek
    if (here != std::istream::pos_type(-1))
        mStream->seekg(here);
    mStream->clear();
}

/// Bytes of a frame in the stream, without its header.
size_t Y4mSource::frameSize() const
{
    size_t const chroma = mStepX == 0 ? 0 : size_t(2) * divideUp(mWidth, mStepX) * divideUp(mHeight, mStepY);
    return size_t(mWidth) * mHeight + chroma;
}

void Y4mSource::readHeader(std::optional<FrameRate> rate)
{
    std::istringstream fields(readLine(MAX_HEADER, "the header"));
    std::string field;
    fields >> field;
    if (field != "YUV4MPEG2")
        fail("is no Y4M stream: it does not begin with YUV4MPEG2");
    while (fields >> field) {
        std::string const value = field.substr(1);
        switch (field[0]) {
        case 'W':
            readSize(value, mWidth);
            break;
        case 'H':
            readSize(value, mHeight);
            break;
        case 'F':
            readRate(value);
            break;
        case 'C':
            readChroma(value);
            break;
        default: // interlacing, aspect and comments change nothing here
            break;
        }
    }
    if (mWidth == 0 || mHeight == 0)
        fail("has no width or no height in its header");
    if (uint64_t(mWidth) * mHeight > MAX_PIXELS)
        fail("is too large: " + std::to_string(mWidth) + "x" + std::to_string(mHeight) + " pixels");
    if (rate)
        mRate = *rate;
}

bool Y4mSource::advance()
{
    if (mEnded)
        return false;
    mEnded = true; // also when reading throws
    if (!readFrame())
        return false;
    mEnded = false;
    ++mFrames;
    return true;
}

bool Y4mSource::readFrame()
{
    if (mStream->peek() == std::istream::traits_type::eof())
        return false;
    std::string const number = "frame " + std::to_string(mFrames);
    std::string const header = readLine(MAX_FRAME_HEADER, number.c_str());
    if (header != "FRAME" && !header.starts_with("FRAME "))
        fail("has no FRAME line where " + number + " should begin");

    size_t const size = frameSize();
    // Piece by piece, so that a header alone cannot make us allocate a large frame.
    for (size_t have = 0; have < size;) {
        size_t const piece = std::min(CHUNK, size - have);
        if (mPlanes.size() < have + piece)
            mPlanes.resize(have + piece);
        mStream->read(reinterpret_cast<char*>(mPlanes.data() + have), std::streamsize(piece));
        if (size_t(mStream->gcount()) != piece)
            fail("ends in the middle of " + number);
        have += piece;
    }
    return true;
}

void Y4mSource::picture(Picture& picture)
{
    picture.resize(mWidth, mHeight);
    size_t const luma = picture.lumaSize();
    std::copy_n(mPlanes.begin(), luma, picture.bytes.begin());
    if (mStepX == 0) {
        std::fill(picture.bytes.begin() + std::ptrdiff_t(luma), picture.bytes.end(), uint8_t(128));
        return;
    }
    uint32_t const width = divideUp(mWidth, mStepX), height = divideUp(mHeight, mStepY);
    uint8_t const* const cb = mPlanes.data() + luma;
    subsample(cb, width, height, 2 / mStepX, 2 / mStepY, picture.chroma());
    subsample(cb + size_t(width) * height, width, height, 2 / mStepX, 2 / mStepY, picture.chroma() + 1);
}

void Y4mSource::readSize(std::string const& value, uint32_t& size)
{
    auto const [rest, error] = std::from_chars(value.data(), value.data() + value.size(), size);
    if (error != std::errc() || rest != value.data() + value.size() || size == 0 || size > MAX_PIXELS)
        fail("has a bad width or height in its header: \"" + value + "\"");
}

void Y4mSource::readRate(std::string const& value)
{
    if (value == "0:0") // unknown: what the caller gave, or 25
        return;
    std::string fraction = value;
    std::replace(fraction.begin(), fraction.end(), ':', '/');
    auto const parsed = FrameRate::parse(fraction);
    if (!parsed || value.find(':') == std::string::npos)
        fail("has a bad frame rate in its header: \"" + value + "\"");
    mRate = *parsed;
}

void Y4mSource::readChroma(std::string const& value)
{
    if (value == "420" || value == "420jpeg" || value == "420mpeg2" || value == "420paldv")
        mStepX = mStepY = 2;
    else if (value == "422")
        mStepX = 2, mStepY = 1;
    else if (value == "444")
        mStepX = mStepY = 1;
    else if (value == "mono")
        mStepX = mStepY = 0;
    else
        fail("has a pixel format that is not read here (C420, C422, C444 and Cmono are): \"C" + value + "\"");
}

std::string Y4mSource::readLine(size_t limit, char const* what)
{
    std::string line;
    for (size_t i = 0; i < limit; ++i) {
        int const byte = mStream->get();
        if (byte == '\n')
            return line;
        if (byte == std::istream::traits_type::eof())
            fail(std::string("ends in the line of ") + what);
        line.push_back(char(byte));
    }
    fail(std::string("has a line too long for ") + what);
}

void Y4mSource::fail(std::string const& what) const
{
    throw SourceError(mName + " " + what);
}

} // namespace camera
