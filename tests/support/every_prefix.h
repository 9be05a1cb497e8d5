#pragma once

#include "misc/rktl_Exception.h"
#include "streams/rksl_Serializable.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

/// For readers of bytes from outside: read(data, size) takes the valid bytes and refuses (false) each shorter beginning.
/// The block has exactly the size given, so that the address sanitizer sees one byte too many.
template <class Read> void expectEveryPrefixRefused(std::vector<unsigned char> const& valid, Read read)
{
    ASSERT_TRUE(read(valid.data(), static_cast<unsigned int>(valid.size())));
    for (size_t size = 0; size < valid.size(); ++size) {
        std::unique_ptr<unsigned char[]> const block(new unsigned char[size]);
        std::copy_n(valid.begin(), size, block.get());
        EXPECT_FALSE(read(block.get(), static_cast<unsigned int>(size))) << "accepted " << size << " bytes";
    }
}

/// The same for the binary form of a record, which is refused by an rktl::Exception.
template <class Record> void expectEveryPrefixThrows(Record const& valid)
{
    std::vector<unsigned char> bytes(valid.getBinLength());
    ASSERT_EQ(bytes.size(), valid.toBin(bytes.data()));
    expectEveryPrefixRefused(bytes, [](unsigned char const* data, unsigned int size) {
        try {
            Record record;
            return record.fromBin(data, size) == size;
        } catch (rktl::Exception const&) {
            return false;
        }
    });
}
