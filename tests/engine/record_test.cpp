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

TEST(Record, DefaultsMatchTheEditorsStartingMaterial)
{
    const FZAttributeEx r;
    EXPECT_EQ(r.diffuse, 0.8f);
    EXPECT_EQ(r.highlightStrength, 0.5f);
    EXPECT_EQ(r.highlightSharpness, 1.0f);
    EXPECT_EQ(r.ambient, 0.3f);
    EXPECT_EQ(r.transparency, 0.0f);
    EXPECT_EQ(r.refractiveIndex, 1.0f);
    EXPECT_EQ(r.reflection, 0.0f);
    for (const FZColor& c : {r.color, r.highlightColor})
        EXPECT_TRUE(c.r == 255 && c.g == 255 && c.b == 255);

    const FZAnisotropy& a = r.anisotropy;
    EXPECT_EQ(a.type, 1);
    EXPECT_EQ(a.grooveDepth, 0.15f);
    EXPECT_TRUE(a.center[0] == 0.5f && a.center[1] == 0.5f && a.center[2] == 0.0f);
    EXPECT_TRUE(a.axis.x == 0 && a.axis.y == 0 && a.axis.z == 30000);
    EXPECT_EQ(a.amplitude, 0.1f);
    EXPECT_EQ(a.waveCount, 4);
    EXPECT_EQ(a.spiralTwist, 0.01f);
    EXPECT_EQ(a.wavePeriod, 30.0f);
    EXPECT_EQ(a.depthVariation, 0.0f);
    EXPECT_EQ(a.angle, 0.0f);
    EXPECT_EQ(a.grooveWidth, 1.0f);

    EXPECT_EQ(r.anisotropic, 0);
    EXPECT_EQ(r.colorTransparency, 0);
    EXPECT_EQ(r.emission, 0.0f);
    EXPECT_EQ(r.smoothHighlight, 0);
    EXPECT_EQ(r.smoothWidth, 2.0f);
    EXPECT_EQ(r.rainbow, 0);
    EXPECT_EQ(r.stripeSpacing, 1000.0f);
    EXPECT_EQ(r.incidenceDependence, 0.0f);
    EXPECT_EQ(r.attenuation, 0.0f);
    EXPECT_EQ(r.thinGlass, 0);
    EXPECT_EQ(r.thickness, 4.0f);
}

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
