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
    EXPECT_EQ("stray", args.value("last"));
    EXPECT_FALSE(args.has("8080"));
    EXPECT_TRUE(args.has("flag"));
    CommandLineArgs const odd = parse({"app", "-port", "-8080", "stray", "--port", "", "/p", "8", "/p", "9"});
    EXPECT_EQ("", odd.value("port")); // a marked argument is no value
    EXPECT_EQ("stray", odd.value("8080"));
    EXPECT_TRUE(odd.has("-port")); // one mark is lost, no more
    EXPECT_EQ("9", odd.value("p"));
    EXPECT_FALSE(parse({}).has(""));
}

} // namespace
