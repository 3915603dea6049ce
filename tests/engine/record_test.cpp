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
    for (const FZColor& c : {r.color, r.highlightColor}) {
        EXPECT_EQ(c.r, 255);
        EXPECT_EQ(c.g, 255);
        EXPECT_EQ(c.b, 255);
    }

    const FZAnisotropy& a = r.anisotropy;
    EXPECT_EQ(a.type, 1);
    EXPECT_EQ(a.grooveDepth, 0.15f);
    EXPECT_EQ(a.center[0], 0.5f);
    EXPECT_EQ(a.center[1], 0.5f);
    EXPECT_EQ(a.center[2], 0.0f);
    EXPECT_EQ(a.axis.x, 0);
    EXPECT_EQ(a.axis.y, 0);
    EXPECT_EQ(a.axis.z, 30000);
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

TEST(Record, CopyingTakesEveryByteIncludingPadding)
{
    const FZAttributeEx source = Scribbled();

    FZAttributeEx assigned;
    assigned = source;
    EXPECT_TRUE(SameBytes(&assigned, &source));

    const FZAttributeEx constructed(source);
    EXPECT_TRUE(SameBytes(&constructed, &source));

    // Named explicitly: the padding is what a careless member-wise copy
    // would drop.
    EXPECT_EQ(assigned.padding[0], source.padding[0]);
    EXPECT_EQ(assigned.padding[1], source.padding[1]);
    EXPECT_EQ(assigned.anisotropy.padding[0], source.anisotropy.padding[0]);
    EXPECT_EQ(assigned.anisotropy.padding[1], source.anisotropy.padding[1]);
}

TEST(Record, SelfAssignmentLeavesTheRecordUntouched)
{
    FZAttributeEx r = Scribbled();
    const FZAttributeEx before = r;
    const FZAttributeEx& alias = r;

    r = alias;
    EXPECT_TRUE(SameBytes(&r, &before));

    static_cast<FZAttribute&>(r) = static_cast<const FZAttribute&>(alias);
    EXPECT_TRUE(SameBytes(&r, &before));
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

TEST(Record, FieldsNoControlEditsSurviveACopyExactly)
{
    FZAttributeEx host;
    host.smoothWidth = 5.0f;
    host.anisotropy.grooveDepth = 0.4375f;
    host.anisotropy.axis.x = -123;
    host.anisotropy.axis.y = 4567;
    host.anisotropy.axis.z = 32767;
    host.anisotropy.wavePeriod = 12.5f;
    host.colorTransparency = 7;

    FZAttributeEx editor;
    editor = host;
    FZAttributeEx back;
    back = editor;

    EXPECT_EQ(back.smoothWidth, 5.0f);
    EXPECT_EQ(back.anisotropy.grooveDepth, 0.4375f);
    EXPECT_EQ(back.anisotropy.axis.x, -123);
    EXPECT_EQ(back.anisotropy.axis.y, 4567);
    EXPECT_EQ(back.anisotropy.axis.z, 32767);
    EXPECT_EQ(back.anisotropy.wavePeriod, 12.5f);
    EXPECT_EQ(back.colorTransparency, 7);
}

TEST(Record, HostileValuesAreCopiedAsTheyStand)
{
    FZAttributeEx host;
    host.diffuse = std::numeric_limits<float>::quiet_NaN();
    host.refractiveIndex = -std::numeric_limits<float>::infinity();
    host.thickness = 3.0e38f;
    host.anisotropy.waveCount = std::numeric_limits<std::int32_t>::min();

    FZAttributeEx copy;
    copy = host;
    EXPECT_TRUE(SameBytes(&copy, &host));
    EXPECT_TRUE(std::isnan(copy.diffuse));
    EXPECT_EQ(copy.refractiveIndex, -std::numeric_limits<float>::infinity());
    EXPECT_EQ(copy.thickness, 3.0e38f);
    EXPECT_EQ(copy.anisotropy.waveCount, std::numeric_limits<std::int32_t>::min());
}
