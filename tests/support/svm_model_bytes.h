#pragma once

#include "streams/rksl_ByteWriter.h"
#include "support/bytes.h"

#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

/// The binary form of a machine, written field by field. As it stands it looks at the one feature 10, from 0 to 10 in training,
/// with a linear kernel and support vectors at +1 and -1: its decision is 2 x for the scaled feature x, and the positive class
/// has the probability 1 / (1 + exp(-2 x)).
struct SvmModelBytes {
    uint8_t initialised = 1;
    uint32_t features = 1;
    int32_t weights = 0, probability = 1, classes = 2, vectors = 2;
    std::string name = "Human";
    int32_t id = 10, min = 0, max = 10;
    int32_t type = 0, kernel = 0;
    double gamma = 1;
    std::vector<double> nodeValues = {1, -1};
    int32_t nodeIndex = 10, lastIndex = -1;
    std::vector<double> coefficients = {1, -1};
    double rho = 0, probA = -1, probB = 0;
    std::vector<int32_t> labels = {1, -1}, counts = {1, 1};

    support::Bytes bytes() const
    {
        support::Bytes block(4096);
        rksl::ByteWriter out(block.data());
        auto const integers = [&out](std::vector<int32_t> const& values) {
            for (int32_t const value : values)
                out.i32(value);
        };
        auto const doubles = [&out](std::vector<double> const& values) {
            for (double const value : values)
                out.f64(value);
        };
        out.u8(initialised);
        out.u32(features);
        integers({weights, probability, classes, vectors});
        out.u32(static_cast<uint32_t>(name.size()));
        out.bytes(name.c_str(), static_cast<unsigned int>(name.size() + 1));
        integers({id, min, max, type, kernel, 3});
        doubles({gamma, 0, 100, 0.001, 8});
        if (weights) {
            integers({1, -1});
            doubles({2.5, 1});
        }
        doubles({0.5, 0.1});
        integers({1});
        for (double const value : nodeValues) {
            integers({nodeIndex});
            doubles({value});
            integers({lastIndex});
            doubles({0});
        }
        doubles(coefficients);
        doubles({rho});
        if (probability)
            doubles({probA, probB});
        integers(labels);
        integers(counts);
        integers({0});
        block.resize(out.written());
        return block;
    }
};
