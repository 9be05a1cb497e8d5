#include "Receiver.h"

#include "BaseClasses/Frame.h"
#include "BaseClasses/Heartbeat.h"
#include "misc/rktl_Exception.h"
#include "streams/rksl_FrameHeader.h"
#include "streams/rksl_Result.h"

#include <stdexcept>

namespace tools {

namespace {

constexpr unsigned int FRAME_TYPE = 3;

void requireSuccess(rksl::StreamData const& frame)
{
    rksl::Result result;
    decode(frame, result);
    if (result.getCode() < 0)
        throw std::runtime_error("the server refuses: " + rksl::Result::codeToString(result.getCode()) +
            (result.getMessage().empty() ? "" : ", " + result.getMessage()));
}

/// What Receiver::onFrame answers; true for all else.
bool handOn(rksl::StreamData const& data, Receiver& receiver)
{
    receiver.onObject(data);
    switch (data.getType()) {
    case FRAME_TYPE: {
        Frame frame;
        decode(data, frame);
        return receiver.onFrame(frame);
    }
    case Heartbeat::typeId: {
        Heartbeat heartbeat;
        decode(data, heartbeat);
        receiver.onHeartbeat(heartbeat);
        return true;
    }
    case rksl::Result::typeId:
        requireSuccess(data);
        return true;
    default:
        return true;
    }
}

} // namespace

void decode(rksl::StreamData const& frame, rksl::Serializable& object)
try {
    object.fromBin(frame.getBytes() + rksl::FrameHeader::size, frame.getLength() - rksl::FrameHeader::size);
} catch (rktl::Exception const&) {
    throw std::runtime_error("received a " + object.getTypeName() + " that cannot be read");
}

Outcome follow(ObjectSource& source, Receiver& receiver, std::atomic<bool> const& stop)
{
    rksl::StreamData data;
    while (!stop)
        switch (source.next(data)) {
        case ObjectSource::Next::nothing:
            receiver.onIdle();
            break;
        case ObjectSource::Next::end:
            return Outcome::ended;
        case ObjectSource::Next::object:
            if (!handOn(data, receiver))
                return Outcome::enough;
        }
    return Outcome::stopped;
}

} // namespace tools
