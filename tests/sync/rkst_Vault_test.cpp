#include <gtest/gtest.h>

#include "sync/rkst_Vault.h"

#include <chrono>
#include <string>
#include <thread>
#include <vector>

using rkst::Vault;

namespace {

template <class Call> auto onOtherThread(Call call)
{
    decltype(call()) result{};
    std::thread([&] { result = call(); }).join();
    return result;
}

} // namespace

TEST(Vault, ReadersShareAndAWriterExcludes)
{
    Vault<int> vault(5);
    EXPECT_FALSE(vault.isLocked());
    auto first = vault.getReadPtr(0);
    auto second = vault.getReadPtr(0);
    auto third = onOtherThread([&] { return bool(vault.getReadPtr(0)); });
    ASSERT_TRUE(first && second && third);
    EXPECT_EQ(5, *first);
    EXPECT_TRUE(vault.isLocked());

    auto const start = std::chrono::steady_clock::now();
    EXPECT_FALSE(vault.getWritePtr(50));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(50));
    int value = 7;
    EXPECT_FALSE(vault.assign(7, 0));
    EXPECT_FALSE(vault.exchange(value, 0));
    EXPECT_TRUE(vault.copy(value, 0)) << "a copy only reads";
    EXPECT_EQ(5, value);

    auto copy = second;
    first.setNULL();
    second.setNULL();
    EXPECT_FALSE(vault.getWritePtr(0)) << "copies of a guard count";
    copy = first;
    EXPECT_FALSE(vault.isLocked());
    EXPECT_TRUE(vault.getWritePtr(0));
}

TEST(Vault, LastCopyOfTheLastWriteGuardOpensIt)
{
    Vault<std::string> vault("a");
    auto const openToOthers = [&] { return onOtherThread([&] { return bool(vault.getReadPtr(0)); }); };
    auto first = vault.getWritePtr(0);
    auto second = vault.getWritePtr(0);
    ASSERT_TRUE(first && second);
    {
        auto const copy = second;
        *copy += "b";
        second->append("c");
        first.setNULL();
        second = first;
        EXPECT_FALSE(openToOthers());
        EXPECT_TRUE(vault.isLocked());
        EXPECT_TRUE(onOtherThread([&] { return vault.isLocked(); }));
        EXPECT_FALSE(onOtherThread([&] { return vault.assign("x", 20); }));
    }
    EXPECT_TRUE(openToOthers()) << "each lock was given back";
    EXPECT_FALSE(vault.isLocked());
    EXPECT_EQ("abc", *vault.getReadPtr(0));
}

TEST(Vault, WriterGetsInWhenTheReaderOnAnotherThreadLeaves)
{
    Vault<int> vault(1);
    rkst::Event const reading(true, false), leave(true, false);
    std::thread reader([&] {
        auto const guard = vault.getReadPtr(0xFFFFFFFF);
        reading.signal();
        leave.wait(5000);
    });
    ASSERT_TRUE(reading.wait(5000));
    EXPECT_FALSE(vault.assign(2, 10));
    leave.signal();
    EXPECT_TRUE(vault.assign(2, 0xFFFFFFFF));
    EXPECT_EQ(2, *vault.getReadPtr(0));
    reader.join();
}

TEST(Vault, ReadersAndWritersOfManyThreadsSeeWholeValues)
{
    Vault<std::vector<int>> vault(std::vector<int>(3, 0));
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < 200; ++i) {
                if (t < 2) {
                    auto const guard = vault.getWritePtr(5000);
                    ASSERT_TRUE(guard);
                    for (int& value : *guard)
                        ++value;
                } else {
                    auto const guard = vault.getReadPtr(5000);
                    ASSERT_TRUE(guard);
                    EXPECT_TRUE((*guard)[0] == (*guard)[1] && (*guard)[1] == (*guard)[2]);
                }
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(std::vector<int>(3, 400), *vault.getReadPtr(0));
}
