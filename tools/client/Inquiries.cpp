#include "Inquiries.h"

#include "BaseClasses/CameraMap.h"
#include "BaseClasses/Heartbeat.h"
#include "Meridane/Subsystem/CameraCmd.h"
#include "Meridane/Subsystem/TrackerCmd.h"
#include "Receiver.h"
#include "Session.h"
#include "Words.h"
#include "misc/rktl_TimeStamp.h"
#include "streams/rksl_Ping.h"

#include <algorithm>
#include <chrono>
#include <optional>

namespace tools {

namespace {

using Clock = std::chrono::steady_clock;

constexpr char const* CAMERA = "Embedded"; // what a camera's own server calls its camera
constexpr auto PING_PERIOD = std::chrono::seconds(1);
constexpr auto PING_LIMIT = std::chrono::seconds(15);

/// The next heartbeat; nothing when limit passes or stop is set first. Throws ConnectionError when the server ends.
std::optional<Heartbeat> nextHeartbeat(
    Session& session, Endpoint const& endpoint, Clock::time_point limit, std::atomic<bool> const& stop)
{
    rksl::StreamData frame;
    while (!stop && Clock::now() < limit) {
        auto const next = session.next(frame);
        if (next == ObjectSource::Next::end)
            throw ConnectionError(endpoint.text() + " has ended the connection");
        if (next == ObjectSource::Next::object && frame.getType() == Heartbeat::typeId) {
            Heartbeat heartbeat;
            decode(frame, heartbeat);
            return heartbeat;
        }
    }
    return std::nullopt;
}

rksl::Set<rktl::String> offeredImages(Session& session)
{
    rksl::Set<rktl::String> names;
    if (!session.ask(TrackerCmd::queryImages(session.url(CAMERA))).peek(names))
        throw std::runtime_error("the server answers without the names of its images");
    return names;
}

void printCameras(CameraMap const& cameras, std::ostream& out)
{
    CameraMap::StatusMap machines;
    cameras.getMachines(machines, 0);
    for (auto const& [machine, status] : machines) {
        out << "machine   " << printable(machine) << " (" << CameraMap::statusToString(uint32_t(status.value)) << ")\n";
        for (auto const& [camera, cameraStatus] : cameras.getCameras(machine.c_str(), 0))
            out << "camera    " << printable(camera) << " (" << CameraMap::statusToString(uint32_t(cameraStatus.value)) << ")\n";
    }
}

/// One ping and its answer, which is the heartbeat without attributes.
std::optional<double> roundTrip(Session& session, Endpoint const& endpoint, std::atomic<bool> const& stop)
{
    auto const start = Clock::now();
    rksl::Ping ping;
    ping.timestamp = rktl::TimeStamp::systemTimeGMT();
    session.send(ping);
    while (auto const heartbeat = nextHeartbeat(session, endpoint, start + PING_LIMIT, stop))
        if (heartbeat->getAttributes().empty())
            return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
    if (stop)
        return std::nullopt;
    throw ConnectionError(endpoint.text() + " does not answer");
}

} // namespace

void printInfo(Endpoint const& endpoint, std::ostream& out)
{
    Session session(endpoint);
    auto const greeting = nextHeartbeat(session, endpoint, Clock::now() + PING_LIMIT, false);
    if (!greeting)
        throw ConnectionError(endpoint.text() + " does not greet");
    int const version = greeting->version.value;
    out << "server    " << endpoint.text() << ", protocol " << (version >> 5) << "." << (version & 31) << ", its clock "
        << greeting->timestamp.toGMT().toISOString() << "\n";
    CameraMap cameras;
    if (!session.ask(CameraCmd::query(session.url(CAMERA))).peek(cameras))
        throw std::runtime_error("the server answers without its cameras");
    printCameras(cameras, out);
    for (rktl::String const& name : offeredImages(session))
        out << "image     " << printable(name) << "\n";
    out << std::flush;
    session.close();
}

void printPings(Endpoint const& endpoint, uint64_t count, std::ostream& out, std::atomic<bool> const& stop)
{
    Session session(endpoint);
    nextHeartbeat(session, endpoint, Clock::now() + PING_LIMIT, stop); // the greeting, which looks like an answer
    double least = 0, most = 0, sum = 0;
    uint64_t answers = 0;
    while (!stop && (count == 0 || answers < count)) {
        auto const due = Clock::now() + PING_PERIOD;
        auto const milliseconds = roundTrip(session, endpoint, stop);
        if (!milliseconds)
            break;
        least = answers == 0 ? *milliseconds : std::min(least, *milliseconds);
        most = std::max(most, *milliseconds);
        sum += *milliseconds;
        ++answers;
        out << rktl::String::fromFormat("answer %llu from %s: %.1f ms\n", static_cast<unsigned long long>(answers),
                   endpoint.text().c_str(), *milliseconds)
            << std::flush;
        if (answers != count)
            while (nextHeartbeat(session, endpoint, due, stop)) { }
    }
    if (answers > 0)
        out << rktl::String::fromFormat("round trip of %llu: least %.1f, mean %.1f, most %.1f ms\n",
                   static_cast<unsigned long long>(answers), least, sum / double(answers), most)
            << std::flush;
    session.close();
}

void requireImages(Session& session, std::vector<std::string> const& names)
{
    rksl::Set<rktl::String> const offered = offeredImages(session);
    for (std::string const& name : names) {
        if (offered.count(name) > 0)
            continue;
        std::string known;
        for (rktl::String const& image : offered)
            known += (known.empty() ? "" : ", ") + printable(image);
        throw std::runtime_error("the server has no image \"" + name + "\"; it offers " + known);
    }
}

} // namespace tools
