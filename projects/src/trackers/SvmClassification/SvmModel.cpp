#include "trackers/SvmClassification/SvmModel.h"

#include "streams/rksl_ByteReader.h"
#include "streams/rksl_ByteWriter.h"
#include "trackers/SvmClassification/ObjectFeatures.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr size_t storedWeights = 2;

bool allFinite(std::vector<double> const& values)
{
    return std::all_of(values.begin(), values.end(), [](double value) { return std::isfinite(value); });
}

bool isFeature(int32_t id)
{
    return id >= 1 && id <= ObjectFeatures::highestFeature;
}

/// Address of the first element, as libsvm expects it: null for none.
template <class T> T* address(std::vector<T>& values)
{
    return values.empty() ? nullptr : values.data();
}

/// A count of elements of so many bytes each that the reader still holds; refused otherwise.
uint64_t held(rksl::ByteReader const& reader, uint64_t count, uint64_t bytesEach)
{
    if (count > reader.remaining() / bytesEach)
        rksl::ByteReader::fail();
    return count;
}

void readDoubles(rksl::ByteReader& reader, std::vector<double>& values, uint64_t count)
{
    values.resize(held(reader, count, sizeof(double)));
    for (double& value : values)
        value = reader.f64();
}

void readIntegers(rksl::ByteReader& reader, std::vector<int32_t>& values, uint64_t count)
{
    values.resize(held(reader, count, sizeof(int32_t)));
    for (int32_t& value : values)
        value = reader.i32();
}

} // namespace

SvmModel::SvmModel(rktl::String const& name)
    : mName(name)
{
}

SvmModel::SvmModel(svm_model const& model, svm_ranges const& ranges, rktl::String const& name)
{
    SetModel(model, ranges, name);
}

SvmModel::SvmModel(SvmModel const& other)
    : rksl::Serializable(other)
{
    *this = other;
}

SvmModel& SvmModel::operator=(SvmModel const& other)
{
    mName = other.mName;
    mInitialised = other.mInitialised;
    if (!mInitialised || this == &other)
        return *this;
    mRanges = other.mRanges;
    mModel = other.mModel;
    mArrays = other.mArrays;
    link();
    return *this;
}

void SvmModel::SetModel(svm_model const& model, svm_ranges const& ranges, rktl::String const& name)
{
    deInitModel();
    mName = name;
    mRanges = ranges;
    mModel = model;
    initModel();
    for (int32_t i = 0; i < std::min<int32_t>(model.param.nr_weight, storedWeights); ++i) {
        mArrays.weightLabels[size_t(i)] = model.param.weight_label[i];
        mArrays.weights[size_t(i)] = model.param.weight[i];
    }
    for (size_t row = 0; row < mArrays.rows.size(); ++row) {
        svm_node* const target = mArrays.rows[row];
        svm_node const* const source = model.SV[row];
        for (size_t i = 0; i < mRanges.size() && source[i].index != -1; ++i)
            target[i] = source[i];
    }
    for (size_t row = 0; row < mArrays.coefficientRows.size(); ++row)
        std::copy_n(model.sv_coef[row], model.l, mArrays.coefficientRows[row]);
    std::copy_n(model.rho, mArrays.rho.size(), mArrays.rho.begin());
    if (model.probA && model.probB) {
        std::copy_n(model.probA, mArrays.probA.size(), mArrays.probA.begin());
        std::copy_n(model.probB, mArrays.probB.size(), mArrays.probB.begin());
    }
    if (model.label)
        std::copy_n(model.label, mArrays.labels.size(), mArrays.labels.begin());
    if (model.nSV)
        std::copy_n(model.nSV, mArrays.counts.size(), mArrays.counts.begin());
    mInitialised = true;
}

