#include "SampleFile.h"

#include "support/RecordFile.h"

#include <algorithm>
#include <stdexcept>

namespace tools {

SampleFile::SampleFile(std::filesystem::path const& path, bool mayBeMissing)
    : mPath(path)
{
    if (mayBeMissing && !std::filesystem::exists(path))
        return;
    if (!mSamples.fromFile(path.c_str()))
        throw std::runtime_error(path.string() + ": is no file of samples");
    for (TrainingData const& sample : mSamples) {
        mLast = std::max<int32_t>(mLast, sample.mNumber);
        bool const isNamed = !sample.mClassName.empty();
        try {
            if (isNamed && !sample.readFeatures().empty())
                continue;
        } catch (std::exception const&) {
        }
        throw std::runtime_error(path.string() + ": sample " + std::to_string(sample.mNumber.value) +
            (isNamed ? " holds no records" : " has no class"));
    }
}

int32_t SampleFile::add(TrainingData sample)
{
    sample.mNumber = ++mLast;
    mSamples.push_back(std::move(sample));
    return mLast;
}

void SampleFile::save() const
{
    saveRecord(mSamples, mPath);
}

} // namespace tools
