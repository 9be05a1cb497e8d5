#include "streams/rksl_StreamServer.h"

namespace rksl {

StreamServer::StreamServer()
    : mListener(nullptr)
{
}

bool StreamServer::setStreamListener(StreamListener* listener)
{
    return mListener.assign(listener, listenerLimit);
}

} // namespace rksl
