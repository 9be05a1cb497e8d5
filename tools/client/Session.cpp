#include "Session.h"

#include "BaseClasses/Heartbeat.h"
#include "BaseClasses/MeridaneAddress.h"
#include "Meridane/Subsystem/ConnectionCmd.h"
#include "misc/rk_clock.h"
#include "misc/rktl_Exception.h"

namespace tools {

namespace {

constexpr unsigned int SEND_QUEUE = 50;       // frames
constexpr unsigned int GREETING_LIMIT = 5000; // ms
constexpr unsigned int MOMENT = 100;          // ms
constexpr uint32_t SILENCE_LIMIT = 40000;     // ms

/// The message without the place in the source that raised it.
std::string reasonOf(rktl::Exception const& failure)
{
    std::string const text = failure.what();
    size_t const place = text.find("): ");
    return place == std::string::npos ? text : text.substr(place + 3);
}

} // namespace

/// Runs action; what the stream throws becomes a ConnectionError.
template <class Action> auto Session::guarded(Action action) -> decltype(action())
try {
    return action();
} catch (rktl::Exception const& failure) {
    throw ConnectionError("the connection to " + mEndpoint.text() + " broke: " + reasonOf(failure));
}

Session::Session(Endpoint const& endpoint)
    : mEndpoint(endpoint)
    , mStream(endpoint.connect(), SEND_QUEUE)
    , mLastTick(rk_tickcount())
{
    bool const greeted = guarded([&] {
        if (!mStream.wait(GREETING_LIMIT))
            throw ConnectionError(endpoint.text() + " accepts connections, but says nothing");
        return mStream.getNextType() == Heartbeat::typeId;
    });
    if (!greeted) {
        mStream.abort();
        throw std::runtime_error(endpoint.text() + " does not speak the object protocol");
    }
}

rktl::url Session::url(char const* camera) const
{
    return MeridaneAddress::createURL(mEndpoint.host, camera, "", MeridaneAddress::localSite, {});
}

void Session::send(rksl::Serializable const& object)
{
    guarded([&] { return mStream.write(object); });
}

void Session::requestFrames(FrameRequest const& request)
{
    send(ConnectionCmd::frameRequest(url("Embedded"), request));
}

rksl::Result Session::ask(rksl::Command const& command)
{
    send(command);
    rksl::Result result;
    bool const granted =
        guarded([&] { return rksl::Result::waitForResult(mStream, command.getTimeout(), command, result, &keep, this); });
    if (granted)
        return result;
    std::string const code = rksl::Result::codeToString(result.getCode());
    throw std::runtime_error(mEndpoint.text() + " gives no \"" + command.getCommandString() +
        "\": " + (result.getMessage().empty() ? code : code + ", " + result.getMessage()));
}

bool Session::keep(unsigned short, void* session, rksl::IStream&)
{
    auto* const self = static_cast<Session*>(session);
    self->take(self->mKept.emplace_back());
    return true;
}

void Session::take(rksl::StreamData& frame)
{
    unsigned char* data = nullptr;
    unsigned int length = 0;
    mStream.readNextObject(data, length);
    frame = rksl::StreamData(data, length);
    mLastTick = rk_tickcount();
}

ObjectSource::Next Session::next(rksl::StreamData& frame)
{
    if (!mKept.empty()) {
        frame = mKept.front();
        mKept.pop_front();
        return Next::object;
    }
    return guarded([&] {
        if (mStream.wait(MOMENT)) {
            if (mStream.isEOF())
                return Next::end;
            take(frame);
            return Next::object;
        }
        if (rk_tickcount() - mLastTick >= SILENCE_LIMIT)
            throw ConnectionError(mEndpoint.text() + " has been silent for " + std::to_string(SILENCE_LIMIT / 1000) + " s");
        return Next::nothing;
    });
}

} // namespace tools
