#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <new>

#include "engine/zeroed_array.h"

namespace {

bool AllZero(const FZZeroedArray<std::uint8_t>& a)
{
    return std::all_of(a.data(), a.data() + a.size(), [](std::uint8_t b) { return b == 0; });
}

// Small blocks come from the heap, large ones are mapped (in huge pages,
// and ordinary pages faulted in at once beyond the last whole huge page):
// all must start zeroed, copy deeply and survive being moved.
TEST(ZeroedArray, StartsZeroedCopiesDeeplyAndMoves)
{
    for (const std::size_t n : {std::size_t{2}, std::size_t{4093}, std::size_t{3} << 20, (std::size_t{2} << 20) + 1}) {
        FZZeroedArray<std::uint8_t> a(n);
        ASSERT_EQ(a.size(), n);
        EXPECT_TRUE(AllZero(a)) << n;
        a.data()[0] = 7;
        a.data()[n - 1] = 9;

        FZZeroedArray<std::uint8_t> copy(a);
        copy.data()[0] = 1;
        EXPECT_EQ(a.data()[0], 7);
        EXPECT_EQ(copy.data()[n - 1], 9);

        const std::uint8_t* where = a.data();
        FZZeroedArray<std::uint8_t> moved(std::move(a));
        EXPECT_EQ(moved.data(), where);
        EXPECT_TRUE(a.empty());  // NOLINT(bugprone-use-after-move): moved-from state is part of the contract
        copy = moved;
        EXPECT_EQ(copy.data()[0], 7);
    }
}

TEST(ZeroedArray, RefusesCountsWhoseBytesDoNotFit)
{
    const std::size_t tooMany = static_cast<std::size_t>(-1) / 4 + 1;
    EXPECT_THROW(FZZeroedArray<float>{tooMany}, std::bad_alloc);
    EXPECT_TRUE(FZZeroedArray<float>{0}.empty());
}

} // namespace
