#include "BaseClasses/Heartbeat.h"

#include "support/bytes.h"
#include "support/time_zone.h"

#include <gtest/gtest.h>

namespace {

TEST(Heartbeat, TravelsAsTimeVersionAndAttributes)
{
    rktl::TimeStamp const time(2023, 11, 14, 22, 13, 20, 5, false);
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
