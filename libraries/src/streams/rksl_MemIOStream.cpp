#include "streams/rksl_MemIOStream.h"

#include "misc/rktl_Exception.h"
#include "misc/rktl_String.h"
#include "streams/rksl_ByteReader.h"
#include "streams/rksl_ByteWriter.h"
#include "streams/rksl_EndOfFile.h"
#include "streams/rksl_FrameHeader.h"

#include <cstring>
#include <exception>
#include <fstream>
#include <functional>
#include <limits>
#include <string>

namespace rksl {

namespace {

constexpr unsigned int headerLength = FrameHeader::size;
constexpr unsigned int sizeLength = 4; // u32 in front of the frames when the stream itself is an object
constexpr uint64_t sizeLimit = std::numeric_limits<unsigned int>::max();

char const notConverted[] = "couldn't convert object to binary data";
char const notValid[] = "setBuffer() - resulting memory is not valid.";

[[noreturn]] void raise(std::string const& message, unsigned int line = __builtin_LINE())
{
    throw rktl::Exception("libraries/src/streams/rksl_MemIOStream", "rksl::MemIOStream", message, line);
}

unsigned int distance(unsigned char const* from, unsigned char const* to)
{
    return static_cast<unsigned int>(to - from);
}

/// memmove that takes null with 0 bytes.
void moveBytes(unsigned char* to, unsigned char const* from, unsigned int count)
{
    if (count)
        std::memmove(to, from, count);
}

} // namespace

/// A frame inside the live bytes.
struct MemIOStream::FrameView {
    unsigned int type;
    unsigned int bodyLength;
    unsigned char const* body;

