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

TEST(Environment, UpIsSkyDownIsGroundAndTheHorizonTheEvenMix)
{
    FZEnvironment env;
    EXPECT_TRUE(env.IsOn());

    const Rgb up = Lookup(env, RayAlong(0, 1, 0));
    EXPECT_EQ(up.c[0], 0.2f);
    EXPECT_EQ(up.c[1], 0.6f);
    EXPECT_EQ(up.c[2], 1.0f);
    EXPECT_EQ(env.rampBuilt, 1);

    ExpectRgb(Lookup(env, RayAlong(0, -1, 0)), 1.0, 1.0, 1.0, 0.0);
    ExpectRgb(Lookup(env, RayAlong(1, 0, 0)), 0.6, 0.8, 1.0, 1e-7);
    ExpectRgb(Lookup(env, RayAlong(0, 1, 0, 0.5f)), 0.1, 0.3, 0.5, 1e-7);
}

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

TEST(Environment, SegmentsWithNoSpanStoreNothingAndChannelsStopAtOne)
{
    const float bright[3] = {3.0f, 0.5f, 1.5f};
    FZRampSegment empty;
    empty.Setup(bright, 0.5f, 0.5f, 0.1f, 0.1f);
    EXPECT_EQ(empty.color[0], 0.0f);
    EXPECT_EQ(empty.end, 0.0f);

    FZColorRamp ramp;
    ramp.segments.resize(1);
    ramp.tMin = -1.0f;
    ramp.tMax = 1.0f;
    ramp.segments[0].Setup(bright, -1.0f, 1.0f, 0.0f, 0.0f);
    float out[3];
    ramp.Evaluate(0.0, out);
    EXPECT_TRUE(out[0] == 1.0f && out[1] == 0.5f && out[2] == 1.0f);
    ramp.Evaluate(5.0, out);
    EXPECT_EQ(out[0], 1.0f);
}
