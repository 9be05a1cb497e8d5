#include "streams/rksl_Serializable.h"

#include "misc/rktl_String.h"
#include "streams/rksl_ByteReader.h"
#include "streams/rksl_ByteWriter.h"

#include <algorithm>
#include <exception>
#include <fstream>
#include <vector>

namespace rksl {

namespace {

constexpr unsigned int fileHeaderLength = 6; // u16 type id, u32 body length

char* chars(unsigned char* bytes)
{
    return reinterpret_cast<char*>(bytes);
}

/// Reads count bytes in steps, so that a false length in a short file allocates little more than the file has.
bool readExactly(std::istream& in, std::vector<unsigned char>& bytes, uint32_t count)
{
    constexpr uint32_t step = 1u << 20;
    bytes.clear();
    while (bytes.size() < count) {
        size_t const have = bytes.size();
        bytes.resize(have + std::min<size_t>(step, count - have));
        if (!in.read(chars(bytes.data() + have), static_cast<std::streamsize>(bytes.size() - have)))
            return false;
    }
    return true;
}

} // namespace

rktl::String Serializable::toXML() const
{
    return toXML(getTypeName().c_str());
}

bool Serializable::toFile(char const* path) const
try {
    unsigned int const length = getBinLength();
    std::vector<unsigned char> bytes(size_t(fileHeaderLength) + length);
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    if (!file || toBin(bytes.data() + fileHeaderLength) != length)
        return false;
    ByteWriter header(bytes.data());
    header.u16(static_cast<uint16_t>(getTypeId()));
    header.u32(length);
    file.write(chars(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    file.close();
    return file.good();
} catch (std::exception const&) {
    return false;
}

bool Serializable::fromFile(char const* path)
try {
    std::ifstream file(path, std::ios::binary);
    std::vector<unsigned char> bytes;
    if (!file || !readExactly(file, bytes, fileHeaderLength))
        return false;
    ByteReader header(bytes.data(), fileHeaderLength);
    if (header.u16() != getTypeId())
        return false;
    uint32_t const length = header.u32();
    return readExactly(file, bytes, length) && fromBin(bytes.data(), length) == length;
} catch (std::exception const&) {
    return false;
}

} // namespace rksl
