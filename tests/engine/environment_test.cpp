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
