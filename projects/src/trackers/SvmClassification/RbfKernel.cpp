#include "trackers/SvmClassification/RbfKernel.h"

#include "trackers/SvmClassification/RbfKernel_lanes.h"

namespace {

/// Veltkamp's and Dekker's exact product: a * b is the double and what is returned.
constexpr double lostOf(double a, double b)
{
    constexpr double split = 0x1p27 + 1;
    double const aHigh = a * split - (a * split - a), aLow = a - aHigh;
    double const bHigh = b * split - (b * split - b), bLow = b - bHigh;
    return ((aHigh * bHigh - a * b) + aHigh * bLow + aLow * bHigh) + aLow * bLow;
}

/// Power after power, with twice the digits of a double.
constexpr RbfKernel::Table makeTable()
{
    constexpr double rootHigh = 0x1.0163da9fb3335p+0, rootLow = 0x1.b61299ab8cdb7p-54; // of order 128
    RbfKernel::Table table = {};
    double high = 1, low = 0;
    for (size_t i = 0; i < RbfKernel::roots; ++i) {
        table.high[i] = high;
        table.tail[i] = low / high;
        double const product = high * rootHigh;
        double const rest = lostOf(high, rootHigh) + high * rootLow + low * rootHigh;
        high = product + rest;
        low = rest - (high - product);
    }
    return table;
}

} // namespace

constinit RbfKernel::Table const RbfKernel::table = makeTable();

RbfKernel::Run const RbfKernel::portable = run;
