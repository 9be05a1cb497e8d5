// contraflow-analyze: what the application makes of a recording, as fast as the machine allows.

#include "Snapshot.h"
#include "SpyList.h"
#include "BaseClasses/ProcessFrame.h"
#include "support/Analysis.h"
#include "support/Dump.h"
#include "support/ModelFolder.h"
#include "support/ProgressBar.h"
#include "support/SettingsFile.h"
#include "trackers/EventSpies/FrameEventSpy.h"

#include <CLI/CLI.hpp>

#include <fstream>
#include <iostream>
#include <unistd.h>

namespace {

constexpr char const* DEFAULT_START = "2024-01-01T00:00:00Z"; // fixed, so that a run gives the same bytes on every day

struct Options {
    std::string input;
    std::string settings;
    std::string run;
    std::string models;
    std::string spies;
    bool spiesOnly = false;
    bool listSpies = false;
    std::string start;
    std::string events;
    std::string snapshots;
    std::string dump;
    std::vector<std::string> images;
    std::optional<double> limit;
};

std::optional<int64_t> parseTime(std::string const& text)
{
    auto const time = rktl::TimeStamp::fromISOString(text);
    if (!time.isSet())
        return std::nullopt;
    return time.toElapsedTime().toMilliseconds();
}

std::string checkTime(std::string const& text)
{
    return parseTime(text) ? "" : "expected a time such as 2024-05-31T13:45:00Z, not \"" + text + "\"";
}

/// "Native_Image" is "Native Image".
std::string imageName(std::string name)
{
    std::replace(name.begin(), name.end(), '_', ' ');
    return name;
}

std::string checkImage(std::string const& text)
{
    auto const& names = tools::imageNames();
    if (std::find(names.begin(), names.end(), imageName(text)) != names.end())
        return "";
    std::string known;
    for (std::string const& name : names)
        known += (known.empty() ? "" : ", ") + name;
    return "no image is called \"" + text + "\"; there are " + known;
}

bool isDump(Options const& options)
{
    return std::filesystem::is_directory(options.input);
}

std::string runFileOf(Options const& options)
{
    if (!options.run.empty() || !options.settings.empty() || !isDump(options))
        return options.run;
    auto const path = tools::dump::runFile(options.input);
    return std::filesystem::exists(path) ? path.string() : "";
}

tools::Json readRunFile(std::string const& path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw std::runtime_error(path + ": cannot be read");
    return tools::Json::parse(file);
}

/// Settings and values of the run, from the files that were named or stand in for them, but for the spies.
tools::RunPlan readPlan(Options const& options)
{
    std::string const runFile = runFileOf(options);
    if (runFile.empty())
        return tools::RunPlan(tools::readSettingsFile(options.settings));
    tools::Json run;
    SettingsMap settings;
    try {
        run = readRunFile(runFile);
        // A run file with settings has them all; without, or on top of a settings file, it only changes some.
        if (!options.settings.empty() || !run.contains("settings"))
            settings = tools::readSettingsFile(options.settings);
        tools::readRunSettings(run, settings);
        tools::RunPlan plan(settings);
        plan.apply(run);
        return plan;
    } catch (nlohmann::json::exception const& error) {
        throw std::runtime_error(runFile + ": is no JSON: " + error.what());
    }
}

tools::RunPlan makePlan(Options const& options)
{
    tools::RunPlan plan = readPlan(options);
    rktl::String complaint;
    plan.useSettingsSpies(complaint);
    if (!complaint.empty())
        std::cerr << "contraflow-analyze: spies_file is left out: " << complaint << "\n";
    if (!options.models.empty())
        plan.params.classModels = tools::modelFilesIn(options.models);
    if (!options.spies.empty())
        plan.useSpies(SpiesFile::read(options.spies), options.spiesOnly);
    return plan;
}

/// The spies that can have raised an event, under the names that they run by.
rksl::List<EventSpyFactory> namedSpies(tools::RunPlan const& plan)
{
    rksl::List<EventSpyFactory> spies = plan.params.spies;
    SimpleTracker::nameSpies(spies);
    return spies;
}

/// Everything that a run writes.
class Output {
public:
    Output(Options const& options, tools::RunPlan const& plan)
        : mSnapshots(options.snapshots)
        , mSpies(namedSpies(plan))
    {
        if (!options.events.empty()) {
            mEvents.open(options.events, std::ios::binary);
            requireEvents(options.events);
        }
        mEventsPath = options.events;
        if (!options.snapshots.empty())
            std::filesystem::create_directories(options.snapshots);
        if (!options.dump.empty())
            mDump.emplace(options.dump, plan.toJson(), options.images);
    }

    void write(tools::FrameResult const& result)
    {
        for (Event const& event : result.events) {
            if (mEvents.is_open())
                mEvents << tools::jsonLine(tools::eventLine(result, event)) << "\n";
            if (std::find(result.sent.begin(), result.sent.end(), event.getUID()) != result.sent.end())
                writeAlarm(result, event);
        }
        if (mDump)
            mDump->write(result);
    }

    void finish(tools::RunSummary const& summary)
    {
        if (mEvents.is_open()) {
            mEvents.flush();
            requireEvents(mEventsPath);
        }
        std::cout << tools::jsonLine(summary.toJson()) << std::endl;
        if (!std::cout)
            throw std::runtime_error("the standard output cannot be written");
    }

private:
    void requireEvents(std::string const& path)
    {
        if (!mEvents)
            throw std::runtime_error(path + ": cannot be written");
    }

