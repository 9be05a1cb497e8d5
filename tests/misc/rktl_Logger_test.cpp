#include <gtest/gtest.h>

#include "misc/rktl_FileLogger.h"
#include "misc/rktl_Logger.h"
#include "support/TempFolder.h"
#include "support/text_file.h"
#include "support/virtual_clock.h"

using rktl::ElapsedTime;
using rktl::LogType;
using rktl::String;

namespace {

constexpr int patience = 5000; // ms, for what happens at once

/// Keeps what it would write.
class TestLogger : public rktl::Logger {
public:
    explicit TestLogger(char const* timeFormat = "")
        : Logger(timeFormat)
    {
    }

    ~TestLogger() noexcept override { stop(ElapsedTime(patience)); }

    /// Everything logged so far.
    std::string written()
    {
        EXPECT_TRUE(stop(ElapsedTime(patience)));
        return mWritten;
    }

    using Logger::format;
    rkst::Event proceed{true, true};   // output may go on
    rkst::Event entered{false, false}; // output was reached

protected:
    bool output(LogType const&, String const& line) override
    {
        entered.signal();
        EXPECT_TRUE(proceed.wait(patience));
        mWritten += line;
        return true;
    }

private:
    std::string mWritten;
};

/// Gives access to the writing itself, without the worker.
class TestFileLogger : public rktl::FileLogger {
public:
    using FileLogger::FileLogger;
    using FileLogger::output;
};

} // namespace

TEST(Logger, LineIsLevelInFourCharactersAndText)
{
    TestLogger logger;
    EXPECT_TRUE(logger.start());
    EXPECT_TRUE(logger.log(LogType::Critical, String("a")));
    EXPECT_TRUE(logger.log(LogType::Error, String("b\n")));
    EXPECT_TRUE(logger.log(LogType::Warning, String("")));
    EXPECT_TRUE(logger.log(LogType::Status, "%d%%", 100));
    EXPECT_TRUE(logger.log(LogType::Info, String("100%s")));
    EXPECT_TRUE(logger.log(LogType(7), String("c")));
    EXPECT_EQ("CRIT a\nERR  b\nWARN \nSTAT 100%\nINFO 100%s\n     c\n", logger.written());
}

TEST(Logger, TimeOfTheCallStandsBeforeTheLine)
{
    VirtualClock clock;
    clock.setWall(1246451400250); // 2009-07-01 12:30:00.250 GMT
    TestLogger logger("%S.%s");
    EXPECT_EQ("00.250 INFO x", logger.format(LogType::Info, "x"));
}

TEST(Logger, LongLineEndsInDotsAndLosesItsLineFeed)
{
    // "INFO " and the line feed take 6 of the characters; a line of 1023 still fits.
    TestLogger logger;
    EXPECT_TRUE(logger.start());
    logger.log(LogType::Info, String(1017, 'a'));
    logger.log(LogType::Info, String(1018, 'b'));
    logger.log(LogType::Info, String(5000, 'c'));
    std::string const expected =
        "INFO " + std::string(1017, 'a') + "\nINFO " + std::string(1015, 'b') + "...INFO " + std::string(1015, 'c') + "...";
    EXPECT_EQ(expected, logger.written());
}

TEST(Logger, RingKeepsTheNewestHundredLines)
{
    TestLogger logger;
    logger.proceed.reset();
    EXPECT_TRUE(logger.start());
    logger.log(LogType::Info, String("held"));
    EXPECT_TRUE(logger.entered.wait(patience));
    std::string expected = "INFO held\n";
    for (int i = 0; i < 150; ++i) {
        logger.log(LogType::Info, "%d", i);
        if (i >= 50)
            expected += "INFO " + std::to_string(i) + "\n";
    }
    logger.proceed.signal();
    EXPECT_EQ(expected, logger.written());
}

TEST(Logger, WithoutAWorkerLinesGoToStandardError)
{
    TestLogger logger;
    testing::internal::CaptureStderr();
    EXPECT_FALSE(logger.log(LogType::Error, "before"));
    EXPECT_TRUE(logger.start());
    EXPECT_TRUE(logger.log(LogType::Error, "between"));
    EXPECT_EQ("ERR  between\n", logger.written());
    EXPECT_FALSE(logger.log(LogType::Error, "after"));
    EXPECT_EQ("ERR  before\nERR  after\n", testing::internal::GetCapturedStderr());
    EXPECT_TRUE(logger.start());
    EXPECT_TRUE(logger.log(LogType::Error, "again"));
    EXPECT_EQ("ERR  between\nERR  again\n", logger.written());
}

TEST(FileLogger, FileStartsOverOnceItReachedItsLimit)
{
    TempFolder const folder;
    std::string const path = folder / "log";
    TestFileLogger logger(path, 100);
    TestFileLogger copy;
    copy = TestFileLogger(logger);
    std::string const lines[] = {std::string(59, 'a') + "\n", std::string(59, 'b') + "\n", std::string(59, 'c') + "\n"};
    testing::internal::CaptureStdout();
    std::string const wanted[] = {lines[0], lines[0] + lines[1], lines[2]};
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(copy.output(LogType::Info, lines[i]));
        EXPECT_EQ(wanted[i], contents(path));
    }

    TestFileLogger exact(path, 60); // a file of just the limit starts over
    exact.output(LogType::Info, "d");
    EXPECT_EQ("d", contents(path));

    // No path, and a path that cannot be opened: the line is still on standard output.
    EXPECT_TRUE(TestFileLogger().output(LogType::Info, "e"));
    EXPECT_TRUE(TestFileLogger(path + "/below/a/file", 100).output(LogType::Info, "f"));
    EXPECT_EQ(lines[0] + lines[1] + lines[2] + "def", testing::internal::GetCapturedStdout());
}
