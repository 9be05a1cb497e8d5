#include "goals/Labels.h"
#include "goals/PixelRun.h"
#include "goals/Whole.h"
#include "image/rk_row.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <fstream>
#include <nlohmann/json.hpp>

// What the pixel work costs beside the peers that a user would otherwise take, and beside plain copies of a frame: one table of
// goals. All figures are medians of ratios that were taken frame by frame in one run on one core.

namespace {

struct Goal {
    char const* name;
    char const* what;
    double must;
    double stretch;
    double measured; // not a number: nothing to measure it with on this machine
};

void print(std::vector<Goal> const& goals)
{
    std::printf("%-5s %-62s %8s %8s %9s\n", "goal", "", "must", "stretch", "measured");
    for (Goal const& goal : goals) {
        char const* const verdict = std::isnan(goal.measured) ? "not measured (no peer)"
            : goal.measured <= goal.stretch                   ? "stretch"
            : goal.measured <= goal.must                      ? "must"
                                                              : "MISSED";
        std::printf("%-5s %-62s %8.3g %8.3g %9.3g  %s\n", goal.name, goal.what, goal.must, goal.stretch, goal.measured, verdict);
    }
}

void write(std::vector<Goal> const& goals, std::string const& path)
{
    nlohmann::json table = nlohmann::json::array();
    for (Goal const& goal : goals)
        table.push_back({{"goal", goal.name}, {"must", goal.must}, {"stretch", goal.stretch},
            {"measured", std::isnan(goal.measured) ? nlohmann::json() : nlohmann::json(goal.measured)}});
    std::ofstream file(path);
    file << table.dump(2) << '\n';
    if (!file.flush())
        throw std::runtime_error("cannot write " + path);
}

void addLabelGoals(std::vector<Goal>& goals, Samples const& peer)
{
    Samples const copies = labels::copies();
    goals.push_back({"G7d", "components at 11 % foreground, in copies of a frame", 18, 11, medianRatio(labels::blobs(), copies)});
    goals.push_back({"G8", "components of an empty frame, in copies", 1.2, 0.8, medianRatio(labels::emptyFrame(), copies)});
    std::vector<std::pair<double, double>> times;
    double bytes = 0.0;
    for (uint32_t count : {1000u, 2000u, 5000u, 10000u, 20000u}) {
        labels::Cost const cost = labels::specks(count);
        times.emplace_back(count, cost.seconds);
        bytes = std::max(bytes, cost.bytesPerLabel);
    }
    goals.push_back({"G11a", "components: time against 1,000 to 20,000 labels, exponent", 1.15, 1.0, exponent(times)});
    goals.push_back({"G11b", "components: bytes a label", 64, 24, bytes});
    double const peerTime = median(peer);
    goals.push_back({"G12a", "components of 25 % noise, 5x5, to the peer", 0.40, 0.15, median(labels::noise(5)) / peerTime});
    goals.push_back({"G12b", "components of 25 % noise, 11x11, to the peer", 0.50, 0.2, median(labels::noise(11)) / peerTime});
}

std::vector<Goal> measure(std::string const& video)
{
    std::vector<Goal> goals;
    double const memory = bytesPerPixel(); // first, while freed blocks of others cannot hide it
    PixelRun const large(video, 1280, 720);
    PixelRun const small(video, 320, 240);
    PixelRun const medium(video, 640, 480);
    PixelRun const largest(video, 1920, 1080);
    goals.push_back({"G1", "pipeline 1280x720 to the peer (MOG2, open, close, components)", 0.12, 0.06,
        medianRatio(large.pipeline, large.peer)});
    goals.push_back({"G2", "pipeline 1280x720 to MOG2 alone", 0.17, 0.09, medianRatio(large.pipeline, large.peerSubtraction)});
    goals.push_back({"G3", "pipeline 1280x720 to the fastest peer (CNT, contours)", 0.55, 0.30,
        medianRatio(large.pipeline, large.countingPeer)});
    goals.push_back({"G4", "pipeline 1280x720 to its plain forms", 0.25, 0.14, medianRatio(large.pipeline, large.plain)});
    goals.push_back({"G5", "pipeline 320x240 to the peer", 0.15, 0.09, medianRatio(small.pipeline, small.peer)});
    goals.push_back({"G6", "learning frame 1280x720 to the peer", 0.35, 0.12, median(large.learning) / median(large.peer)});
    goals.push_back({"G7a", "motion detector, in copies of a frame", 8, 6.5, medianRatio(large.motion, large.copy)});
    goals.push_back({"G7b", "comparison and threshold, in copies", 15, 4.5, medianRatio(large.compare, large.copy)});
    goals.push_back({"G7c", "four steps of morphology, in copies", 8, 2.5, medianRatio(large.morphology, large.copy)});
    addLabelGoals(goals, large.peer);
    goals.push_back({"G9", "one update of the model, in copies", 100, 28, median(large.update) / median(large.copy)});
    goals.push_back({"G10", "pipeline: time against pixels, exponent", 1.05, 0.9,
        exponent({{320 * 240, median(small.pipeline)}, {640 * 480, median(medium.pipeline)}, {1280 * 720, median(large.pipeline)},
            {1920 * 1080, median(largest.pipeline)}})});
    goals.push_back({"G13", "resident bytes a pixel: model, detector, images", 50, 24, memory});
    ColourCompare const colour;
    goals.push_back({"G14", "colour comparison 640x480 to its plain form", 0.30, 0.18, medianRatio(colour.fast, colour.plain)});
    Whole const whole(video);
    goals.push_back(
        {"G15", "whole process with 20 objects 1280x720 to the pipeline", 1.6, 1.25, medianRatio(whole.process, whole.pipeline)});
    goals.push_back({"G16", "allocations a frame of the whole process", 50, 0, whole.allocationsPerFrame});
    std::printf("1280x720, us a frame: pipeline %.0f (motion %.0f, compare %.0f, morphology %.0f, components %.0f), update %.0f, "
                "peer %.0f, "
                "copy %.0f; %.1f objects tracked; %.2f allocations a frame of the pixel work\n",
        1e6 * median(large.pipeline), 1e6 * median(large.motion), 1e6 * median(large.compare), 1e6 * median(large.morphology),
        1e6 * median(large.components), 1e6 * median(large.update), 1e6 * median(large.peer), 1e6 * median(large.copy),
        whole.objects);
    std::stable_sort(
        goals.begin(), goals.end(), [](Goal const& a, Goal const& b) { return atoi(a.name + 1) < atoi(b.name + 1); });
    return goals;
}

} // namespace

int main(int argc, char** argv)
{
    std::string video = "scene:street", json;
    CLI::App app("Measures the pixel work against its goals");
    app.add_option("--video", video, "a video by path, or scene:NAME");
    app.add_option("--json", json, "file for the table");
    CLI11_PARSE(app, argc, argv);
    try {
        std::printf("form %s, %s\n", rk_row().name, video.c_str());
        std::vector<Goal> const goals = measure(video);
        print(goals);
        if (!json.empty())
            write(goals, json);
    } catch (std::exception const& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
