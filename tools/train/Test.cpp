#include "Test.h"

#include "BaseClasses/ProcessFrame.h"
#include "support/ModelFolder.h"
#include "support/SettingsFile.h"

#include <filesystem>
#include <iomanip>
#include <iostream>
#include <map>
#include <set>

namespace tools {

namespace {

constexpr char const* ANY = "?"; // the truth of a video of which nothing is known

struct Video {
    std::string truth;
    std::string path;
};

Video parseVideo(std::string const& text)
{
    size_t const sign = text.find('=');
    if (sign == std::string::npos || sign == 0 || std::filesystem::exists(text))
        return {ANY, text};
    return {text.substr(0, sign), text.substr(sign + 1)};
}

/// What the votes of one object came to.
struct Decision {
    int64_t first = 0, last = 0; // positions in ms
    uint32_t votes = 0;
    rksl::StringMap<rktl::Double> sums;
    rktl::String name;
};

/// Decisions by object id.
using Decisions = std::map<uint32_t, Decision>;

/// How often what a thing is (rows) was taken for what (columns).
class ConfusionTable {
public:
    void count(std::string const& truth, std::string const& decided)
    {
        ++mCounts[truth][decided];
        mColumns.insert(decided);
    }

    void print(std::ostream& out) const
    {
        out << "\n" << std::left << std::setw(WIDTH) << "truth" << std::right;
        for (std::string const& column : mColumns)
            out << std::setw(WIDTH) << column;
        out << std::setw(WIDTH) << "right"
            << "\n";
        for (auto const& [truth, row] : mCounts)
            printRow(out, truth, row);
        out << std::flush;
    }

private:
    static constexpr int WIDTH = 12; // characters of a column

    void printRow(std::ostream& out, std::string const& truth, std::map<std::string, unsigned int> const& row) const
    {
        auto const countOf = [&row](std::string const& column) { return row.count(column) ? row.at(column) : 0; };
        unsigned int total = 0;
        out << std::left << std::setw(WIDTH) << truth << std::right;
        for (std::string const& column : mColumns) {
            out << std::setw(WIDTH) << countOf(column);
            total += countOf(column);
        }
        std::string const right = rktl::String::fromFormat("%.0f %%", 100.0 * countOf(truth) / total);
        out << std::setw(WIDTH) << (truth == ANY ? "-" : right) << "\n";
    }

    std::map<std::string, std::map<std::string, unsigned int>> mCounts;
    std::set<std::string> mColumns;
};

Decisions decide(std::string const& path, RunPlan const& plan, Span const& span, volatile std::sig_atomic_t const& stop)
{
    Decisions decisions;
    std::set<uint32_t> earlier; // objects that began before the span
    RunOptions run;
    SvmClassification* stage = nullptr;
    run.started = [&](SimpleTracker& tracker) { stage = &tracker.getClassification(); };
    runRecording(path, plan, span, stop, run, [&](FrameResult const& result) {
        int64_t const position = result.frame.getPosition().toMilliseconds();
        for (auto const& [key, object] : result.frame.getObjects()) {
            uint32_t const id = object.getId();
            if (!span.contains(position))
                earlier.insert(id);
            ObjectInfo const* const info = stage->getObjectInfo(id);
            if (!info || info->mVotes == 0 || earlier.count(id))
                continue;
            Decision& decision = decisions[id];
            if (decision.votes == 0)
                decision.first = position;
            decision.last = position;
            decision.votes = info->mVotes;
            decision.sums = info->mClassHistogram;
            decision.name = SvmClassifier::computeClassID(*info);
        }
    });
    return decisions;
}

void print(std::string const& video, uint32_t id, Decision const& decision)
{
    std::cout << video << " #" << id << "  "
              << rktl::String::fromFormat("%.1f-%.1f s", double(decision.first) / 1000, double(decision.last) / 1000) << "  "
              << decision.votes << " votes:";
    for (auto const& [name, sum] : decision.sums)
        std::cout << " " << name << " " << rktl::String::fromFormat("%.2f", sum.value);
    std::cout << "  -> " << decision.name << "\n";
}

} // namespace

void test(TestOptions const& options, volatile std::sig_atomic_t const& stop)
{
    RunPlan plan(readSettingsFile(options.settings));
    plan.params.classModels = modelFilesIn(options.models);
    ConfusionTable table;
    for (std::string const& text : options.videos) {
        Video const video = parseVideo(text);
        for (auto const& [id, decision] : decide(video.path, plan, options.span, stop)) {
            print(std::filesystem::path(video.path).filename().string(), id, decision);
            table.count(video.truth, decision.name);
        }
    }
    table.print(std::cout);
}

} // namespace tools
