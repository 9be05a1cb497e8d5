#include "streams/rksl_Command.h"

#include "streams/rksl_EndOfFile.h"
#include "streams/rksl_Result.h"
#include "support/bytes.h"

#include <gtest/gtest.h>

using rksl::Command;
using rksl::Result;
using support::hex;

namespace {

rktl::UUID idOf(char last)
{
    rktl::UUID id;
    id.fromString(rktl::String("00112233-4455-6677-8899-aabbccddee0") + last);
    return id;
}

TEST(Command, IsOneRecordOnTheWire)
{
    Command command(idOf('f'), "a:/", 3004, 2);
    command.setAudit(true);
    command.getObjectStream()->write(rktl::Integer(5));
    support::Bytes const bytes = hex("00112233 44556677 8899AABB CCDDEE0F  03000000 613A2F 00  BC0B0000  02010000"
                                     "0C000000 F8010000 04000000 05000000  983A0000 00000000");
    EXPECT_EQ(bytes, support::toBin(command));
    Command read;
    EXPECT_EQ(bytes.size(), support::fromBin(read, bytes));
    rktl::Integer number;
    Command const copy(read); // shares the objects
    copy.getObjectStream()->read(number);
    EXPECT_EQ(5, number);
    EXPECT_TRUE(read.getObjectStream()->isEmpty());
    support::expectEveryPrefixThrows<Command>(bytes);
}

TEST(Result, IsOneRecordOnTheWire)
{
    Result result(Command(idOf('f'), "a:/", 1, 1), -4, "no");
    EXPECT_TRUE(result.setObject(rktl::Integer(1)));
    EXPECT_TRUE(result.setObject(rktl::Integer(5))); // in its place
    support::Bytes const bytes = hex("FCFFFFFF 00112233 44556677 8899AABB CCDDEE0F 02000000 6E6F00"
                                     "0C000000 F8010000 04000000 05000000");
    EXPECT_EQ(bytes, support::toBin(result));
    EXPECT_EQ(hex("00000000 00000000 00000000 00000000 00000000 0000000000 00000000"), support::toBin(Result()));
    support::expectEveryPrefixThrows<Result>(bytes);

    EXPECT_EQ(504u, result.peekType());
    rktl::Integer number;
    rktl::String text;
    EXPECT_TRUE(result.peek(number));
    EXPECT_EQ(5, number);
    EXPECT_FALSE(result.peek(text));
    EXPECT_FALSE(result.addObject(Command())) << "cannot be written";
}

// What a client sees while it waits, and what it makes of it.
TEST(Result, IsFoundAmongOtherObjects)
{
    Command const command(idOf('1'), "a:/", 1, 1);
    rktl::ElapsedTime const second(1000), none(0xFFFFFFFF), zero(0);
    rksl::MemIOStream stream;
    Result result;
    int seen = 0;
    auto const count = [](unsigned short type, void* context, rksl::IStream& source) {
        ++*static_cast<int*>(context);
        rktl::Integer number;
        return type == 504 && source.read(number) > 0; // others are left to be dropped
    };

    stream << rktl::Integer(1) << rktl::String("x") << Result(Command(idOf('2'), "a:/", 1, 1), 0, "other");
    stream << Result(command, 1, "mine") << rktl::Integer(9);
    EXPECT_TRUE(Result::waitForResult(stream, second, command, result, count, &seen));
    EXPECT_EQ("mine", result.getMessage());
    EXPECT_EQ(2, seen);
    EXPECT_EQ(1u, stream.count()) << "nothing behind the answer is touched";

    stream << Result(Command(idOf('2'), "a:/", 1, 1), -3, "first");
    EXPECT_FALSE(Result::waitForResult(stream, none, Command(), result, nullptr, nullptr));
    EXPECT_EQ("first", result.getMessage());

    stream << rktl::Integer(1) << rksl::EndOfFile();
    EXPECT_FALSE(Result::waitForResult(stream, second, command, result, nullptr, nullptr));
    EXPECT_EQ(-1, result.getCode());
    EXPECT_EQ("EOF Received", result.getMessage());
    EXPECT_EQ(command.getID(), result.getCommandID());

    EXPECT_FALSE(Result::waitForResult(stream, zero, command, result, nullptr, nullptr));
    EXPECT_EQ(-2, result.getCode());
    EXPECT_EQ("Timeout", result.getMessage());
}

} // namespace