/// Allocates the arrays for the counts that stand in mModel and mRanges.
void SvmModel::initModel()
{
    size_t const vectors = static_cast<size_t>(mModel.l), classes = static_cast<size_t>(mModel.nr_class);
    size_t const weights = mModel.param.nr_weight ? storedWeights : 0;
    size_t const pairsWithProbability = mModel.param.probability ? pairs() : 0;
    mArrays.weightLabels.assign(weights, 0);
    mArrays.weights.assign(weights, 0);
    mArrays.nodes.assign(vectors * nodesEach(), {-1, 0});
    mArrays.coefficients.assign(classes ? (classes - 1) * vectors : 0, 0);
    mArrays.rho.assign(pairs(), 0);
    mArrays.probA.assign(pairsWithProbability, 0);
    mArrays.probB.assign(pairsWithProbability, 0);
    mArrays.labels.assign(classes, 0);
    mArrays.counts.assign(classes, 0);
    link();
}

/// Points mModel to the arrays.
void SvmModel::link()
{
    size_t const vectors = static_cast<size_t>(mModel.l), classes = static_cast<size_t>(mModel.nr_class);
    mArrays.rows.resize(vectors);
    for (size_t i = 0; i < vectors; ++i)
        mArrays.rows[i] = mArrays.nodes.data() + i * nodesEach();
    mArrays.coefficientRows.resize(classes ? classes - 1 : 0);
    for (size_t i = 0; i < mArrays.coefficientRows.size(); ++i)
        mArrays.coefficientRows[i] = mArrays.coefficients.data() + i * vectors;
    mModel.param.weight_label = address(mArrays.weightLabels);
    mModel.param.weight = address(mArrays.weights);
    mModel.SV = address(mArrays.rows);
    mModel.sv_coef = address(mArrays.coefficientRows);
    mModel.rho = address(mArrays.rho);
    mModel.probA = address(mArrays.probA);
    mModel.probB = address(mArrays.probB);
    mModel.sv_indices = nullptr;
    mModel.label = address(mArrays.labels);
    mModel.nSV = address(mArrays.counts);
}

void SvmModel::deInitModel()
{
    mInitialised = false;
    mRanges.clear();
    mModel = {};
    mArrays = {};
}

// ---- Soundness of what came from outside

bool SvmModel::isSound() const
{
    bool const classifies = mModel.param.svm_type == C_SVC || mModel.param.svm_type == NU_SVC;
    bool const ofVectors = mModel.param.kernel_type >= LINEAR && mModel.param.kernel_type <= SIGMOID;
    if (!classifies || !ofVectors || mModel.nr_class != 2 || mModel.l < 1 || mRanges.empty())
        return false;
    bool const onePositive = (mArrays.labels[0] > 0) != (mArrays.labels[1] > 0);
    bool const countsFit =
        mArrays.counts[0] >= 0 && mArrays.counts[1] >= 0 && int64_t(mArrays.counts[0]) + mArrays.counts[1] == mModel.l;
    bool const ranges = std::all_of(mRanges.begin(), mRanges.end(), [](svm_range const& range) { return isFeature(range.id); });
    return onePositive && countsFit && ranges && hasSoundNumbers();
}

bool SvmModel::hasSoundNumbers() const
{
    auto const soundNode = [](svm_node const& node) {
        return (node.index == -1 || isFeature(node.index)) && std::isfinite(node.value);
    };
    auto const ended = [this](svm_node const* row) { return row[mRanges.size()].index == -1; };
    svm_parameter const& param = mModel.param;
    return std::isfinite(param.gamma) && std::isfinite(param.coef0) &&
        std::all_of(mArrays.nodes.begin(), mArrays.nodes.end(), soundNode) &&
        std::all_of(mArrays.rows.begin(), mArrays.rows.end(), ended) && allFinite(mArrays.coefficients) &&
        allFinite(mArrays.rho) && allFinite(mArrays.probA) && allFinite(mArrays.probB);
}

// ---- Stored

rktl::String SvmModel::getTypeName() const
{
    return "SvmModel";
}

rktl::String SvmModel::toXML(char const*) const
{
    return {};
}

unsigned int SvmModel::getBinLength() const
{
    size_t const doubles = mArrays.weights.size() + mArrays.coefficients.size() + mArrays.rho.size() + mArrays.probA.size() +
        mArrays.probB.size() + 7;
    size_t const integers = mArrays.weightLabels.size() + 3 * mRanges.size() + mArrays.labels.size() + mArrays.counts.size() + 10;
    return static_cast<unsigned int>(1 + 8 * doubles + 4 * integers + 12 * mArrays.nodes.size() + mName.getBinLength());
}

