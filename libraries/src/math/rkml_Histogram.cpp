#include "math/rkml_Histogram.h"
#include "math/rk_truncate.h"
#include "misc/rktl_Exception.h"
#include "misc/rktl_String.h"
#include "streams/rksl_ByteReader.h"
#include "streams/rksl_ByteWriter.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace rkml {

namespace {

[[noreturn]] void fail(char const* message, unsigned int line = __builtin_LINE())
{
    throw rktl::Exception("libraries/src/math/rkml_Histogram", "rkml::Histogram", message, line);
}

uint32_t rounded(float value)
{
    return rk_truncate_u32(value + 0.5f);
}

/// A 16-bit index and its value.
constexpr unsigned int STORED_BIN_BYTES = 6;

} // namespace

Histogram::Histogram(uint32_t bins)
    : mBins(bins)
{
}

unsigned int Histogram::getTypeId() const
{
    return 604;
}

rktl::String Histogram::getTypeName() const
{
    return "Histogram";
}

rktl::String Histogram::toXML(char const*) const
{
    throw rktl::Exception("Histogram::toXML( ) - not implemented");
}

bool Histogram::fromXML(char const*)
{
    // The misspelt name is the text that logs and tools know.
    throw rktl::Exception("Histrogram::fromXML( ) - not implemented");
}

unsigned int Histogram::getBinLength() const
{
    uint32_t used = 0;
    nonZeroBins(used);
    return 8 + STORED_BIN_BYTES * used;
}

unsigned int Histogram::toBin(unsigned char* out) const
{
    if (getBinCount() > MaxStoredBins)
        fail("toBin(...) - too many bins to be stored");
    uint32_t used = 0;
    nonZeroBins(used);
    rksl::ByteWriter writer(out);
    writer.u32(getBinCount());
    writer.u32(used);
    for (uint32_t bin = 0; bin < getBinCount(); ++bin)
        if (mBins[bin] != 0) {
            writer.u16(static_cast<uint16_t>(bin));
            writer.u32(mBins[bin]);
        }
    return writer.written();
}

unsigned int Histogram::fromBin(unsigned char const* in, unsigned int length)
{
    rksl::ByteReader reader(in, length);
    uint32_t const binCount = reader.u32();
    uint32_t const used = reader.count(STORED_BIN_BYTES);
    if (binCount > MaxStoredBins || used > binCount)
        rksl::ByteReader::fail();
    Histogram read(binCount);
    uint32_t next = 0; // the lowest index that may follow
    for (uint32_t i = 0; i < used; ++i) {
        uint32_t const bin = reader.u16();
        if (bin < next || bin >= binCount)
            rksl::ByteReader::fail();
        read.incrementBin(bin, reader.u32());
        next = bin + 1;
    }
    mBins.swap(read.mBins);
    mTotal = read.mTotal;
    return reader.position();
}

void Histogram::clear()
{
    std::fill(mBins.begin(), mBins.end(), 0);
    mTotal = 0;
}

void Histogram::setBins(uint32_t bins)
{
    mBins.assign(bins, 0);
    mTotal = 0;
}

void Histogram::incrementBin(uint32_t bin, uint32_t value)
{
    if (mBins.empty())
        fail("incrementBin(...) - histogram points to no data");
    if (bin >= getBinCount())
        fail("incrementBin(...) - invalid bin index ");
    mBins[bin] += value;
    mTotal += value;
}

void Histogram::addValue(float value, uint32_t count)
{
    if (mBins.empty())
        fail("at(...) - histogram points to no data");
    if (!(value >= 0.0f && value < 1.0f))
        fail("at(...) - floating pt channel value(s) >= 1 or < 0");
    incrementBin(rk_truncate_u32(static_cast<float>(getBinCount()) * value), count);
}

uint32_t Histogram::getBinValue(uint32_t bin) const
{
    if (bin >= getBinCount())
        fail("getValue(...) - index out of bounds");
    return mBins[bin];
}

float Histogram::getValue(uint32_t bin) const
{
    uint32_t const value = getBinValue(bin);
    return mTotal ? static_cast<float>(value) / static_cast<float>(mTotal) : 0.0f;
}

uint32_t Histogram::getMaxBin() const
{
    if (mBins.empty())
        fail("getMaxBin(...) - histogram is NULL");
    return static_cast<uint32_t>(std::max_element(mBins.begin(), mBins.end()) - mBins.begin());
}

