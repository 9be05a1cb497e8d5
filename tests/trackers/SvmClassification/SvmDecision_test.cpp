#include "trackers/SvmClassification/SvmDecision.h"

#include "support/forms.h"
#include "trackers/SvmClassification/SvmModel.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <gtest/gtest.h>
#include <random>

namespace {

std::mt19937 generator(1);

double uniform(double low, double high)
{
    return std::uniform_real_distribution<>(low, high)(generator);
}

/// Vectors of those features; a share of the nodes is left out, as files may have it.
std::vector<std::vector<svm_node>> randomVectors(std::vector<int32_t> const& ids, size_t count, double spread, double left)
{
    std::vector<std::vector<svm_node>> vectors(count);
    for (auto& vector : vectors) {
        for (int32_t const id : ids)
            if (uniform(0, 1) >= left)
                vector.push_back({id, static_cast<float>(uniform(-spread, spread))});
        vector.push_back({-1, 0});
    }
    return vectors;
}

SvmModel randomModel(
    std::vector<int32_t> const& ids, std::vector<std::vector<svm_node>>& vectors, int kernel, double gamma, int32_t most = 1)
{
    svm_model machine = {};
    int32_t const count = static_cast<int32_t>(vectors.size()), first = static_cast<int32_t>(generator() % vectors.size());
    std::vector<svm_node*> rows;
    std::vector<double> coefficients;
    for (auto& vector : vectors) {
        rows.push_back(vector.data());
        coefficients.push_back(uniform(-8, 8));
    }
    double* coefficientRow = coefficients.data();
    double rho = uniform(-1, 1), probA = uniform(-3, -0.1), probB = uniform(-0.5, 0.5);
    int32_t const sign = generator() % 2 ? 1 : -1;
    int32_t labels[] = {sign, -sign}, counts[] = {first, count - first};
    machine.param.kernel_type = kernel;
    machine.param.gamma = gamma;
    machine.param.coef0 = uniform(-1, 1);
    machine.param.degree = static_cast<int32_t>(generator() % 6);
    machine.param.probability = 1;
    machine.nr_class = 2;
    machine.l = count;
    machine.SV = rows.data();
    machine.sv_coef = &coefficientRow;
    machine.rho = &rho;
    machine.probA = &probA;
    machine.probB = &probB;
    machine.label = labels;
    machine.nSV = counts;
    svm_ranges ranges;
    for (int32_t const id : ids)
        ranges.push_back({id, 0, most});
    return SvmModel(machine, ranges, "Human");
}

} // namespace

// To the bit: labels and probabilities of every kernel, for numbers of vectors about the width of a block, features and nodes
// that are missing, kernels that vanish and inputs far from all that was trained on.
TEST(SvmDecision, AnswersAsTheLibraryDoes)
{
    struct {
        double gamma, spread, left;
    } const shapes[] = {{0.5, 1, 0}, {8, 1, 0.3}, {0.03, 3, 0.9}, {2000, 1, 0}, {1, 1e4, 0}, {0, 1, 0}, {-0.5, 2, 0}};
    uint32_t positive = 0, asked = 0;
    for (int const kernel : {LINEAR, POLY, RBF, SIGMOID})
        for (auto const& shape : shapes)
            for (size_t const count : {1, 7, 8, 9, 100}) {
                std::vector<int32_t> const ids = count % 2 ? std::vector<int32_t>{10, 11, 15, 61} : std::vector<int32_t>{3};
                auto vectors = randomVectors(ids, count, shape.spread, shape.left);
                SvmModel const model = randomModel(ids, vectors, kernel, shape.gamma);
                SvmDecision const decision(model);
                ASSERT_TRUE(decision.isPrepared());
                for (auto const& input : randomVectors(ids, 50, shape.spread * 1.5, 0)) {
                    SCOPED_TRACE(
                        std::to_string(kernel) + ", " + std::to_string(count) + " vectors, gamma " + std::to_string(shape.gamma));
                    double expected[2] = {};
                    double const label = svm_predict_probability(&model.getModel(), input.data(), expected);
                    test::withEachForm([&] {
                        double got[2] = {};
                        SvmDecision::Kernels kernels;
                        EXPECT_EQ(label, decision.predict(input.data(), got, kernels));
                        EXPECT_EQ(std::bit_cast<uint64_t>(expected[0]), std::bit_cast<uint64_t>(got[0])) << rk_row().name;
                        EXPECT_EQ(std::bit_cast<uint64_t>(expected[1]), std::bit_cast<uint64_t>(got[1])) << rk_row().name;
                    });
                    positive += label > 0;
                    ++asked;
                }
            }
    EXPECT_LT(asked / 10, positive);
    EXPECT_GT(asked - asked / 10, positive) << "both answers have to occur";
}

