#include "trackers/SvmClassification/ParallelScores.h"

#include <cerrno>
#include <csignal>
#include <deque>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace {

using Score = std::function<float(size_t)>;

/// One trial in a process of its own, which ends with this.
class Trial {
public:
    Trial(size_t number, Score const& score)
        : mNumber(number)
    {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0)
            return;
        mProcess = fork();
        if (mProcess == 0)
            work(ends[1], score);
        close(ends[1]);
        mResult = ends[0];
    }
    ~Trial()
    {
        if (mResult >= 0)
            close(mResult);
        if (mProcess <= 0)
            return;
        kill(mProcess, SIGKILL);
        while (waitpid(mProcess, nullptr, 0) < 0 && errno == EINTR) { }
    }
    Trial(Trial const&) = delete;
    Trial& operator=(Trial const&) = delete;

    size_t number() const { return mNumber; }

    /// Waits for the score; works it out here when the process gave none.
    float result(Score const& score) const
    {
        float value = 0;
        ssize_t bytes = -1;
        while (mResult >= 0 && (bytes = read(mResult, &value, sizeof(value))) < 0 && errno == EINTR) { }
        return bytes == sizeof(value) ? value : score(mNumber);
    }

private:
    [[noreturn]] void work(int pipe, Score const& score) const
    {
        prctl(PR_SET_PDEATHSIG, SIGKILL); // nobody would read the score
        std::signal(SIGINT, SIG_IGN);     // a terminal sends it to all; the parent decides
        float const value = score(mNumber);
        _exit(write(pipe, &value, sizeof(value)) == sizeof(value) ? 0 : 1);
    }

    size_t const mNumber;
    pid_t mProcess = -1;
    int mResult = -1;
};

} // namespace

void scoreInOrder(size_t trials, Score const& score, std::function<bool(size_t, float)> const& take)
{
    size_t const cores = std::thread::hardware_concurrency();
    std::deque<Trial> running;
    for (size_t done = 0, started = 0; done < trials; ++done) {
        // One more than there are cores, so that none waits while the oldest trial is the slowest.
        for (; cores > 1 && started < trials && running.size() <= cores; ++started)
            running.emplace_back(started, score);
        float const value = running.empty() ? score(done) : running.front().result(score);
        if (!running.empty())
            running.pop_front();
        if (!take(done, value))
            return;
    }
}
