#pragma once

#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

/// Local time of the process for a while. zone as in the environment variable TZ of POSIX, such as "CET-1CEST,M3.5.0,M10.5.0/3":
/// such rules need no zone files on the machine.
class TimeZone {
public:
    explicit TimeZone(char const* zone)
    {
        if (char const* const before = std::getenv("TZ"))
            mBefore = before;
        setenv("TZ", zone, 1);
        tzset();
    }
    ~TimeZone()
    {
        if (mBefore)
            setenv("TZ", mBefore->c_str(), 1);
        else
            unsetenv("TZ");
        tzset();
    }
    TimeZone(TimeZone const&) = delete;
    TimeZone& operator=(TimeZone const&) = delete;

private:
    std::optional<std::string> mBefore;
};
