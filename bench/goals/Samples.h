#pragma once

#include <algorithm>
#include <cmath>
#include <ctime>
#include <utility>
#include <vector>

/// Times and ratios, as the table of goals takes them.

/// Of this thread's processor in seconds, so that other work on the machine counts little.
inline double threadSeconds()
{
    timespec time;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

template <class Work> double seconds(Work work)
{
    double const start = threadSeconds();
    work();
    return threadSeconds() - start;
}

using Samples = std::vector<double>; // seconds, one a frame

inline double median(Samples samples)
{
    if (samples.empty())
        return NAN;
    auto const middle = samples.begin() + static_cast<std::ptrdiff_t>(samples.size() / 2);
    std::nth_element(samples.begin(), middle, samples.end());
    return *middle;
}

/// The median of what each frame gives; not a number when one of the two was not measured.
inline double medianRatio(Samples const& ours, Samples const& theirs)
{
    Samples ratios;
    for (std::size_t i = 0; i < std::min(ours.size(), theirs.size()); ++i)
        ratios.push_back(ours[i] / theirs[i]);
    return median(std::move(ratios));
}

/// Slope of log y over log x by least squares: the exponent with which y grows.
inline double exponent(std::vector<std::pair<double, double>> const& points)
{
    double x = 0.0, y = 0.0, xx = 0.0, xy = 0.0;
    for (auto const& [px, py] : points) {
        double const lx = std::log(px), ly = std::log(py);
        x += lx;
        y += ly;
        xx += lx * lx;
        xy += lx * ly;
    }
    double const n = static_cast<double>(points.size());
    return (n * xy - x * y) / (n * xx - x * x);
}
