// The material record: defaults, and the assignment rules hosts rely on when
// they hand a record across the library boundary.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

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

bool SameBytes(const void* a, const void* b, std::size_t n = sizeof(FZAttributeEx))
{
    return std::memcmp(a, b, n) == 0;
}

} // namespace

TEST(Record, CopyingTakesEveryByteIncludingPaddingAndHostileValues)
{
    // The padding is what a careless member-wise copy would drop; hostile
    // values are copied as they stand.
    FZAttributeEx hostile;
    hostile.diffuse = std::numeric_limits<float>::quiet_NaN();
    hostile.refractiveIndex = -std::numeric_limits<float>::infinity();
    hostile.thickness = 3.0e38f;
    hostile.anisotropy.waveCount = std::numeric_limits<std::int32_t>::min();
    for (const FZAttributeEx& source : {Scribbled(), hostile}) {
        FZAttributeEx assigned;
        assigned = source;
        EXPECT_TRUE(SameBytes(&assigned, &source));
        const FZAttributeEx constructed(source);
        EXPECT_TRUE(SameBytes(&constructed, &source));
    }
}

TEST(Record, AssigningTheBasePartCopiesOnlyItsThirtySixBytes)
{
    const FZAttributeEx source = Scribbled();
    FZAttributeEx target;
    const FZAttributeEx defaults;
    static_cast<FZAttribute&>(target) = source;
    const auto* t = reinterpret_cast<const unsigned char*>(&target);
    EXPECT_TRUE(SameBytes(t, &source, 36));
    EXPECT_TRUE(SameBytes(t + 36, reinterpret_cast<const unsigned char*>(&defaults) + 36, 100));
}
