#include "misc/rktl_Buffer.h"

#include "misc/rktl_Exception.h"
#include "security/rkcl_Base64.h"
#include "streams/rksl_ByteReader.h"
#include "streams/rksl_ByteWriter.h"
#include "streams/rkxml_DomIterator.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace rktl {

Buffer::Buffer(unsigned int size)
{
    resize(size);
}

Buffer::Buffer(unsigned char const* data, unsigned int size)
{
    set(data, size);
}

Buffer::Buffer(Buffer const& other)
    : rksl::Serializable(other)
{
    set(other.data(), other.size());
}

Buffer& Buffer::operator=(Buffer const& other)
{
    set(other.data(), other.size());
    return *this;
}

unsigned char* Buffer::reserve(unsigned int size, unsigned int offset)
{
    uint64_t const needed = uint64_t(size) + offset;
    if (needed > std::numeric_limits<uint32_t>::max())
        throw Exception("libraries/src/misc/rktl_Buffer", "rktl::Buffer", "reserve() - more than 4 GiB");
    if (needed > mCapacity) {
        // Doubling keeps a row of appends linear.
        uint64_t const doubled = std::min<uint64_t>(uint64_t(mCapacity) * 2, std::numeric_limits<uint32_t>::max());
        uint32_t const grown = static_cast<uint32_t>(std::max(needed, doubled));
        auto larger = std::make_unique<unsigned char[]>(grown);
        std::copy_n(mData.get(), mCapacity, larger.get());
        mData = std::move(larger);
        mCapacity = grown;
    }
    return mData.get() + offset;
}

void Buffer::set(unsigned char const* data, unsigned int size)
{
    if (size > mCapacity) {
        Buffer larger;
        larger.append(data, size);
        std::swap(mData, larger.mData);
        mCapacity = larger.mCapacity;
    } else if (size) {
        std::memmove(mData.get(), data, size);
    }
    mSize = size;
}

void Buffer::append(unsigned char const* data, unsigned int size)
{
    if (!size)
        return;
    if (data >= mData.get() && data < mData.get() + mCapacity) {
        Buffer const own(data, size); // growth would free it
        return append(own.data(), size);
    }
    std::memcpy(reserve(size, mSize), data, size);
    mSize += size;
}

void Buffer::copy(unsigned char* target) const
{
    std::copy_n(mData.get(), mSize, target);
}

void Buffer::resize(unsigned int size)
{
    reserve(size, 0);
    mSize = size;
}

void Buffer::resize(unsigned int size, unsigned char value)
{
    resize(size);
    std::fill_n(mData.get(), mSize, value);
}

String Buffer::toString() const
{
    return rkcl::base64::encode(mData.get(), mSize);
}

bool Buffer::fromString(String const& text)
{
    resize(rkcl::base64::decodeSize(static_cast<unsigned int>(text.size())));
    mSize = rkcl::base64::decode(mData.get(), text);
    return text.empty() || mSize > 0;
}

String Buffer::rawString() const
{
    return String(reinterpret_cast<char const*>(mData.get()), mSize);
}

bool Buffer::operator==(Buffer const& other) const
{
    return std::equal(mData.get(), mData.get() + mSize, other.mData.get(), other.mData.get() + other.mSize);
}

unsigned int Buffer::getTypeId() const
{
    return 506;
}

String Buffer::getTypeName() const
{
    return "rktl_Buffer";
}

String Buffer::toXML(char const* tag) const
{
    if (!tag)
        return String();
    String const name(tag);
    return "<" + name + " encoding=\"base64\">" + toString() + "</" + name + ">";
}

bool Buffer::fromXML(char const* xml)
{
    rkxml::DomIterator const element = rkxml::DomIterator::parse(xml);
    return !element.atEnd() && fromString(element.getValue());
}

unsigned int Buffer::getBinLength() const
{
    return mSize + 4;
}

unsigned int Buffer::toBin(unsigned char* out) const
{
    rksl::ByteWriter writer(out);
    writer.u32(mSize);
    writer.bytes(mData.get(), mSize);
    return writer.written();
}

unsigned int Buffer::fromBin(unsigned char const* in, unsigned int length)
{
    rksl::ByteReader reader(in, length);
    uint32_t const size = reader.count(1);
    set(reader.bytes(size), size);
    return reader.position();
}

bool Buffer::toFile(char const* path) const
{
    return rawString().toFile(path);
}

bool Buffer::fromFile(char const* path)
{
    String bytes;
    if (!bytes.fromFile(path) || bytes.size() > std::numeric_limits<uint32_t>::max())
        return false;
    set(reinterpret_cast<unsigned char const*>(bytes.data()), static_cast<unsigned int>(bytes.size()));
    return true;
}

} // namespace rktl
