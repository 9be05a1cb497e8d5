#pragma once

#include <cstddef>
#include <cstdint>

/// Radial basis functions of many support vectors at once, exp(-gamma * |vector - input|^2), to the last bit as the library works
/// them out: distances in its order of operations, and its exp().
///
/// An exponential here is a table of powers of two and a short polynomial, with an error below 0.011 units in the last place
/// before its one rounding (the method is Tang's, ACM TOMS 15, 1989). The C library's errs by less than 0.512 in all. So both
/// are the number that lies nearest to the true value, unless that lies almost midway between two: those few are told apart
/// (Ziv's test) and left to exp() itself, as are exponents out of range.
struct RbfKernel {
    static constexpr size_t lanes = 8; // vectors of a block
    static constexpr size_t most = 64; // vectors at a time
    static constexpr size_t roots = 128;

    /// minusGamma: the factor of the squared distances. blocks: of `lanes` vectors each, their first features, their second ones,
    /// and so on. exponents and values: `most` each. Returns a bit for each value that is still to be worked out.
    using Run = uint64_t (*)(double const* blocks, size_t blockCount, double const* input, size_t features, double minusGamma,
        double* exponents, double* values);

    /// 2 to the power of i / roots is high[i] * (1 + tail[i]).
    struct Table {
        double high[roots];
        double tail[roots];
    };
    static Table const table;

    static Run const portable;
    static Run const avx2; ///< null in a build for another processor
};