unsigned int SvmModel::toBin(unsigned char* out) const
{
    rksl::ByteWriter writer(out);
    auto const doubles = [&writer](std::vector<double> const& values) {
        for (double const value : values)
            writer.f64(value);
    };
    auto const integers = [&writer](std::vector<int32_t> const& values) {
        for (int32_t const value : values)
            writer.i32(value);
    };
    svm_parameter const& param = mModel.param;
    writer.u8(mInitialised);
    writer.u32(static_cast<uint32_t>(mRanges.size()));
    integers({param.nr_weight, param.probability, mModel.nr_class, mModel.l});
    writer.record(mName);
    for (svm_range const& range : mRanges)
        integers({range.id, range.min, range.max});
    integers({param.svm_type, param.kernel_type, param.degree});
    doubles({param.gamma, param.coef0, param.cache_size, param.eps, param.C});
    integers(mArrays.weightLabels);
    doubles(mArrays.weights);
    doubles({param.nu, param.p});
    writer.i32(param.shrinking);
    for (svm_node const& node : mArrays.nodes) {
        writer.i32(node.index);
        writer.f64(node.value);
    }
    doubles(mArrays.coefficients);
    doubles(mArrays.rho);
    doubles(mArrays.probA);
    doubles(mArrays.probB);
    integers(mArrays.labels);
    integers(mArrays.counts);
    writer.i32(mModel.free_sv);
    return writer.written();
}

unsigned int SvmModel::fromBin(unsigned char const* in, unsigned int length)
{
    SvmModel read;
    unsigned int const used = read.readFields(in, length);
    if (read.mInitialised ? !read.isSound() : read.mModel.l != 0 || read.mModel.nr_class != 0)
        rksl::ByteReader::fail();
    deInitModel();
    *this = read;
    return used;
}

unsigned int SvmModel::readFields(unsigned char const* in, unsigned int length)
{
    rksl::ByteReader reader(in, length);
    svm_parameter& param = mModel.param;
    mInitialised = reader.u8() != 0;
    uint32_t const features = reader.u32();
    param.nr_weight = reader.i32();
    param.probability = reader.i32();
    mModel.nr_class = reader.i32();
    mModel.l = reader.i32();
    reader.record(mName);
    if (mModel.nr_class < 0 || mModel.l < 0)
        rksl::ByteReader::fail();
    mRanges.resize(held(reader, features, 12));
    for (svm_range& range : mRanges) {
        range.id = reader.i32();
        range.min = reader.i32();
        range.max = reader.i32();
    }
    param.svm_type = reader.i32();
    param.kernel_type = reader.i32();
    param.degree = reader.i32();
    for (double* const value : {&param.gamma, &param.coef0, &param.cache_size, &param.eps, &param.C})
        *value = reader.f64();
    readIntegers(reader, mArrays.weightLabels, param.nr_weight ? storedWeights : 0);
    readDoubles(reader, mArrays.weights, param.nr_weight ? storedWeights : 0);
    param.nu = reader.f64();
    param.p = reader.f64();
    param.shrinking = reader.i32();
    uint64_t const vectors = static_cast<uint64_t>(mModel.l), classes = static_cast<uint64_t>(mModel.nr_class);
    mArrays.nodes.resize(held(reader, vectors, 12 * nodesEach()) * nodesEach());
    for (svm_node& node : mArrays.nodes) {
        node.index = reader.i32();
        node.value = reader.f64();
    }
    held(reader, classes, 4); // so that no product below can wrap
    readDoubles(reader, mArrays.coefficients, classes ? (classes - 1) * vectors : 0);
    readDoubles(reader, mArrays.rho, pairs());
    readDoubles(reader, mArrays.probA, param.probability ? pairs() : 0);
    readDoubles(reader, mArrays.probB, param.probability ? pairs() : 0);
    readIntegers(reader, mArrays.labels, classes);
    readIntegers(reader, mArrays.counts, classes);
    mModel.free_sv = reader.i32();
    link();
    return reader.position();
}
