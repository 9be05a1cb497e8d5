// contraflow-client: what a camera's server sees and decides, for people.

#include "Inquiries.h"
#include "Outputs.h"
#include "Session.h"

#include <CLI/CLI.hpp>

#include <csignal>
#include <functional>
#include <iostream>
#include <optional>
#include <unistd.h>

namespace {

using namespace tools;

std::atomic<bool> stopped = false;
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler sets it");

struct Options {
    std::string server;
    bool retry = false;
    uint64_t count = 0; // 0: until the end
    unsigned int fps = 0;
    std::vector<std::string> names;
    std::string folder;
    std::string file;
    bool overlay = false;
};

/// "Native_Image" is "Native Image".
std::string imageName(std::string name)
{
    std::replace(name.begin(), name.end(), '_', ' ');
    return name;
}

FrameRequest requestOf(Options const& options, bool tracks)
{
    FrameRequest request;
    request.tracks = tracks;
    request.fps = int32_t(options.fps);
    for (std::string const& name : options.names)
        request.imageTypes.insert(name);
    return request;
}

/// Waits a second, or until the user stops us.
void waitToRetry()
{
    for (int tenths = 0; tenths < 10 && !stopped; ++tenths)
        usleep(100000);
}

/// Does a job on a connection, and with --retry again on the next one whenever it breaks or cannot be made. job gives false when
/// the server ended it early.
void withRetries(Options const& options, std::function<bool(Endpoint const&)> const& job)
{
    Endpoint const endpoint = Endpoint::parse(options.server);
    while (!stopped) {
        std::string reason = endpoint.text() + " has ended the connection";
        try {
            if (job(endpoint))
                return;
        } catch (ConnectionError const& failure) {
            reason = failure.what();
        }
        if (stopped)
            return;
        if (!options.retry)
            throw ConnectionError(reason);
        std::cerr << "contraflow-client: " << reason << "; trying again" << std::endl;
        waitToRetry();
    }
}

/// Frames from the server into receiver, which lives over all connections.
void receiveFrames(Options const& options, bool tracks, Receiver& receiver)
{
    withRetries(options, [&](Endpoint const& endpoint) {
        Session session(endpoint);
        if (!options.names.empty())
            requireImages(session, options.names);
        session.requestFrames(requestOf(options, tracks));
        Outcome const outcome = follow(session, receiver, stopped);
        session.close();
        if (outcome == Outcome::ended && options.count == 0 && !options.retry) {
            std::cerr << "contraflow-client: " << endpoint.text() << " has ended the connection" << std::endl;
            return true;
        }
        return outcome != Outcome::ended;
    });
}

void sayPictures(PictureWriter const& pictures, std::string const& folder)
{
    std::cerr << "contraflow-client: " << pictures.written() << " of " << pictures.frames() << " frames brought pictures, now in "
              << folder << std::endl;
}

PictureWriter::Options pictureOptions(Options const& options)
{
    return {options.folder, options.names, options.overlay, options.count};
}

void writeImages(Options const& options)
{
    PictureWriter pictures(pictureOptions(options));
    receiveFrames(options, options.overlay, pictures);
    sayPictures(pictures, options.folder);
}

void record(Options const& options)
{
    Recorder recorder(options.file, options.count);
    receiveFrames(options, true, recorder);
    std::cerr << "contraflow-client: recorded " << recorder.frames() << " frames" << std::endl;
}

void watch(Options const& options)
{
    StatusLine status(std::cout, isatty(STDOUT_FILENO));
    receiveFrames(options, true, status);
}

void printTracks(Options const& options)
{
    TrackPrinter tracks(std::cout, options.count);
    receiveFrames(options, true, tracks);
}

/// As lines or, with a folder, as pictures.
void replay(Options const& options)
{
    RecordingReader recording(options.file);
    if (options.folder.empty()) {
        TrackPrinter tracks(std::cout, options.count);
        follow(recording, tracks, stopped);
        return;
    }
    PictureWriter pictures(pictureOptions(options));
    follow(recording, pictures, stopped);
    sayPictures(pictures, options.folder);
}

/// What a user may ask for, each with what it needs.
class CommandLine {
public:
    CommandLine()
        : mApp("Shows what a camera's server sees and decides. SERVER is HOST:PORT; only replay does without.")
    {
        mApp.add_option("SERVER", options.server, "HOST:PORT, such as localhost:8554");
        mApp.require_subcommand(1);
        add("info", "protocol, cameras and names of debug images",
            [this] { withRetries(options, [](Endpoint const& endpoint) { return printInfo(endpoint, std::cout), true; }); });
        addCount(retry(add("ping", "how long the server takes to answer",
                     [this] {
                         withRetries(options, [this](Endpoint const& endpoint) {
                             printPings(endpoint, options.count, std::cout, stopped);
                             return true;
                         });
                     })),
            "pings; 0 for no end");
        addFps(retry(add("watch", "a status line that follows heartbeats, frame rate and tracks", [this] { watch(options); })));
        addCount(addFps(retry(add("tracks", "one JSON line for each frame", [this] { printTracks(options); }))), "frames");
        auto* const images = addCount(
            addFps(retry(add("images", "debug images as PNG files", [this] { writeImages(options); }))), "frames with pictures");
        addNames(images)->required();
        addFolder(images)->required();
        auto* const recording = addCount(
            addFps(retry(add("record", "all that the server sends, into a file", [this] { record(options); }))), "frames");
        recording->add_option("FILE", options.file)->required();
        addNames(recording);
        auto* const replayed = addCount(
            add("replay", "a recorded file as JSON lines or, with --out, as PNG files", [this] { replay(options); }), "frames");
        replayed->add_option("FILE", options.file)->required();
        addNames(replayed);
        addFolder(replayed);
    }

