#include <gtest/gtest.h>

#include "sync/rkst_Mutex.h"

#include <thread>

using rkst::Mutex;

namespace {

/// Whether another thread wins the mutex; it gives it back at once.
bool otherThreadLocks(Mutex const& mutex, unsigned int milliseconds)
{
    bool won = false;
    std::thread([&] {
        won = mutex.lock(milliseconds);
        if (won)
            mutex.unlock();
    }).join();
    return won;
}

} // namespace

TEST(Mutex, OwnerLocksAgainAndUnlocksAsOften)
{
    Mutex const mutex(true);
    Mutex const copy(mutex);
    EXPECT_TRUE(copy.lock(0));
    EXPECT_TRUE(copy.lockExclusive(20));
    EXPECT_TRUE(copy.lock(0xFFFFFFFF));
    for (int left = 3; left >= 0; --left) {
        EXPECT_FALSE(otherThreadLocks(mutex, 0)) << left;
        EXPECT_TRUE(copy.unlock());
    }
    EXPECT_TRUE(otherThreadLocks(mutex, 0));
}
