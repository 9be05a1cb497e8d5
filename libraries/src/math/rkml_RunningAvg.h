#pragma once

namespace rkml {

/// An exponentially weighted average that starts at 0; the first sample is not special.
template <class T> class RunningAvg {
public:
    /// weight: of a new sample; complement: of the value so far.
    RunningAvg(T weight, T complement)
        : mWeight(weight)
        , mComplement(complement)
    {
    }
    virtual ~RunningAvg() = default;
    RunningAvg(RunningAvg const&) = default;
    RunningAvg& operator=(RunningAvg const&) = default;

    void add(T sample) { mValue = sample * mWeight + mValue * mComplement; }
    T value() const { return mValue; }

private:
    T mValue = 0;
    T mWeight;
    T mComplement;
};

} // namespace rkml
