#pragma once

#include <cstddef>
#include <functional>

/// Scores of independent trials, worked out on all cores in processes of their own, so that no trial sees what another did to the
/// state of a library. take hears each score in the order of the trials, and false ends the search: what runs beyond that trial
/// is given up. A score must depend on its trial alone; the scores are then those of one process that tries one by one, which is
/// also what happens where no process can be had.
void scoreInOrder(
    size_t trials, std::function<float(size_t trial)> const& score, std::function<bool(size_t trial, float score)> const& take);
