#include "image/rkil_ImageJPEG.h"

#include "misc/rktl_Exception.h"
#include "misc/rktl_String.h"
#include "streams/rksl_ByteReader.h"
#include "streams/rksl_ByteWriter.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <utility>
#include <vector>

namespace rkil {

ImageJPEG::ImageJPEG(ImageJPEG const& other)
    : BasicImage(other)
{
    setData(other.mData, other.mSize);
}

ImageJPEG::ImageJPEG(ImageJPEG&& other) noexcept
    : BasicImage(other)
    , mSize(std::exchange(other.mSize, 0))
    , mData(std::exchange(other.mData, nullptr))
    , mOwned(std::exchange(other.mOwned, false))
{
}

ImageJPEG& ImageJPEG::operator=(ImageJPEG other) noexcept
{
    mWidth = other.mWidth;
    mHeight = other.mHeight;
    std::swap(mSize, other.mSize);
    std::swap(mData, other.mData);
    std::swap(mOwned, other.mOwned);
    return *this;
}

ImageJPEG::~ImageJPEG()
{
    setView(nullptr, 0);
}

void ImageJPEG::setData(unsigned char const* data, unsigned int size)
{
    unsigned char* const copy = size ? new unsigned char[size] : nullptr;
    std::copy_n(data, size, copy);
    setView(copy, size);
    mOwned = copy;
}

void ImageJPEG::setView(unsigned char const* data, unsigned int size)
{
    if (mOwned)
        delete[] mData;
    mOwned = false;
    mData = data;
    mSize = size;
}

bool ImageJPEG::write(char const* path) const
{
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<char const*>(mData), mSize);
    file.close();
    return file.good();
}

bool ImageJPEG::load(char const* path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return false;
    std::vector<char> const bytes(std::istreambuf_iterator<char>(file), {});
    if (file.bad() || bytes.size() > UINT32_MAX - 4) // with its length in front it must fit a binary form
        return false;
    clear();
    setData(reinterpret_cast<unsigned char const*>(bytes.data()), static_cast<unsigned int>(bytes.size()));
    return true;
}

void ImageJPEG::clear()
{
    BasicImage::clear();
    setView(nullptr, 0);
}

rktl::String ImageJPEG::getTypeName() const
{
    return "rkil_ImageJPEG";
}

rktl::String ImageJPEG::toXML(char const*) const
{
    throw rktl::Exception("rkil::ImageJEPG::toXML() - not implemented.");
}

bool ImageJPEG::fromXML(char const*)
{
    throw rktl::Exception("rkil::ImageJEPG::fromXML() - not implemented.");
}

unsigned int ImageJPEG::toBin(unsigned char* out) const
{
    rksl::ByteWriter writer(out);
    writer.u32(mSize);
    writer.bytes(mData, mSize);
    return writer.written();
}

unsigned int ImageJPEG::fromBin(unsigned char const* in, unsigned int length)
{
    clear();
    rksl::ByteReader reader(in, length);
    uint32_t const size = reader.u32();
    setData(reader.bytes(size), size);
    return reader.position();
}

} // namespace rkil
