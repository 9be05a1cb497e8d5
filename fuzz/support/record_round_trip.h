#pragma once

#include "misc/rktl_Exception.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

/// Any bytes as a record on the wire: refused, or what is read is written as bytes that can be read again.
/// first, second: the bytes of both writings; empty when the input was refused.
template <class Record>
void recordRoundTrip(uint8_t const* data, size_t size, std::vector<unsigned char>& first, std::vector<unsigned char>& second)
{
    Record read;
    try {
        if (read.fromBin(data, static_cast<unsigned int>(size)) > size)
            std::abort();
    } catch (rktl::Exception const&) {
        return;
    }
    first.resize(read.getBinLength());
    if (read.toBin(first.data()) != first.size())
        std::abort();
    Record again;
    if (again.fromBin(first.data(), static_cast<unsigned int>(first.size())) != first.size())
        std::abort();
    second.resize(again.getBinLength());
    if (again.toBin(second.data()) != second.size())
        std::abort();
}

/// The same, and both writings have to be the same bytes.
template <class Record> void exactRecordRoundTrip(uint8_t const* data, size_t size)
{
    std::vector<unsigned char> first, second;
    recordRoundTrip<Record>(data, size, first, second);
    if (first != second)
        std::abort();
}
