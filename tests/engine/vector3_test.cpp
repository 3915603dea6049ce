#include <gtest/gtest.h>

#include <cmath>

#include "engine/shading/vector3.h"

namespace {

} // namespace

TEST(Vector3, DirectionSettersNormaliseAndKeepZero)
{
    FZDirection3 d;
    d.Set(3.0f, 0.0f, 4.0f);
    EXPECT_FLOAT_EQ(d.x, 0.6f);
    EXPECT_FLOAT_EQ(d.z, 0.8f);

    const float from[3] = {1.0f, 1.0f, 1.0f};
    const float to[3] = {1.0f, 3.0f, 1.0f};
    FZVector3& base = d;  // the setters are virtual
    base.SetDifference(from, to);
    EXPECT_FLOAT_EQ(d.y, 1.0f);

    FZVector3 plain;
    plain.SetDifference(from, to);
    EXPECT_FLOAT_EQ(plain.y, 2.0f);

    d.Set(0.0f, 0.0f, 0.0f);
    EXPECT_TRUE(d.x == 0.0f && d.y == 0.0f && d.z == 0.0f);
}

TEST(Vector3, RotationOntoCarriesOneDirectionOntoTheOther)
{
    FZVector3 up, n;
    up.Set(0.0f, 0.0f, 1.0f);
    n.Set(0.0f, 3.0f, 4.0f);  // not unit: only the direction counts
    FZMatrix4 m;
    ASSERT_TRUE(m.SetRotationOnto(up, n));
    FZDirection3 in(0.0f, 0.0f, 1.0f), out;
    m.Transform(in, out);
    EXPECT_NEAR(out.x, 0.0, 1e-6);
    EXPECT_NEAR(out.y, 0.6, 1e-6);
    EXPECT_NEAR(out.z, 0.8, 1e-6);
    // A direction at right angles to both stays put.
    in.Set(1.0f, 0.0f, 0.0f);
    m.Transform(in, out);
    EXPECT_NEAR(out.x, 1.0, 1e-6);

    ASSERT_TRUE(m.SetRotationOnto(up, up));
    EXPECT_EQ(m.kind, FZMatrix4::kIdentity);
    FZVector3 zero;
    ASSERT_TRUE(m.SetRotationOnto(up, zero));
    EXPECT_EQ(m.kind, FZMatrix4::kIdentity);

    FZVector3 down;
    down.Set(0.0f, 0.0f, -2.0f);
    EXPECT_FALSE(m.SetRotationOnto(up, down));
}
