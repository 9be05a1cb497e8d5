#pragma once

#include "misc/rktl_ElapsedTime.h"
#include "streams/rksl_Command.h"
#include "streams/rksl_NetIOStream.h"
#include "streams/rksl_Result.h"
#include "support/loopback.h"

#include <gtest/gtest.h>

namespace support {

/// A client of the object protocol on a connected socket.
class ObjectClient {
public:
    explicit ObjectClient(Connection connection)
        : stream(connection.release(), 50)
    {
    }

    /// The next object of this type; those of other types are dropped. False when it does not come in time.
    template <class Object> bool read(Object& object, unsigned int milliseconds = 5000)
    {
        while (stream.wait(milliseconds)) {
            unsigned int const type = stream.getNextType();
            if (type == object.getTypeId())
                return stream.read(object) > 0;
            if (type == 1)
                return false;
            stream.skip();
        }
        return false;
    }

    rksl::Result ask(rksl::Command const& command)
    {
        stream.write(command);
        rksl::Result result;
        rksl::Result::waitForResult(stream, rktl::ElapsedTime(int64_t(5000)), command, result, nullptr, nullptr);
        return result;
    }

    rksl::NetIOStream stream;
};

} // namespace support
