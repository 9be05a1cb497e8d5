#pragma once

#include "streams/rksl_Serializable.h"

#include <cstdint>
#include <map>
#include <vector>

namespace rkml {

/// Counts in any number of bins. Sums are 32 bits wide and wrap around.
///
/// Binary form: bin count, number of bins that are not 0, then of each of those its index (16 bits, rising) and value. No XML
/// form: those operations throw. All throwing is rktl::Exception; an operation that throws has changed nothing.
///
/// Not thread-safe.
class Histogram : public rksl::Serializable {
public:
    /// Bins that a stored histogram can have, since indices are stored in 16 bits.
    static constexpr uint32_t MaxStoredBins = 65536;

    enum DistMethod {
        DistL1,        ///< half the sum of |p - q|
        DistChiSquare, ///< half the sum of (p - q)^2 / (p + q)
    };

    /// No bins.
    Histogram() = default;

    /// bins: number of bins, all 0.
    explicit Histogram(uint32_t bins);

    unsigned int getTypeId() const override;
    rktl::String getTypeName() const override;
    using rksl::Serializable::toXML;
    rktl::String toXML(char const* tag) const override;
    bool fromXML(char const* xml) override;
    unsigned int getBinLength() const override;

    /// Throws for more than MaxStoredBins bins.
    unsigned int toBin(unsigned char* out) const override;

    /// Throws for more than MaxStoredBins bins, and for an index that is no bin or does not rise.
    unsigned int fromBin(unsigned char const* in, unsigned int length) override;

    uint32_t getBinCount() const { return static_cast<uint32_t>(mBins.size()); }

    /// Sum of the bins.
    uint32_t getTotal() const { return mTotal; }

    /// All bins to 0; their number stays.
    void clear();

    /// Replaces the bins by so many, all 0.
    void setBins(uint32_t bins);

    /// Throws for no bins and for a bin that is not there.
    void incrementBin(uint32_t bin, uint32_t value);

    /// Counts a value from 0 up to but not including 1, in bin floor(bin count * value). Throws for other values and no bins.
    void addValue(float value, uint32_t count);

    /// Raw value of a bin; throws for a bin that is not there.
    uint32_t getBinValue(uint32_t bin) const;

    /// Share of a bin, 0 in an empty histogram; throws for a bin that is not there.
    float getValue(uint32_t bin) const;

    /// The lowest-numbered of the fullest bins; throws for no bins.
    uint32_t getMaxBin() const;

    /// values: becomes all bins as value and bin number, so that walking it from its end goes from fullest to emptiest.
    void getBinValues(std::multimap<uint32_t, uint32_t>& values) const;

    /// count: becomes the number of bins that are not 0.
    void nonZeroBins(uint32_t& count) const;

    /// Share of bins that are not 0; throws for no bins.
    float inUsePercent() const;

    /// Distance of the shares, 0 to 1, in single precision. 0 for no bins or another method. Throws when the sizes differ.
    float distanceTo(Histogram const& other, DistMethod method) const;

    /// Histogram intersection (Swain and Ballard, 1991): sum of the smaller of both shares of each bin. Throws when the
    /// sizes differ.
    float intersectionWith(Histogram const& other) const;

    /// Each bin becomes own * (1 - weight) + other's * weight, both rounded to the nearest whole number.
    /// weight: from 0 up to but not including 1. Throws for another weight, for no bins and when the sizes differ.
    void average(Histogram const& other, float weight);

    /// Takes what the two have in common out of both: this loses the other's bins, stopping at 0, and then the other loses
    /// what is left here, stopping at 0. Throws when the sizes differ.
    void exclude(Histogram& other);

    /// Bin by bin; throw when the sizes differ, a difference also when the left total is the smaller one. Single bins may
    /// wrap around; two equal totals give an empty histogram.
    Histogram operator+(Histogram const& other) const;
    Histogram& operator+=(Histogram const& other);
    Histogram operator-(Histogram const& other) const;
    Histogram& operator-=(Histogram const& other);

private:
    void requireSameSize(Histogram const& other, char const* message) const;
    void add(Histogram const& other);
    void subtract(Histogram const& other);

    std::vector<uint32_t> mBins;
    uint32_t mTotal = 0;
};

} // namespace rkml
