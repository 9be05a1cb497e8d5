#include <gtest/gtest.h>

#include "misc/rktl_ArrayRegionItr.h"
#include "support/bytes.h"

#include <numeric>

using rktl::ConstArrayRegionItr;
using rktl::DimArray;
using support::messageOf;

namespace {

using Sizes = std::vector<unsigned int>;

// 4 columns, 3 rows, numbered in memory order.
DimArray<int, 2> numbered()
{
    DimArray<int, 2> array(Sizes{4, 3});
    std::iota(array.data(), array.data() + array.count(), 0);
    return array;
}

std::vector<int> walk(DimArray<int, 2> const& array, Sizes const& start, Sizes const& size)
{
    std::vector<int> cells;
    for (ConstArrayRegionItr<int, 2> cell(&array, start, size); !cell.isFinished(); cell.inc()) {
        cells.push_back(*cell.ptrCurrPos());
        EXPECT_EQ(cells.back(), cell.getArray().data()[array.getFlattenIndex(cell.getCurrPos())]);
    }
    return cells;
}

} // namespace

TEST(DimArray, FirstDimensionRunsFastestAndIndicesAreChecked)
{
    DimArray<int, 2> array = numbered();
    EXPECT_EQ(7, array.at(3, 1));
    EXPECT_EQ(11u, array.getFlattenIndex(Sizes{3, 2}));

    std::string const outOfRange = "rktl::DimArray::getFlattenIndex(...) - index out of range";
    EXPECT_EQ(outOfRange, messageOf([&] { array.at(4, 0); }));
    EXPECT_EQ(outOfRange, messageOf([&] { array.at(0, 3); }));
    EXPECT_EQ(outOfRange, messageOf([&] { array.getFlattenIndex(Sizes{1}); }));
    EXPECT_EQ("rktl::DimArray::getFlattenIndex(...) - array is null", messageOf([] { DimArray<int, 2>(Sizes{0, 7}).at(0, 0); }));
    EXPECT_EQ("rktl::DimArray::DimArray(...) - too many elements", messageOf([] { DimArray<int, 2>(Sizes{65536, 65536}); }));
}

TEST(ArrayRegionItr, WalksRowsOfTheRegionInsideTheArray)
{
    DimArray<int, 2> const array = numbered();
    struct {
        char const* why;
        Sizes start;
        Sizes size;
        std::vector<int> cells;
    } const cases[] = {
        {"inside", {1, 1}, {2, 2}, {5, 6, 9, 10}},
        {"reaches beyond", {2, 1}, {9, 4294967295u}, {6, 7, 10, 11}},
        {"starts beyond", {4, 0}, {1, 1}, {}},
        {"no width", {0, 0}, {0, 3}, {}},
    };
    for (auto const& c : cases)
        EXPECT_EQ(c.cells, walk(array, c.start, c.size)) << c.why;
    EXPECT_TRUE(walk(DimArray<int, 2>(Sizes{0, 3}), {0, 0}, {1, 1}).empty());
}
