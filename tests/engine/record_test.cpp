// The material record's assignment rules, which hosts rely on when they hand
// a record across the library boundary.
#include <gtest/gtest.h>

#include <cstring>

#include <tamerisk/attribute.h>

namespace {

// A record whose every byte differs from the defaults, padding included.
FZAttributeEx Scribbled()
{
    FZAttributeEx r;
    auto* bytes = reinterpret_cast<unsigned char*>(&r);
    for (std::size_t i = 0; i < sizeof r; ++i)
        bytes[i] = static_cast<unsigned char>(0x5A ^ (i * 37));
    return r;
}

} // namespace

// The padding is what a careless member-wise copy would drop.
TEST(Record, CopyingTakesEveryByteIncludingPadding)
{
    const FZAttributeEx source = Scribbled();
    FZAttributeEx assigned;
    assigned = source;
    EXPECT_EQ(std::memcmp(&assigned, &source, sizeof source), 0);
    const FZAttributeEx constructed(source);
    EXPECT_EQ(std::memcmp(&constructed, &source, sizeof source), 0);
}

TEST(Record, AssigningTheBasePartCopiesOnlyItsThirtySixBytes)
{
    const FZAttributeEx source = Scribbled();
    FZAttributeEx target;
    const FZAttributeEx defaults;
    static_cast<FZAttribute&>(target) = source;
    const auto* t = reinterpret_cast<const unsigned char*>(&target);
    EXPECT_EQ(std::memcmp(t, &source, 36), 0);
    EXPECT_EQ(std::memcmp(t + 36, reinterpret_cast<const unsigned char*>(&defaults) + 36, 100), 0);
}
