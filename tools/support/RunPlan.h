#pragma once

#include "BaseClasses/ObjectTrackerParams.h"
#include "application/Settings.h"
#include "application/SimpleTracker.h"
#include "application/SpiesFile.h"

#include <nlohmann/json.hpp>

namespace tools {

/// All that decides what the analysis makes of a video. A run file is a JSON object with the settings it began from (`settings`,
/// text by key) and the values that differ from what these settings give:
///
///   spies                                  XML elements in one text, or "none"
///   mode, min_width, min_height            whole numbers
///   sensitivity, scene_sensitivity         0 to 1
///   mask_polygons, occlusion_zones         [[[x, y], ...], ...], each with 3 points or more; all in 0 to 1 or in pixels
///   processing_interval_ms                 least spacing of the frames that the spies see
///   models                                 paths of model files
///   resurrection_window_ms, invalid_window_ms, defer_time_ms, resurrection_distance, resurrection_confidence,
///   min_track_length, max_track_merges     of the tracker
///   always_update_histograms, advanced_histograms   true or false
///
/// Occlusion zones are the mask polygons unless they are named.
struct RunPlan {
    SettingsMap settings;
    rktl::String spies; // of the run file or a file of spies; empty: those of the settings
    SimpleTracker::Params params;
    ObjectTrackerParams tracker;

    /// What the application makes of these settings.
    explicit RunPlan(SettingsMap const& fromSettings);

    /// Takes over what a run file names, but its settings. Throws std::runtime_error with the name of the value that does not fit
    /// or that is not known; the plan is then as far as it got.
    void apply(nlohmann::ordered_json const& run);

    /// Takes the rules of a file, beside those that it has, or alone.
    void useSpies(SpiesFile const& file, bool alone);

    /// Takes those of the settings' "spies_file", relative to the application's home or, without one, to the current folder,
    /// unless a run file has named the spies. complaint: why the file was refused; the plan is then as before.
    void useSettingsSpies(rktl::String& complaint);

    /// The run file of this plan.
    nlohmann::ordered_json toJson() const;

private:
    void keepSpies();
};

/// The settings of a run file on top of others: with keys of the same name the run file's count. Throws std::runtime_error.
void readRunSettings(nlohmann::ordered_json const& run, SettingsMap& settings);

} // namespace tools
