#include "streams/rksl_StreamCloser.h"

#include "misc/rktl_ElapsedTime.h"
#include "streams/rksl_IOStream.h"
#include "sync/rkst_Deadline.h"
#include "sync/rkst_MutexLock.h"
#include "sync/rkst_SimpleThread.h"

namespace rksl {

class StreamCloser::Closing : public rkst::SimpleThread {
public:
    explicit Closing(rktl::SmartPtr<IOStream> const& stream)
        : mStream(stream)
    {
        if (!start())
            mStream->abort(); // no thread to be had: then its destructor has nothing to wait for
    }

    ~Closing() noexcept override { stop(rktl::ElapsedTime(destructorLimit)); }

    bool hasFinished(unsigned int milliseconds) const { return mNotRunningEvent.wait(milliseconds); }
    void abort() { mStream->abort(); }

    using SimpleThread::process;
    void process() override { mStream->close(); }

private:
    rktl::SmartPtr<IOStream> mStream;
};

StreamCloser::StreamCloser() = default;

StreamCloser::~StreamCloser()
{
    finish(0);
}

void StreamCloser::close(rktl::SmartPtr<IOStream> const& stream)
{
    rkst::MutexLock const lock(mMutex, rkst::Deadline::noLimit);
    dropFinished();
    mClosings.push_back(std::make_unique<Closing>(stream));
}

unsigned int StreamCloser::getCount()
{
    rkst::MutexLock const lock(mMutex, rkst::Deadline::noLimit);
    dropFinished();
    return static_cast<unsigned int>(mClosings.size());
}

void StreamCloser::finish(unsigned int milliseconds)
{
    rkst::Deadline const deadline(milliseconds);
    std::list<std::unique_ptr<Closing>> closings;
    {
        rkst::MutexLock const lock(mMutex, rkst::Deadline::noLimit);
        closings.swap(mClosings);
    }
    for (auto const& closing : closings)
        if (!closing->hasFinished(deadline.remaining()))
            closing->abort();
}

void StreamCloser::dropFinished()
{
    mClosings.remove_if([](auto const& closing) { return closing->hasFinished(0); });
}

} // namespace rksl
