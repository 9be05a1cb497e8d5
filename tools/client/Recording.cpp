#include "Recording.h"

#include "streams/rksl_EndOfFile.h"
#include "streams/rksl_FrameAssembly.h"

#include <cstring>
#include <memory>
#include <stdexcept>

namespace tools {

RecordingWriter::RecordingWriter(std::filesystem::path const& path)
    : mPath(path)
    , mFile(path, std::ios::binary)
{
    if (!mFile)
        throw std::runtime_error(path.string() + ": cannot be written");
}

void RecordingWriter::write(rksl::StreamData const& frame)
{
    mFile.write(reinterpret_cast<char const*>(frame.getBytes()), frame.getLength());
    if (!mFile.flush())
        throw std::runtime_error(mPath.string() + ": cannot be written");
}

RecordingReader::RecordingReader(std::filesystem::path const& path)
    : mPath(path)
    , mFile(path, std::ios::binary)
{
    if (!mFile || std::filesystem::is_directory(path))
        throw std::runtime_error(path.string() + ": cannot be read");
}

void RecordingReader::fail(char const* why) const
{
    throw std::runtime_error(mPath.string() + ": " + why + " (at byte " + std::to_string(mPosition) + ")");
}

ObjectSource::Next RecordingReader::next(rksl::StreamData& frame)
{
    rksl::FrameAssembly assembly;
    while (!assembly.isWhole()) {
        if (assembly.isTooLong())
            fail("holds an object that is too long; is it a recording?");
        auto const room = assembly.room();
        mFile.read(reinterpret_cast<char*>(room.data()), std::streamsize(room.size()));
        if (mFile.gcount() == 0 && assembly.getReceived() == 0)
            return Next::end;
        if (mFile.gcount() == 0)
            fail("breaks off in the middle of an object");
        assembly.add(uint32_t(mFile.gcount()));
    }
    uint32_t const length = assembly.getReceived();
    std::unique_ptr<unsigned char[]> bytes(new unsigned char[length]);
    assembly.getHeader().write(bytes.get());
    if (length > rksl::FrameHeader::size)
        std::memcpy(bytes.get() + rksl::FrameHeader::size, assembly.getBody(), length - rksl::FrameHeader::size);
    frame = rksl::StreamData(bytes.release(), length);
    mPosition += length;
    return frame.getType() == rksl::EndOfFile::typeId ? Next::end : Next::object;
}

} // namespace tools