void Histogram::getBinValues(std::multimap<uint32_t, uint32_t>& values) const
{
    values.clear();
    for (uint32_t bin = 0; bin < getBinCount(); ++bin)
        values.emplace(mBins[bin], bin);
}

void Histogram::nonZeroBins(uint32_t& count) const
{
    count = getBinCount() - static_cast<uint32_t>(std::count(mBins.begin(), mBins.end(), 0u));
}

float Histogram::inUsePercent() const
{
    if (mBins.empty())
        fail("incrementBin(...) - histogram points to no data");
    uint32_t used = 0;
    nonZeroBins(used);
    return static_cast<float>(used) / static_cast<float>(getBinCount());
}

void Histogram::requireSameSize(Histogram const& other, char const* message) const
{
    if (getBinCount() != other.getBinCount())
        fail(message);
}

float Histogram::distanceTo(Histogram const& other, DistMethod method) const
{
    requireSameSize(other, "distanceTo(...) - histogram dimensions are not the same");
    if (method != DistL1 && method != DistChiSquare)
        return 0.0f;
    float sum = 0.0f;
    for (uint32_t bin = 0; bin < getBinCount(); ++bin) {
        float const p = getValue(bin);
        float const q = other.getValue(bin);
        float const difference = p - q;
        if (method == DistL1)
            sum += std::fabs(difference);
        else
            sum += difference * difference / (p + q + std::numeric_limits<float>::epsilon());
    }
    return 0.5f * sum;
}

float Histogram::intersectionWith(Histogram const& other) const
{
    requireSameSize(other, "intersectionWith(...) - histogram dimensions are not the same");
    float sum = 0.0f;
    for (uint32_t bin = 0; bin < getBinCount(); ++bin)
        sum += std::min(getValue(bin), other.getValue(bin));
    return sum;
}

void Histogram::average(Histogram const& other, float weight)
{
    if (mBins.empty() || other.mBins.empty())
        fail("average(...) - histogram points to no data");
    requireSameSize(other, "operator+(...) - histogram dimensions are not the same");
    if (!(weight >= 0.0f && weight < 1.0f))
        fail("average(...) - weight value(s) >= 1 or < 0");
    float const complement = 1.0f - weight;
    mTotal = 0;
    for (uint32_t bin = 0; bin < getBinCount(); ++bin) {
        uint32_t const own = rounded(static_cast<float>(mBins[bin]) * complement);
        mBins[bin] = own + rounded(static_cast<float>(other.mBins[bin]) * weight);
        mTotal += mBins[bin];
    }
}

void Histogram::exclude(Histogram& other)
{
    requireSameSize(other, "exclude(...) - histogram dimensions are not the same");
    mTotal = 0;
    other.mTotal = 0;
    for (uint32_t bin = 0; bin < getBinCount(); ++bin) {
        uint32_t& a = mBins[bin];
        uint32_t& b = other.mBins[bin];
        a = a > b ? a - b : 0;
        b = b > a ? b - a : 0;
        mTotal += a;
        other.mTotal += b;
    }
}

Histogram Histogram::operator+(Histogram const& other) const
{
    requireSameSize(other, "operator+(...) - histogram dimensions are not the same");
    Histogram sum(*this);
    sum.add(other);
    return sum;
}

Histogram& Histogram::operator+=(Histogram const& other)
{
    requireSameSize(other, "operator+=(...) - histogram dimensions are not the same");
    add(other);
    return *this;
}

void Histogram::add(Histogram const& other)
{
    for (uint32_t bin = 0; bin < getBinCount(); ++bin)
        mBins[bin] += other.mBins[bin];
    mTotal += other.mTotal;
}

Histogram Histogram::operator-(Histogram const& other) const
{
    requireSameSize(other, "operator-(...) - histogram dimensions are not the same");
    Histogram difference(*this);
    difference.subtract(other);
    return difference;
}

Histogram& Histogram::operator-=(Histogram const& other)
{
    requireSameSize(other, "operator-=(...) - histogram dimensions are not the same");
    subtract(other);
    return *this;
}

void Histogram::subtract(Histogram const& other)
{
    if (mTotal < other.mTotal)
        fail("operator-(...) - lhs histogram has less values that rhs");
    if (mTotal == other.mTotal) {
        clear();
        return;
    }
    mTotal -= other.mTotal;
    for (uint32_t bin = 0; bin < getBinCount(); ++bin)
        mBins[bin] -= other.mBins[bin];
}

} // namespace rkml
