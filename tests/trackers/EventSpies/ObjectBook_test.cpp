#include "trackers/EventSpies/ObjectBook.h"

#include <gtest/gtest.h>

#include <string>

namespace {

/// One pass over the objects of a frame: each gets its letter when it is new. Returns who was known, with their letters, who was
/// new as "+id", and who has gone as "-id letter".
std::string pass(ObjectBook<char>& book, std::vector<uint32_t> const& ids, char letter)
{
    std::string told;
    auto const gone = [&](uint32_t id, char known) {
        told += " -" + std::to_string(id) + known;
        return known == 'Z';
    };
    book.begin();
    for (uint32_t const id : ids) {
        if (char const* const known = book.keep(id, gone)) {
            told += " " + std::to_string(id) + *known;
        } else {
            told += " +" + std::to_string(id);
            book.add(id, letter);
        }
    }
    book.end(gone);
    return told;
}

} // namespace

TEST(ObjectBook, FollowsTheObjectsOfEachFrame)
{
    ObjectBook<char> book;
    EXPECT_EQ(" +2 +5 +9", pass(book, {2, 5, 9}, 'a'));
    EXPECT_EQ(" 2a 5a 9a", pass(book, {2, 5, 9}, 'b'));
    EXPECT_EQ(" +1 2a +4 5a 9a +12", pass(book, {1, 2, 4, 5, 9, 12}, 'c')) << "at the front, in the middle, at the end";
    EXPECT_EQ(" -1c 2a -4c -5a 9a -12c", pass(book, {2, 9}, 'd'));
    EXPECT_EQ(" -2a +3 -9a", pass(book, {3}, 'e')) << "a new one in the place of one that has gone";
    EXPECT_EQ(" -3e", pass(book, {}, 'f'));
    EXPECT_EQ(" +3", pass(book, {3}, 'g')) << "who comes back is new";
}

TEST(ObjectBook, LetsThoseStayWhoAreWanted)
{
    ObjectBook<char> book;
    pass(book, {1, 4, 7, 9}, 'Z');
    EXPECT_EQ(" -1Z +2 -4Z -7Z 9Z", pass(book, {2, 9}, 'a'));
    EXPECT_EQ(" -1Z -2a 4Z +5 -7Z -9Z", pass(book, {4, 5}, 'b'));
    EXPECT_EQ(" 1Z -4Z -5b 7Z -9Z", pass(book, {1, 7}, 'c'));
    EXPECT_EQ(4u, book.size());
}

TEST(ObjectBook, ForgetsWhatIsDropped)
{
    ObjectBook<char> book;
    pass(book, {1, 2, 3}, 'a');
    book.begin();
    book.keep(1);
    book.keep(2);
    book.drop();
    book.add(7, 'b');
    book.drop();
    book.keep(3);
    book.end();
    EXPECT_EQ(" 1a +2 3a", pass(book, {1, 2, 3}, 'c'));
}
