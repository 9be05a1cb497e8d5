#pragma once

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <map>
#include <poll.h>
#include <stdexcept>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

/// A program under test, started with variables added to the environment, whose standard output and error are read together.
/// All waits have a limit. It is killed when this goes.
class ChildProcess {
public:
    using Clock = std::chrono::steady_clock;
    using Milliseconds = std::chrono::milliseconds;

    ChildProcess(std::string const& program, std::vector<std::string> const& arguments,
        std::map<std::string, std::string> const& environment)
    {
        std::vector<char*> argv;
#ifdef CONTRAFLOW_EMULATOR
        argv.push_back(const_cast<char*>(CONTRAFLOW_EMULATOR)); // a program of another architecture
#endif
        argv.push_back(const_cast<char*>(program.c_str()));
        for (std::string const& argument : arguments)
            argv.push_back(const_cast<char*>(argument.c_str()));
        argv.push_back(nullptr);
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0)
            throw std::runtime_error("no pipe");
        mPid = fork();
        if (mPid == 0) {
            dup2(ends[1], STDOUT_FILENO);
            dup2(ends[1], STDERR_FILENO);
            for (auto const& [name, value] : environment)
                setenv(name.c_str(), value.c_str(), 1);
            execvp(argv.front(), argv.data());
            _exit(127);
        }
        close(ends[1]);
        mOutput = ends[0];
        if (mPid < 0)
            throw std::runtime_error("no process");
    }

    ~ChildProcess()
    {
        if (mPid > 0) {
            kill(mPid, SIGKILL);
            waitpid(mPid, nullptr, 0);
        }
        close(mOutput);
    }

    ChildProcess(ChildProcess const&) = delete;
    ChildProcess& operator=(ChildProcess const&) = delete;

    pid_t pid() const
    {
        return mPid;
    }

    void signal(int number) const
    {
        kill(mPid, number);
    }

    /// Reads on until text is found behind what earlier calls found. False at the end of the output or of the limit.
    bool waitFor(std::string const& text, Milliseconds limit = Milliseconds(20000))
    {
        auto const end = Clock::now() + limit;
        size_t found;
        while ((found = mText.find(text, mSeen)) == std::string::npos)
            if (!read(end))
                return false;
        mSeen = found + text.size();
        return true;
    }

    /// The exit status, or -1 when it did not end in time or not by itself.
    int waitForExit(Milliseconds limit = Milliseconds(20000))
    {
        auto const end = Clock::now() + limit;
        while (read(end))
            ;
        if (!mAtEnd)
            return -1;
        int status = 0;
        waitpid(std::exchange(mPid, -1), &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    /// All that was read so far.
    std::string const& text() const
    {
        return mText;
    }

private:
    bool read(Clock::time_point end)
    {
        auto const left = std::chrono::duration_cast<Milliseconds>(end - Clock::now()).count();
        pollfd descriptor = {mOutput, POLLIN, 0};
        if (left <= 0 || poll(&descriptor, 1, int(left)) <= 0)
            return false;
        char block[4096];
        ssize_t const count = ::read(mOutput, block, sizeof(block));
        mAtEnd = count <= 0;
        if (!mAtEnd)
            mText.append(block, size_t(count));
        return !mAtEnd;
    }

    pid_t mPid = -1;
    int mOutput = -1;
    std::string mText;
    size_t mSeen = 0;
    bool mAtEnd = false;
};
