#include <gtest/gtest.h>

#include "misc/rktl_Integer.h"
#include "misc/rktl_String.h"
#include "streams/rksl_EndOfFile.h"
#include "streams/rksl_List.h"
#include "streams/rksl_MemIOStream.h"
#include "support/TempFolder.h"
#include "support/bytes.h"

#include <cstring>

using rksl::EndOfFile;
using rksl::MemIOStream;
using rktl::Integer;
using rktl::String;
using support::Bytes;
using support::hex;
using support::messageOf;

namespace {

std::string const textFrame = "f501 0000 07000000 02000000 61 62 00"; // "ab", 15 bytes
std::string const numberFrame = "f801 0000 04000000 feffffff";        // -2, 12 bytes
std::string const endFrame = "0100 0000 00000000";

/// An Integer that cannot be written.
struct Unwritable : Integer {
    unsigned int toBin(unsigned char*) const override { throw 1; }
};

struct TooLong : Integer {
    unsigned int getBinLength() const override { return 0xFFFFFFFC; }
};

/// Announces two bytes more than it writes.
struct Shorter : Integer {
    using Integer::Integer;
    unsigned int getBinLength() const override { return 6; }
};

Bytes live(MemIOStream const& stream)
{
    unsigned char const* data = nullptr;
    unsigned int length = 0;
    stream.getBuffer(data, length);
    return Bytes(data, data + length);
}

/// The bytes as they stand, valid or not.
MemIOStream holding(Bytes const& bytes)
{
    MemIOStream stream(1); // smaller than any frame: the storage ends where the bytes end
    try {
        stream.setBuffer(bytes.data(), static_cast<unsigned int>(bytes.size()));
    } catch (rktl::Exception const&) {
    }
    return stream;
}

TEST(MemIOStream, FramesLieBackToBackInLittleEndian)
{
    MemIOStream stream;
    EXPECT_EQ(15u, stream.write(String("ab")));
    stream << Integer(-2);
    stream.close();
    EXPECT_EQ(hex(textFrame + numberFrame + endFrame), live(stream));
    EXPECT_EQ(3u, stream.count());
    EXPECT_EQ(hex("23000000" + textFrame + numberFrame + endFrame), support::toBin(stream));

    MemIOStream copy;
    EXPECT_EQ(39u, support::fromBin(copy, support::toBin(stream)));
    String text;
    Integer number;
    EXPECT_EQ(501u, copy.getNextType());
    EXPECT_EQ(15u, copy.read(text));
    copy >> number;
    EXPECT_EQ("ab", text);
    EXPECT_EQ(-2, number.value);
    EXPECT_TRUE(copy.isEOF());
    EXPECT_EQ("rksl::MemIOStream::read() - type mismatch", messageOf([&] { copy.read(text); }));
    EXPECT_EQ(8u, copy.skip());
    EXPECT_TRUE(copy.isEmpty());
}

TEST(MemIOStream, GrowsToTwiceTheCapacityPlusTheRequestOrMovesUp)
{
    MemIOStream stream;
    stream << Integer(1);
    stream << Integer(2);
    stream << Integer(3);

    unsigned char const* storage = nullptr;
    unsigned char const* moved = nullptr;
    unsigned int length = 0;
    stream.getBuffer(storage, length);
    stream.skip();
    stream.skip();
    stream << Integer(4);
    stream.getBuffer(moved, length);
    EXPECT_EQ(storage, moved);
    EXPECT_EQ(36u, stream.capacity());
    Integer number;
    stream >> number;
    EXPECT_EQ(3, number.value);
    stream >> number;
    EXPECT_EQ(4, number.value);

    EXPECT_FALSE(stream.checkBuff(0xFFFFFFFF)); // 2 x 36 + this is no 32-bit size
    EXPECT_EQ(36u, stream.capacity());
}

TEST(MemIOStream, ObjectThatCannotBeWrittenLeavesNoTrace)
{
    MemIOStream stream;
    stream << Integer(-2);
    for (rksl::Serializable const* object :
        {static_cast<rksl::Serializable const*>(new Unwritable), static_cast<rksl::Serializable const*>(new TooLong)}) {
        std::unique_ptr<rksl::Serializable const> const owned(object);
        EXPECT_EQ("rksl::MemIOStream::couldn't convert object to binary data", messageOf([&] { stream.write(*object); }));
        EXPECT_EQ(hex(numberFrame), live(stream));
    }
}

TEST(MemIOStream, AnnouncedBytesThatNobodyWritesAreZero)
{
    MemIOStream stream(14);
    unsigned char* used = nullptr;
    stream.getWriteBuffer(used, 14);
    std::memset(used, 0xEE, 14);
    stream.clear();
    stream << Shorter(-2);
    EXPECT_EQ(hex("f801 0000 06000000 feffffff 0000"), live(stream));
}

TEST(MemIOStream, CutFramesAreRefusedAndNeverReadPast)
{
    Bytes const whole = hex(textFrame);
    for (size_t size = 1; size < whole.size(); ++size) {
        Bytes const cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_EQ("rksl::MemIOStream::setBuffer() - resulting memory is not valid.",
            messageOf([&] { MemIOStream(cut.data(), static_cast<unsigned int>(size)); }));
        MemIOStream stream = holding(cut);
        String text("before");
        EXPECT_EQ(cut, live(stream));
        EXPECT_FALSE(stream.validate());
        EXPECT_EQ(0u, stream.count());
        EXPECT_NE("", messageOf([&] { stream.read(text); }));
        EXPECT_EQ("rksl::MemIOStream::skip() - no data", messageOf([&] { stream.skip(); }));
        EXPECT_EQ("before", text);
        EXPECT_EQ(cut, live(stream));
    }
    MemIOStream const frameBehind = holding(hex(textFrame + "f801 0000 ffffffff 00"));
    EXPECT_FALSE(frameBehind.validate());
    EXPECT_EQ(1u, frameBehind.count());

    support::expectEveryPrefixThrows<MemIOStream>(hex("1b000000" + textFrame + numberFrame));
}

TEST(MemIOStream, WalksOverSeveralObjects)
{
    MemIOStream stream;
    stream << String("ab") << Integer(-2);
    stream.close();
    String text;
    Integer number;
    EndOfFile end;
    EXPECT_EQ(27u, stream.peek(2, &text, &number));
    EXPECT_EQ("ab", text);
    EXPECT_EQ(-2, number.value);
    EXPECT_EQ(27u, stream.peek(2, nullptr, &number));
    EXPECT_EQ(0u, stream.peek(3, &text, &number, nullptr)) << "the closing end of file is not seen";

    // A whole frame in front of one whose body overruns.
    MemIOStream const broken = holding(hex(textFrame + "f801 0000 05000000 feffffff"));
    EXPECT_EQ(0u, broken.peek(2, nullptr, nullptr));
    EXPECT_EQ(15u, broken.peek(1, nullptr));
}

TEST(MemIOStream, SavesAndLoadsBareFrames)
{
    TempFolder const folder;
    std::string const path = folder / "frames.bin";
    Bytes const frames = hex(textFrame + numberFrame);
    MemIOStream stream;
    stream << Integer(9) << String("ab") << Integer(-2);
    stream.skip();
    ASSERT_TRUE(stream.save(path.c_str()));
    EXPECT_EQ(frames, support::readFile(path));

    // Capacity for the file, but not behind the read position.
    MemIOStream loaded(27);
    loaded << Integer(1) << Integer(2);
    loaded.skip();
    EXPECT_TRUE(loaded.load(path.c_str()));
    EXPECT_EQ(frames, live(loaded));
    EXPECT_EQ(27u, loaded.capacity());

    MemIOStream grown;
    EXPECT_TRUE(grown.load(path.c_str()));
    EXPECT_EQ(27u, grown.capacity());

    Bytes const cut(frames.begin(), frames.end() - 1);
    support::writeFile(path, cut);
    EXPECT_FALSE(loaded.load(path.c_str()));
    EXPECT_EQ(cut, live(loaded));

    EXPECT_EQ(frames, live(grown));
}

} // namespace
