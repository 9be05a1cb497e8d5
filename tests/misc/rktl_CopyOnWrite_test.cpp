#include <gtest/gtest.h>

#include "misc/rktl_CopyOnWrite.h"

#include <string>
#include <thread>
#include <vector>

using Text = rktl::CopyOnWrite<std::string>;

TEST(CopyOnWrite, CopiesShareUntilOneChanges)
{
    Text original(std::string("one"));
    Text copy(original);
    EXPECT_EQ(&*original, &*copy);
    copy.change() += " two";
    EXPECT_EQ("one", *original);

    std::string const* const alone = &*copy;
    copy.change() += " three"; // nobody shares it: no new copy
    EXPECT_EQ(alone, &*copy);
    original = copy;
    copy = Text(std::string("else"));
    original.change() += "!"; // the other has gone
    EXPECT_EQ(alone, &*original);
    EXPECT_EQ("one two three!", *alone);
}

// Readers take copies under no lock but their own, and drop them while the owner changes his.
TEST(CopyOnWrite, CopiesInOtherThreadsKeepTheirValue)
{
    Text owner(std::string("start"));
    std::vector<std::thread> readers;
    for (int reader = 0; reader < 3; ++reader)
        readers.emplace_back([copy = owner]() mutable {
            for (int i = 0; i < 500; ++i) {
                Text const mine(copy);
                ASSERT_EQ("start", mine->substr(0, 5));
                copy.change() += '.';
            }
            EXPECT_EQ(505u, copy->size());
        });
    for (int i = 0; i < 500; ++i)
        owner.change() += '!';
    for (std::thread& reader : readers)
        reader.join();
    EXPECT_EQ("start" + std::string(500, '!'), *owner);
}
