// The sky that reflective materials mirror: white below, sky blue above, a
// cubic band of width 0.2 around the horizon.
#include <gtest/gtest.h>

#include <cmath>

#include "engine/environment.h"

namespace {

FZRay RayAlong(float x, float y, float z, float weight = 1.0f)
{
    FZRay ray;
    ray.direction.SetFloats(x, y, z, true);
    ray.weight = weight;
    return ray;
}

struct Rgb {
    float c[3] = {-1.0f, -1.0f, -1.0f};
};

Rgb Lookup(FZEnvironment& env, const FZRay& ray)
{
    Rgb out;
    LookupEnvironment(env, ray, out.c);
    return out;
}

void ExpectRgb(const Rgb& rgb, double r, double g, double b, double tolerance)
{
    EXPECT_NEAR(rgb.c[0], r, tolerance);
    EXPECT_NEAR(rgb.c[1], g, tolerance);
    EXPECT_NEAR(rgb.c[2], b, tolerance);
}

} // namespace

TEST(Environment, ModeZeroAndWeightZeroGiveBlack)
{
    FZEnvironment off;
    off.mode = 0;
    EXPECT_FALSE(off.IsOn());
    ExpectRgb(Lookup(off, RayAlong(0, 1, 0)), 0.0, 0.0, 0.0, 0.0);
    EXPECT_EQ(off.rampBuilt, 0);

    FZEnvironment on;
    ExpectRgb(Lookup(on, RayAlong(0, 1, 0, 0.0f)), 0.0, 0.0, 0.0, 0.0);
    ExpectRgb(Lookup(on, RayAlong(0, -1, 0, 0.0f)), 0.0, 0.0, 0.0, 0.0);

    FZEnvironment unknown;  // no ramp for a mode this system never sets
    unknown.mode = 7;
    ExpectRgb(Lookup(unknown, RayAlong(0, 1, 0)), 0.0, 0.0, 0.0, 0.0);
}

// The table must give the lookup's bytes for every direction: every packed
// y component (those beyond +-30000 too), weights that round differently,
// and a sky whose horizon moved after the table was built.
TEST(Environment, SkyTableGivesTheLookupsColours)
{
    FZEnvironment env;
    ASSERT_TRUE(BuildSkyTable(env));
    FZEnvironment moved;
    moved.horizon = 0.3f;
    moved.blend = 0.25f;
    ASSERT_TRUE(BuildSkyTable(moved));
    BuildSkyRamp(moved);  // a new ramp drops the old table
    EXPECT_TRUE(moved.skyTable.empty());
    ASSERT_TRUE(BuildSkyTable(moved));
    for (FZEnvironment* sky : {&env, &moved}) {
        for (std::int32_t y = -32768; y <= 32767; ++y) {
            for (float weight : {1.0f, 0.8f, 0.3333f}) {
                FZRay ray;
                ray.direction.x = 1234;
                ray.direction.y = static_cast<std::int16_t>(y);
                ray.direction.z = 20000;
                ray.weight = weight;
                Rgb table;
                LookupSkyTable(*sky, ray, table.c);
                const Rgb direct = Lookup(*sky, ray);
                for (int c = 0; c < 3; ++c)
                    ASSERT_EQ(table.c[c], direct.c[c]) << "y " << y << " weight " << weight;
            }
        }
    }
    FZEnvironment off;
    off.mode = 0;
    EXPECT_FALSE(BuildSkyTable(off));
    EXPECT_TRUE(off.skyTable.empty());
}
