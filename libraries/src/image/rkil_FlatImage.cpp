#include "image/rkil_FlatImage.h"

#include "misc/rktl_Exception.h"
#include "misc/rktl_String.h"
#include "streams/rksl_ByteReader.h"
#include "streams/rksl_ByteWriter.h"

#include <cstring>
#include <utility>

namespace rkil {

template <unsigned int N>
FlatImage<N>::FlatImage(FlatImage const& other)
    : ImageBase(other)
{
    *this = other;
}

template <unsigned int N>
FlatImage<N>::FlatImage(FlatImage&& other) noexcept
    : mImage(std::exchange(other.mImage, {}))
{
}

template <unsigned int N> FlatImage<N>& FlatImage<N>::operator=(FlatImage const& other)
{
    if (!rk_copy_image(&other.mImage, &mImage))
        throw rktl::Exception("libraries/src/image/rkil_FlatImage", "rkil::FlatImage", "operator=() - out of memory.");
    return *this;
}

template <unsigned int N> FlatImage<N>& FlatImage<N>::operator=(FlatImage&& other) noexcept
{
    std::swap(mImage, other.mImage);
    return *this;
}

template <unsigned int N> FlatImage<N>::~FlatImage()
{
    rk_free_image(&mImage);
}

template <unsigned int N> bool FlatImage<N>::resize(unsigned int width, unsigned int height)
{
    return rk_ensure_image(&mImage, width, height, N);
}

template <unsigned int N> bool FlatImage<N>::resize(unsigned int width, unsigned int height, unsigned char value)
{
    return rk_resize_image(&mImage, width, height, N, value);
}

template <unsigned int N> bool FlatImage<N>::setAll(unsigned char value)
{
    return rk_resize_image(&mImage, mImage.width, mImage.height, N, value);
}

template <unsigned int N> bool FlatImage<N>::empty() const
{
    return !mImage.data || !mImage.width || !mImage.height;
}

template <unsigned int N> void FlatImage<N>::clear()
{
    rk_free_image(&mImage);
}

template <unsigned int N> rktl::String FlatImage<N>::getTypeName() const
{
    return "rkil_FlatImage";
}

template <unsigned int N> rktl::String FlatImage<N>::toXML(char const*) const
{
    throw rktl::Exception("rkil::FlatImage::toXML() - not implemented.");
}

template <unsigned int N> bool FlatImage<N>::fromXML(char const*)
{
    throw rktl::Exception("rkil::FlatImage::fromXML() - not implemented.");
}

template <unsigned int N> unsigned int FlatImage<N>::getBinLength() const
{
    return mImage.size + 13;
}

template <unsigned int N> unsigned int FlatImage<N>::toBin(unsigned char* out) const
{
    rksl::ByteWriter writer(out);
    writer.u8(N);
    writer.u32(mImage.width);
    writer.u32(mImage.height);
    writer.u32(mImage.size);
    writer.bytes(mImage.data, mImage.size);
    return writer.written();
}

template <unsigned int N> unsigned int FlatImage<N>::fromBin(unsigned char const* in, unsigned int length)
{
    rksl::ByteReader reader(in, length);
    if (reader.u8() != N)
        throw rktl::Exception(
            "libraries/src/image/rkil_FlatImage", "rkil::FlatImage", "fromBin(...) - image channels do not match.");
    uint32_t const width = reader.u32();
    uint32_t const height = reader.u32();
    uint32_t const size = reader.u32();
    unsigned char const* const pixels = reader.bytes(size);
    uint64_t const count = uint64_t(width) * height;
    if (count != size / N || size % N != 0 || !rk_ensure_image(&mImage, width, height, N))
        rksl::ByteReader::fail();
    if (size)
        std::memcpy(mImage.data, pixels, size);
    return reader.position();
}

template class FlatImage<1>;
template class FlatImage<3>;
template class FlatImage<4>;

} // namespace rkil
