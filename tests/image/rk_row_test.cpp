#include "image/rk_row.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;

/// Bytes of one character each: noise, two values, extremes beside one another, flat.
Bytes draw(std::mt19937& random, size_t count, unsigned character)
{
    Bytes bytes(count);
    for (uint8_t& byte : bytes) {
        uint32_t const dice = random();
        byte = static_cast<uint8_t>(character == 0 ? dice
                : character == 1                   ? (dice & 1) * 255
                : character == 2                   ? dice % 3 * 127 + dice % 2
                                                   : 77);
    }
    return bytes;
}

/// All that a form makes of the same inputs, one behind the other.
Bytes everything(rk_row_kernels const& form, Bytes const& a, Bytes const& b, Bytes const& c, uint8_t threshold)
{
    size_t const count = a.size();
    Bytes result;
    auto const add = [&](Bytes const& part) { result.insert(result.end(), part.begin(), part.end()); };
    Bytes out(count + 1, 0xaa); // one more, which nobody may touch
    form.difference(a.data(), b.data(), out.data(), count, threshold, 63);
    add(out);
    Bytes previous = a, differs(count / rk_row_run + 2, 0xaa);
    form.renew(previous.data(), b.data(), out.data(), count, threshold, 63, differs.data());
    add(previous);
    add(out);
    add(differs);
    form.difference_colour(a.data(), b.data(), out.data(), count / 4, threshold * threshold, 63);
    add(out);
    Bytes sum = a;
    form.running_sum(sum.data(), b.data(), c.data(), count);
    add(sum);
    Bytes motion(count);
    result.push_back(form.moving_sum(sum.data(), b.data(), c.data(), motion.data(), count));
    add(sum);
    add(motion);
    form.at_least(a.data(), out.data(), count, threshold);
    add(out);
    form.and3(a.data(), b.data(), c.data(), out.data(), count);
    add(out);
    form.or3(a.data(), b.data(), c.data(), out.data(), count);
    add(out);
    std::vector<uint64_t> bits((count + 63) / 64 + 1, 0xaaaaaaaaaaaaaaaa);
    result.push_back(form.pack(a.data(), count, threshold, bits.data()));
    for (uint64_t const word : bits)
        for (int i = 0; i < 8; ++i)
            result.push_back(static_cast<uint8_t>(word >> 8 * i));
    form.unpack(bits.data(), count, out.data());
    add(out);
    result.push_back(form.two_valued(a.data(), count));
    uint32_t const within = form.count_within(a.data(), b.data(), c.data(), count, threshold);
    for (int i = 0; i < 4; ++i)
        result.push_back(static_cast<uint8_t>(within >> 8 * i));
    Bytes table(256);
    for (size_t i = 11; i < 256; ++i)
        table[i] = static_cast<uint8_t>(i);
    uint32_t const differing = form.strength(a.data(), b.data(), c.data(), table.data(), out.data(), count);
    for (int i = 0; i < 4; ++i)
        result.push_back(static_cast<uint8_t>(differing >> 8 * i));
    add(out);
    result.push_back(form.distance(a.data(), b.data(), c.data(), out.data(), count));
    add(out);
    return result;
}

} // namespace

TEST(Row, AllFormsGiveTheBytesOfThePlainOne)
{
    std::mt19937 random(6);
    rk_row_kernels const* const* const forms = rk_row_forms();
    ASSERT_STREQ("plain", forms[0]->name);
    for (size_t count : {0, 1, 3, 7, 8, 31, 32, 33, 63, 64, 65, 127, 128, 129, 200, 1283})
        for (unsigned character = 0; character < 16; ++character) {
            Bytes const a = draw(random, count, character % 4), b = draw(random, count, character / 4),
                        c = draw(random, count, character % 3);
            for (uint8_t threshold : {0, 1, 42, 254, 255}) {
                Bytes const want = everything(*forms[0], a, b, c, threshold);
                for (size_t form = 1; forms[form]; ++form)
                    ASSERT_EQ(want, everything(*forms[form], a, b, c, threshold))
                        << forms[form]->name << " " << count << " " << +threshold;
            }
        }
}

TEST(Row, PlainFormIsWhatIsWrittenOfIt)
{
    rk_row_kernels const& plain = *rk_row_forms()[0];
    Bytes const values = {100, 100, 100, 0}, mean = {90, 110, 100, 255}, inverse = {80, 160, 255, 255};
    Bytes out(4);
    EXPECT_TRUE(plain.distance(values.data(), mean.data(), inverse.data(), out.data(), 4));
    EXPECT_EQ((Bytes{6, 12, 0, 255}), out); // 800 / 128, 1600 / 128, 0, 508 cut to a byte
    EXPECT_FALSE(plain.distance(values.data(), mean.data(), inverse.data(), out.data(), 1));
    uint64_t bits = 0;
    EXPECT_TRUE(plain.pack(values.data(), 4, 100, &bits));
    EXPECT_EQ(7u, bits);
    EXPECT_FALSE(plain.pack(values.data(), 4, 101, &bits));
}

TEST(Row, AForcedFormRunsUntilTheFastestIsTakenAgain)
{
    rk_row_kernels const& before = rk_row();
    for (rk_row_kernels const* const* form = rk_row_forms(); *form; ++form) {
        EXPECT_EQ(1, rk_row_use((*form)->name));
        EXPECT_EQ(*form, &rk_row()) << "what callers take is this form's own code";
        for (rk_row_kernels const* const* other = rk_row_forms(); other != form; ++other)
            EXPECT_NE((*other)->strength, rk_row().strength);
    }
    EXPECT_EQ(0, rk_row_use("fastest"));
    EXPECT_EQ(1, rk_row_use(nullptr));
    rk_row_kernels const* const* last = rk_row_forms();
    while (last[1])
        ++last;
    EXPECT_EQ(*last, &rk_row());
    EXPECT_EQ(1, rk_row_use(before.name));
}