    void writeAlarm(tools::FrameResult const& result, Event const& event)
    {
        ++mAlarms;
        std::cout << tools::jsonLine(tools::eventLine(result, event)) << std::endl;
        if (mSnapshots.empty())
            return;
        std::string const name = std::to_string(1000000 + result.number).substr(1) + "-alarm-" + std::to_string(mAlarms) + ".png";
        tools::writeImage(mSnapshots / name, tools::drawSnapshot(result, event, ruleOf(event), mAlarms));
    }

    /// Null when the event's origin names none of them.
    FrameEventSpy const* ruleOf(Event const& event) const
    {
        for (EventSpyFactory const& factory : mSpies)
            if (factory.getSpy()->getName() == event.getSpyName())
                return dynamic_cast<FrameEventSpy const*>(factory.getSpy());
        return nullptr;
    }

    std::filesystem::path const mSnapshots; // empty: none
    rksl::List<EventSpyFactory> const mSpies;
    std::string mEventsPath;
    std::ofstream mEvents;
    std::optional<tools::DumpWriter> mDump;
    uint64_t mAlarms = 0;
};

void run(Options const& options)
{
    if (!options.dump.empty() && isDump(options) && std::filesystem::exists(options.dump) &&
        std::filesystem::equivalent(options.dump, options.input))
        throw std::runtime_error("--dump " + options.dump + ": would overwrite its own input");
    tools::RunPlan const plan = makePlan(options);
    auto const input = isDump(options) ? tools::openDump(options.input) : tools::openVideo(options.input);

    tools::RunOptions runOptions;
    runOptions.startTime = *parseTime(options.start.empty() ? DEFAULT_START : options.start);
    runOptions.keepTimes = options.start.empty();
    runOptions.limit = options.limit;
    if (!options.dump.empty())
        runOptions.images = options.images;

    auto length = input->length();
    if (options.limit)
        length = std::min(length.value_or(INT64_MAX), int64_t(*options.limit * 1000));
    Output output(options, plan);
    tools::ProgressBar progress(std::cerr, isatty(STDERR_FILENO), length);
    bool told = false;
    auto const summary = tools::analyse(
        *input, plan, runOptions,
        [&](tools::FrameResult const& result) {
            if (!result.sent.empty())
                progress.clear();
            output.write(result);
            progress.update(result.frame.getPosition().toMilliseconds(), result.number + 1);
        },
        [&](uint64_t frame, std::string const& why) {
            if (!told) {
                progress.clear();
                std::cerr << "contraflow-analyze: frame " << frame << " failed: " << why
                          << "; further failures are only counted\n";
            }
            told = true;
        });
    progress.clear();
    output.finish(summary);
}

} // namespace

int main(int argc, char** argv)
{
    Options options;
    CLI::App app(
        "Analyses a recording as the application would, and tells which alarms it would have sent: one JSON line each, and a "
        "summary.");
    auto* const input =
        app.add_option("INPUT", options.input, "a video, a .y4m file, scene:NAME, or the folder of an earlier dump");
    app.add_option("--settings", options.settings,
        "settings file of the application; otherwise those in the application's home (CS_APP_HOME), or the defaults");
    app.add_option("--run", options.run, "a run.json of an earlier dump: its settings, and values that differ from them");
    auto* const spies = app.add_option("--spies", options.spies,
        "runs the spies of this file beside those of the settings: XML elements, as --list-spies prints");
    app.add_flag("--spies-only", options.spiesOnly, "runs the spies of that file alone")->needs(spies);
    app.add_flag("--list-spies", options.listSpies, "prints each type of spy, ready to copy into such a file, and ends")
        ->excludes(input);
    app.add_option("--models", options.models, "says what the objects are by the model files of this folder");
    app.add_option("--start-time", options.start,
           std::string("wall clock of the first frame, ISO 8601; ") + DEFAULT_START +
               " or, for a dump, its own times unless given")
        ->check(checkTime);
    app.add_option(
        "--events", options.events, "writes every new or changed event of every frame to this file, one JSON line each");
    app.add_option("--snapshots", options.snapshots, "writes a PNG for each alarm into this folder");
    auto* const dump =
        app.add_option("--dump", options.dump, "writes what the pipeline saw and decided into this folder, frame by frame");
    app.add_option("--images", options.images, "of the dump's images only these, such as Native_Image,Foreground_Image")
        ->delimiter(',')
        ->check(checkImage)
        ->needs(dump);
    app.add_option("--limit", options.limit, "analyses only the first SECONDS")->check(CLI::NonNegativeNumber);
    try {
        app.parse(argc, argv);
        if (!options.listSpies && options.input.empty())
            throw CLI::RequiredError("INPUT");
    } catch (CLI::ParseError const& error) {
        return app.exit(error) == 0 ? 0 : 2;
    }
    if (options.images.empty())
        options.images = tools::imageNames();
    std::transform(options.images.begin(), options.images.end(), options.images.begin(), imageName);
    try {
        if (options.listSpies)
            tools::listSpies(std::cout);
        else
            run(options);
    } catch (std::exception const& error) {
        std::cerr << "contraflow-analyze: " << error.what() << "\n";
        return 1;
    }
    return 0;
}