    unsigned char const* end() const { return body + bodyLength; }
    unsigned int length() const { return headerLength + bodyLength; }
};

MemIOStream::MemIOStream(unsigned int const& capacity)
{
    reserve(capacity);
}

MemIOStream::MemIOStream(unsigned char const* data, unsigned int const& length)
{
    setBuffer(data, length);
}

MemIOStream::MemIOStream(MemIOStream const& other)
    : Serializable(other)
    , IOStream(other)
{
    *this = other;
}

MemIOStream& MemIOStream::operator=(MemIOStream const& other)
{
    if (this == &other)
        return *this;
    clear();
    if (other.capacity() == 0)
        purge();
    else if (capacity() != other.capacity())
        reallocate(other.capacity());
    moveBytes(mWrite, other.mRead, other.size());
    mWrite += other.size();
    return *this;
}

// ---- the stream as an object

unsigned int MemIOStream::getTypeId() const
{
    return 6;
}

rktl::String MemIOStream::getTypeName() const
{
    return "rksl_MemIOStream";
}

rktl::String MemIOStream::toXML(char const*) const
{
    raise("toXML() - not implemented");
}

bool MemIOStream::fromXML(char const*)
{
    raise("fromXML() - not implemented");
}

unsigned int MemIOStream::getBinLength() const
{
    return size() + sizeLength;
}

unsigned int MemIOStream::toBin(unsigned char* out) const
{
    ByteWriter writer(out);
    writer.u32(size());
    writer.bytes(mRead, size());
    return writer.written();
}

unsigned int MemIOStream::fromBin(unsigned char const* in, unsigned int length)
{
    uint32_t frames = 0;
    if (length >= sizeLength)
        frames = ByteReader(in, length).u32();
    if (length < sizeLength || frames > length - sizeLength) {
        clear();
        raise(notValid);
    }
    setBuffer(in + sizeLength, frames);
    return getBinLength();
}

// ---- writing

void MemIOStream::flush() { }

void MemIOStream::close()
{
    write(EndOfFile());
}

unsigned int MemIOStream::write(Serializable const& object)
{
    unsigned int const bodyLength = object.getBinLength();
    if (bodyLength > sizeLimit - headerLength || !checkBuff(headerLength + bodyLength))
        raise(notConverted);
    FrameHeader{static_cast<uint16_t>(object.getTypeId()), bodyLength}.write(mWrite);
    unsigned char* const body = mWrite + headerLength;
    try {
        // A form may be announced longer than it is. What is left must not show what this memory held before.
        unsigned int const written = object.toBin(body);
        if (written < bodyLength)
            std::memset(body + written, 0, bodyLength - written);
    } catch (...) {
        raise(notConverted);
    }
    mWrite += headerLength + bodyLength;
    return headerLength + bodyLength;
}

MemIOStream& MemIOStream::operator<<(Serializable const& object)
{
    write(object);
    return *this;
}

MemIOStream& MemIOStream::operator<<(IStream& source)
{
    unsigned char* data = nullptr;
    unsigned int length = 0;
    if (!getNextObject(source, data, length))
        return *this;
    std::unique_ptr<unsigned char[]> const owned(data);
    if (!checkBuff(length))
        raise(notConverted);
    moveBytes(mWrite, data, length);
    mWrite += length;
    return *this;
}

// ---- reading

unsigned int MemIOStream::getNextType() const
{
    if (isEmpty())
        return EndOfFile::typeId;
    if (size() < headerLength)
        raise("getNextType() - no data");
    return ByteReader(mRead, size()).u16();
}

bool MemIOStream::isEmpty() const
{
    return mRead == mWrite;
}

unsigned int MemIOStream::read(Serializable& object)
{
    if (object.getTypeId() == EndOfFile::typeId)
        raise("read() - trying to read EOF");
    if (getNextType() != object.getTypeId())
        raise("read() - type mismatch");
    FrameView frame;
    if (!firstFrame(frame))
        raise("read() - could not read object");
    readBody(object, frame, "read()");
    mRead += frame.length();
    return frame.length();
}

unsigned int MemIOStream::peek(Serializable& object) const
{
    if (object.getTypeId() == EndOfFile::typeId)
        raise("peek() - trying to read EOF");
    if (getNextType() != object.getTypeId())
        raise("peek() - type mismatch " + std::to_string(getNextType()) + " != " + std::to_string(object.getTypeId()));
    FrameView frame;
    if (!firstFrame(frame))
        raise("peek() - could not read object");
    readBody(object, frame, "peek()");
    return frame.length();
}

unsigned int MemIOStream::skip()
{
    FrameView frame;
    if (!firstFrame(frame))
        raise("skip() - no data");
    mRead += frame.length();
    return frame.length();
}

MemIOStream& MemIOStream::operator>>(Serializable& object)
{
    read(object);
    return *this;
}

bool MemIOStream::readNextObject(unsigned char*&, unsigned int&)
{
    raise("readNextObject() - not implemented");
}

bool MemIOStream::checkFrameTypes(std::span<Serializable* const> objects) const
{
    if (size() < headerLength)
        raise("checkTypes() - no data");
    unsigned char const* position = mRead;
    for (Serializable const* object : objects) {
        FrameView frame;
        if (!visibleFrame(position, frame) || (object && frame.type != object->getTypeId()))
            return false;
        position = frame.end();
    }
    return true;
}

unsigned int MemIOStream::peekFrames(std::span<Serializable* const> objects) const
{
    unsigned char const* position = mRead;
    for (Serializable* object : objects) {
        FrameView frame;
        if (!visibleFrame(position, frame))
            return 0;
        if (object) {
            if (object->getTypeId() == EndOfFile::typeId)
                raise("peek() - trying to read EOF");
            if (frame.type != object->getTypeId())
                raise("peek() - type mismatch");
            readBody(*object, frame, "peek()");
        }
        position = frame.end();
    }
    return distance(mRead, position);
}

unsigned int MemIOStream::count() const
{
    unsigned int frames = 0;
    FrameView frame;
    for (unsigned char const* position = mRead; frameAt(position, frame); position = frame.end())
        ++frames;
    return frames;
}

/// The frame at position; false when it is not whole.
bool MemIOStream::frameAt(unsigned char const* position, FrameView& frame) const
{
    unsigned int const left = distance(position, mWrite);
    if (left < headerLength)
        return false;
    FrameHeader const header = FrameHeader::read(position);
    frame.type = header.type;
    frame.bodyLength = header.bodyLength;
    frame.body = position + headerLength;
    return frame.bodyLength <= left - headerLength;
}

bool MemIOStream::firstFrame(FrameView& frame) const
{
    return frameAt(mRead, frame);
}

/// A frame as the walks over several objects see it: with nothing behind its header it is not there.
bool MemIOStream::visibleFrame(unsigned char const* position, FrameView& frame) const
{
    return distance(position, mWrite) > headerLength && frameAt(position, frame);
}

void MemIOStream::readBody(Serializable& object, FrameView const& frame, char const* operation)
{
    try {
        object.fromBin(frame.body, frame.bodyLength);
    } catch (std::exception const& failure) {
        raise(operation + (" - " + std::string(failure.what())));
    } catch (...) {
        raise(operation + std::string(" - could not read object"));
    }
}

// ---- the buffer

unsigned int MemIOStream::capacity() const
{
    return distance(mStart.get(), mEnd);
}

unsigned int MemIOStream::size() const
{
    return distance(mRead, mWrite);
}

void MemIOStream::clear()
{
    mRead = mWrite = mStart.get();
}

void MemIOStream::purge()
{
    mStart.reset();
    mEnd = mRead = mWrite = nullptr;
}

void MemIOStream::defrag()
{
    unsigned int const live = size();
    moveBytes(mStart.get(), mRead, live);
    mRead = mStart.get();
    mWrite = mRead + live;
}

void MemIOStream::reserve(unsigned int n)
{
    if (n > capacity())
        reallocate(n);
}

bool MemIOStream::checkBuff(unsigned int n)
{
    if (capacity() < uint64_t(n) + size()) {
        uint64_t const grown = 2 * uint64_t(capacity()) + n;
        if (grown > sizeLimit)
            return false;
        reallocate(static_cast<unsigned int>(grown));
    } else if (distance(mWrite, mEnd) < n) {
        defrag();
    }
    return true;
}

void MemIOStream::getWriteBuffer(unsigned char*& data, unsigned int n)
{
    data = nullptr;
    if (!checkBuff(n))
        return;
    data = mWrite;
    mWrite += n;
}

void MemIOStream::finalizeBuffer(unsigned char const* data, unsigned int used)
{
    std::less<unsigned char const*> const before;
    if (!before(data, mRead) && before(data, mWrite) && used < distance(data, mWrite))
        mWrite = mRead + distance(mRead, data) + used;
}

void MemIOStream::getBuffer(unsigned char const*& data, unsigned int& length) const
{
    length = size();
    data = length ? mRead : nullptr;
}

void MemIOStream::setBuffer(unsigned char const* data, unsigned int length)
{
    // The old storage lives until the bytes are copied: data may point into it.
    std::unique_ptr<unsigned char[]> old;
    if (data && length > capacity()) {
        old = std::move(mStart);
        purge();
        reallocate(length);
    }
    clear();
    if (!data || !length)
        return;
    moveBytes(mWrite, data, length);
    mWrite += length;
    if (!validate())
        raise(notValid);
}

bool MemIOStream::validate() const
{
    unsigned char const* position = mRead;
    FrameView frame;
    while (frameAt(position, frame))
        position = frame.end();
    return position == mWrite;
}

bool MemIOStream::save(char const* path) const
{
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    if (size())
        file.write(reinterpret_cast<char const*>(mRead), size());
    file.close();
    return file.good();
}

bool MemIOStream::load(char const* path)
try {
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    std::streamoff const length = file.tellg();
    if (!file || length < 0 || static_cast<uint64_t>(length) > sizeLimit)
        return false;
    reserve(static_cast<unsigned int>(length));
    if (distance(mRead, mEnd) < static_cast<uint64_t>(length))
        defrag();
    file.seekg(0);
    if (length && !file.read(reinterpret_cast<char*>(mRead), length))
        return false;
    mWrite = mRead + length;
    return validate();
} catch (std::exception const&) {
    return false;
}

/// Moves the live bytes to the start of new storage, which has room for them.
void MemIOStream::reallocate(unsigned int newCapacity)
{
    std::unique_ptr<unsigned char[]> storage(new unsigned char[newCapacity]);
    unsigned int const live = size();
    moveBytes(storage.get(), mRead, live);
    mStart = std::move(storage);
    mEnd = mStart.get() + newCapacity;
    mRead = mStart.get();
    mWrite = mRead + live;
}

} // namespace rksl
