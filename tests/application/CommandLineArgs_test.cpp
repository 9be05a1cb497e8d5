#include "application/CommandLineArgs.h"

#include <gtest/gtest.h>

#include <initializer_list>

namespace {

CommandLineArgs parse(std::initializer_list<char const*> arguments)
{
    std::vector<char*> list;
    for (char const* argument : arguments)
        list.push_back(const_cast<char*>(argument));
    return CommandLineArgs(int(list.size()), list.data());
}

TEST(CommandLineArgs, PairsKeysWithTheArgumentsBehindThem)
{
    CommandLineArgs const args = parse({"app", "-port", "8080", "/dir", "", "-flag", "/last", "stray"});
    EXPECT_EQ("app", args.programName());
    EXPECT_EQ("8080", args.value("port"));
    EXPECT_TRUE(args.has("dir"));
    EXPECT_EQ("", args.value("dir"));
    EXPECT_TRUE(args.has("flag"));
    EXPECT_EQ("stray", args.value("last"));
    EXPECT_FALSE(args.has("8080"));
    EXPECT_FALSE(args.has("none"));
    EXPECT_EQ("", args.value("none"));
}

TEST(CommandLineArgs, TakesNoMarkedArgumentForAValue)
{
    CommandLineArgs const args = parse({"app", "-port", "-8080", "stray", "key", "/port", "--port"});
    EXPECT_EQ("", args.value("port")); // the later one counts
    EXPECT_EQ("stray", args.value("8080"));
    EXPECT_TRUE(args.has("key"));
    EXPECT_TRUE(args.has("-port")); // one mark is lost, no more
    EXPECT_EQ("9", parse({"app", "/port", "8", "/port", "9"}).value("port"));
    EXPECT_FALSE(parse({}).has(""));
    EXPECT_FALSE(parse({"app", ""}).has(""));
}

} // namespace
