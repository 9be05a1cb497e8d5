#pragma once

#include "misc/rktl_Exception.h"
#include "streams/rksl_Serializable.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

/// Binary forms in tests: bytes as hex, records as bytes, and the proof that a reader takes no truncated body.
namespace support {

using Bytes = std::vector<unsigned char>;

/// The bytes of "18 00 ff"; everything but hex digits is left out.
inline Bytes hex(std::string const& text)
{
    std::string digits;
    std::copy_if(text.begin(), text.end(), std::back_inserter(digits), [](unsigned char c) { return std::isxdigit(c); });
    Bytes bytes;
    for (size_t i = 0; i + 1 < digits.size(); i += 2)
        bytes.push_back(static_cast<unsigned char>(std::stoi(digits.substr(i, 2), nullptr, 16)));
    return bytes;
}

/// The body of a record. The block has exactly getBinLength() bytes, so that a sanitizer sees one too many.
inline Bytes toBin(rksl::Serializable const& record)
{
    unsigned int const length = record.getBinLength();
    std::unique_ptr<unsigned char[]> const block(new unsigned char[length]);
    EXPECT_EQ(length, record.toBin(block.get()));
    return Bytes(block.get(), block.get() + length);
}

/// fromBin from a block of exactly these bytes. Returns what fromBin returns.
inline unsigned int fromBin(rksl::Serializable& record, Bytes const& bytes)
{
    std::unique_ptr<unsigned char[]> const block(new unsigned char[bytes.size()]);
    std::copy(bytes.begin(), bytes.end(), block.get());
    return record.fromBin(block.get(), static_cast<unsigned int>(bytes.size()));
}

/// read(data, size) gives true or false. It has to take valid and to refuse all that is shorter.
template <class Read> void expectEveryPrefixRefused(Bytes const& valid, Read read)
{
    ASSERT_TRUE(read(valid.data(), static_cast<unsigned int>(valid.size())));
    for (size_t size = 0; size < valid.size(); ++size) {
        std::unique_ptr<unsigned char[]> const block(new unsigned char[size]);
        std::copy_n(valid.begin(), size, block.get());
        EXPECT_FALSE(read(block.get(), static_cast<unsigned int>(size))) << "accepted " << size << " bytes";
    }
}

/// The same for the fromBin of Record, which has to throw rktl::Exception.
template <class Record> void expectEveryPrefixThrows(Bytes const& valid)
{
    expectEveryPrefixRefused(valid, [](unsigned char const* data, unsigned int size) {
        try {
            return Record().fromBin(data, size) == size;
        } catch (rktl::Exception const&) {
            return false;
        }
    });
}

/// The text that action throws as rktl::Exception; "" when it throws nothing.
template <class Action> std::string thrownBy(Action action)
{
    try {
        action();
    } catch (rktl::Exception const& failure) {
        return failure.what();
    }
    return "";
}

/// What thrownBy gives behind "path (line): ", for messages that name their source: "class::message".
template <class Action> std::string messageOf(Action action)
{
    std::string const text = thrownBy(action);
    size_t const place = text.find("): ");
    return place == std::string::npos ? text : text.substr(place + 3);
}

inline Bytes readFile(std::string const& path)
{
    std::ifstream file(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(file), {});
}

inline void writeFile(std::string const& path, Bytes const& bytes)
{
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<char const*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

} // namespace support