// Machines that hold different parts of the same vectors, in orders of their own; one has another gamma, one another range, and
// one is asked for by the library.
TEST(SvmDecision, AnswersTheSameWhenVectorsAreShared)
{
    std::vector<int32_t> const ids = {10, 12, 14}, wrong = {14, 10};
    auto const all = randomVectors(ids, 60, 1, 0.2);
    std::vector<SvmModel> models;
    for (int i = 0; i < 5; ++i) {
        auto part = all;
        std::shuffle(part.begin(), part.end(), generator);
        part.resize(20 + size_t(i) * 8);
        models.push_back(randomModel(ids, part, RBF, i == 3 ? 2.0 : 0.5, i == 4 ? 7 : 1));
    }
    auto unusual = randomVectors(wrong, 9, 1, 0);
    models.push_back(randomModel(wrong, unusual, RBF, 0.5));
    std::vector<SvmDecision> decisions(models.begin(), models.end());
    std::vector<SvmDecision*> machines;
    for (SvmDecision& decision : decisions)
        machines.push_back(&decision);
    SvmDecision::share(machines);
    decisions[1] = SvmDecision(models[1]); // a new model, alone
    for (int twice = 0; twice < 2; ++twice, SvmDecision::share(machines))
        for (auto const& input : randomVectors(ids, 20, 1.5, 0)) {
            SvmDecision::Kernels kernels;
            for (size_t i = 0; i < 5; ++i) {
                double expected[2] = {}, got[2] = {};
                svm_predict_probability(&models[i].getModel(), input.data(), expected);
                EXPECT_EQ(twice == 1 && (i == 1 || i == 2), decisions[i].hasAllFrom(kernels)) << i;
                decisions[i].predict(input.data(), got, kernels);
                EXPECT_EQ(std::bit_cast<uint64_t>(expected[0]), std::bit_cast<uint64_t>(got[0])) << i;
            }
        }
    EXPECT_FALSE(decisions[5].isPrepared());
}

// One support vector, so that no sum hides a last digit: exponents from 0 to beyond what a double holds, half of them at a place
// where the nearest power of a root changes.
TEST(SvmDecision, KernelsAreThoseOfTheLibrarysExponential)
{
    double const unit = 1.0, root = std::log(2.0) / 256;
    uint32_t unsure = 0, asked = 0;
    for (RbfKernel::Run const run : {RbfKernel::portable, rk_row().form == rk_form_avx2 ? RbfKernel::avx2 : RbfKernel::portable})
        for (int round = 0; round < 20000; ++round) {
            double blocks[RbfKernel::most], exponents[RbfKernel::most], values[RbfKernel::most];
            double const most = std::exp2(uniform(-30, 10));
            for (double& value : blocks) {
                double const exponent = uniform(0, most);
                value = unit - std::sqrt(round % 2 ? exponent : (2 * std::floor(exponent / root / 2) + 1) * root);
            }
            uint64_t const open = run(blocks, RbfKernel::most / RbfKernel::lanes, &unit, 1, -1.0, exponents, values);
            for (size_t i = 0; i < RbfKernel::most; ++i) {
                bool const isOpen = open >> i & 1;
                ASSERT_TRUE(isOpen || std::bit_cast<uint64_t>(std::exp(exponents[i])) == std::bit_cast<uint64_t>(values[i]))
                    << exponents[i];
                unsure += isOpen && most < 700;
                asked += most < 700;
            }
        }
    EXPECT_GT(asked / 10, unsure) << "too many are left to the library";
}

// Where the library would add up in another order, it is to be asked itself.
TEST(SvmDecision, IsNotPreparedForWhatDoesNotAscend)
{
    std::vector<int32_t> const ids = {10, 12, 14};
    for (std::vector<int32_t> const& wrong : {std::vector<int32_t>{12, 10}, {10, 10}, {11}, {14, 61}}) {
        auto vectors = randomVectors(wrong, 9, 1, 0);
        EXPECT_FALSE(SvmDecision(randomModel(ids, vectors, RBF, 1)).isPrepared());
        EXPECT_EQ(wrong.size() == 1 || wrong[0] < wrong[1], SvmDecision(randomModel(wrong, vectors, RBF, 1)).isPrepared());
    }
    EXPECT_FALSE(SvmDecision(SvmModel("Human")).isPrepared());
}
