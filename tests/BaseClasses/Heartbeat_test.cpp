#include "BaseClasses/Heartbeat.h"

#include "streams/rksl_Ping.h"
#include "support/bytes.h"
#include "support/time_zone.h"

#include <gtest/gtest.h>

namespace {

TEST(Heartbeat, TravelsAsTimeVersionAndAttributes)
{
    rktl::TimeStamp const time(2023, 11, 14, 22, 13, 20, 5, false); // year - 1900 = 7B, month from 0 = 0A
    Heartbeat const plain(time);
    EXPECT_EQ(support::hex("7B 0A 0E 16 0D 14 05 00 00  C0 00 00 00  00 00 00 00"), support::toBin(plain));
    rksl::Ping ping;
    ping.timestamp = time;
    EXPECT_EQ(support::hex("7B 0A 0E 16 0D 14 05 00 00"), support::toBin(ping));

    Heartbeat full(time);
    full.setAttribute("video-loss", "true");
    Heartbeat read;
    support::Bytes const bytes = support::toBin(full);
    EXPECT_EQ(bytes.size(), support::fromBin(read, bytes));
    EXPECT_EQ("true", read.getAttribute("video-loss"));
    EXPECT_EQ(time, read.timestamp);
    support::expectEveryPrefixThrows<Heartbeat>(bytes);
}

} // namespace
