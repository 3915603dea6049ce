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
    EXPECT_EQ(LookupEnvironment(env, ray, out.c), FZResult::Ok);
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

// Inside the band the colour is lower * (1 - s) + upper * s with
// s = 3u^2 - 2u^3, u = (t + 0.1) / 0.2, t the direction's elevation.
TEST(Environment, TheHorizonBandIsACubicBlend)
{
    FZEnvironment env;
    for (float y : {-0.15f, -0.05f, 0.02f, 0.1f, 0.14f}) {
        const FZRay ray = RayAlong(0, y, -1);
        const double t = std::asin(ray.direction.y / 30000.0) * 2.0 / 3.141759;
        ASSERT_GT(t, -0.1);
        ASSERT_LT(t, 0.1);
        const double u = (t + 0.1) / 0.2;
        const double s = 3 * u * u - 2 * u * u * u;
        ExpectRgb(Lookup(env, ray), 1.0 - 0.8 * s, 1.0 - 0.4 * s, 1.0, 2e-6);
    }
    ExpectRgb(Lookup(env, RayAlong(0, 0.2f, -1)), 0.2, 0.6, 1.0, 1e-7);
    ExpectRgb(Lookup(env, RayAlong(0, -0.2f, -1)), 1.0, 1.0, 1.0, 0.0);
}

TEST(Environment, ModeZeroAndWeightZeroGiveBlack)
{
    FZEnvironment off;
    off.mode = 0;
    EXPECT_FALSE(off.IsOn());
    ExpectRgb(Lookup(off, RayAlong(0, 1, 0)), 0.0, 0.0, 0.0, 0.0);
    EXPECT_EQ(off.ramp, nullptr);

    FZEnvironment on;
    ExpectRgb(Lookup(on, RayAlong(0, 1, 0, 0.0f)), 0.0, 0.0, 0.0, 0.0);
    ExpectRgb(Lookup(on, RayAlong(0, -1, 0, 0.0f)), 0.0, 0.0, 0.0, 0.0);

    FZEnvironment unknown;  // no ramp for a mode this system never sets
    unknown.mode = 7;
    ExpectRgb(Lookup(unknown, RayAlong(0, 1, 0)), 0.0, 0.0, 0.0, 0.0);
}

TEST(Environment, TheRampFollowsHorizonAndBlend)
{
    FZEnvironment env;
    env.horizon = 0.5f;
    env.blend = 0.2f;
    ASSERT_EQ(BuildSkyRamp(env), FZResult::Ok);
    ASSERT_NE(env.ramp, nullptr);
    const FZColorRamp& ramp = *env.ramp;
    EXPECT_EQ(ramp.tMin, -1.0f);
    EXPECT_EQ(ramp.tMax, 1.0f);
    ASSERT_EQ(ramp.segmentCount, 2);

    // a = p - (p + 1) q = 0.2, b = p + (1 - p) q = 0.6, w = 0.4.
    const FZRampSegment& ground = ramp.segments[0];
    EXPECT_EQ(ground.start, -1.0f);
    EXPECT_FLOAT_EQ(ground.end, 0.6f);
    EXPECT_EQ(ground.fadeIn, 0.0f);
    EXPECT_FLOAT_EQ(ground.fadeOut, 0.4f);
    const FZRampSegment& sky = ramp.segments[1];
    EXPECT_FLOAT_EQ(sky.start, 0.2f);
    EXPECT_EQ(sky.end, 1.0f);
    EXPECT_FLOAT_EQ(sky.fadeIn, 0.4f);
    EXPECT_EQ(sky.fadeOut, 0.0f);

    float mid[3];
    ramp.Evaluate(0.4, mid);  // the middle of the band
    EXPECT_NEAR(mid[0], 0.6, 1e-6);
    EXPECT_NEAR(mid[1], 0.8, 1e-6);
    float below[3];
    ramp.Evaluate(-2.0, below);
    EXPECT_EQ(below[0], 1.0f);

    env.Release();
    EXPECT_EQ(env.ramp, nullptr);
    EXPECT_EQ(env.rampBuilt, 0);
}

TEST(Environment, SegmentsWithNoSpanStoreNothingAndChannelsStopAtOne)
{
    const float bright[3] = {3.0f, 0.5f, 1.5f};
    FZRampSegment empty;
    empty.Setup(bright, 0.5f, 0.5f, 0.1f, 0.1f);
    EXPECT_EQ(empty.color[0], 0.0f);
    EXPECT_EQ(empty.end, 0.0f);

    FZColorRamp ramp;
    ASSERT_EQ(ramp.Allocate(1), FZResult::Ok);
    ramp.tMin = -1.0f;
    ramp.tMax = 1.0f;
    ramp.segments[0].Setup(bright, -1.0f, 1.0f, 0.0f, 0.0f);
    float out[3];
    ramp.Evaluate(0.0, out);
    EXPECT_TRUE(out[0] == 1.0f && out[1] == 0.5f && out[2] == 1.0f);
    ramp.Evaluate(5.0, out);
    EXPECT_EQ(out[0], 1.0f);
}