    /// The exit status: 0, 1 for a failure, 2 for a wrong use.
    int run(int argc, char** argv)
    {
        try {
            mApp.parse(argc, argv);
            if (options.server.empty() != mApp.got_subcommand("replay"))
                throw CLI::ValidationError("SERVER", options.server.empty() ? "is required" : "has no part in a replay");
        } catch (CLI::ParseError const& error) {
            return mApp.exit(error) == 0 ? 0 : 2;
        }
        std::transform(options.names.begin(), options.names.end(), options.names.begin(), imageName);
        try {
            mChosen();
        } catch (std::exception const& failure) {
            std::cerr << "contraflow-client: " << failure.what() << std::endl;
            return 1;
        }
        return 0;
    }

    Options options;

private:
    CLI::App* add(char const* name, char const* what, std::function<void()> action)
    {
        CLI::App* const command = mApp.add_subcommand(name, what);
        command->callback([this, action] { mChosen = action; });
        return command;
    }

    CLI::App* retry(CLI::App* command)
    {
        command->add_flag("--retry", options.retry, "connects again whenever the connection breaks or cannot be made");
        return command;
    }

    CLI::App* addCount(CLI::App* command, char const* what)
    {
        command->add_option("--count", options.count, std::string("ends after so many ") + what);
        return command;
    }

    CLI::App* addFps(CLI::App* command)
    {
        command->add_option("--fps", options.fps, "frames per second to ask for; 0, the default, for all")
            ->check(CLI::Range(0, 65535));
        return command;
    }

    CLI::Option* addNames(CLI::App* command)
    {
        return command->add_option("--name", options.names, "debug images such as \"Foreground Image\", with commas between")
            ->delimiter(',');
    }

    CLI::Option* addFolder(CLI::App* command)
    {
        command->add_flag("--overlay", options.overlay, "draws boxes, ids, paths and states of the objects in");
        return command->add_option("--out", options.folder, "folder of the PNG files");
    }

    CLI::App mApp;
    std::function<void()> mChosen;
};

} // namespace

int main(int argc, char** argv)
{
    for (int const signal : {SIGINT, SIGTERM})
        std::signal(signal, [](int number) {
            stopped = true;
            std::signal(number, SIG_DFL); // who cannot wait for the orderly end asks twice
        });
    std::signal(SIGPIPE, SIG_IGN); // a closed standard output shows as a failure to write
    return CommandLine().run(argc, argv);
}
