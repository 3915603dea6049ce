#include <gtest/gtest.h>

#include <cmath>

#include "engine/shading/vector3.h"

namespace {

// p x M for a point p (row vector, w = 1).
void MapPoint(const FZMatrix4& m, const float p[3], double out[3])
{
    for (int j = 0; j < 3; ++j)
        out[j] = p[0] * static_cast<double>(m.m[0][j]) + p[1] * static_cast<double>(m.m[1][j])
                 + p[2] * static_cast<double>(m.m[2][j]) + m.m[3][j];
}

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

TEST(Vector3, ProductKeepsTheCheapKinds)
{
    FZMatrix4 a, b, c;
    a.SetIdentity();
    b.SetIdentity();
    c.SetProduct(a, b);
    EXPECT_EQ(c.kind, FZMatrix4::kIdentity);

    a.SetTranslation(1.0f, 2.0f, 3.0f);
    b.SetTranslation(10.0f, 20.0f, 30.0f);
    c.SetProduct(a, b);
    EXPECT_EQ(c.kind, FZMatrix4::kTranslation);
    EXPECT_FLOAT_EQ(c.m[3][0], 11.0f);
    EXPECT_FLOAT_EQ(c.m[3][2], 33.0f);

    // In place, with a general matrix: the full product.
    FZDirection3 axis(0.0f, 0.0f, 1.0f);
    const float origin[3] = {0.0f, 0.0f, 0.0f};
    b.SetRotation(1.0, 0.0, axis, origin);
    a.SetProduct(a, b);
    EXPECT_EQ(a.kind, FZMatrix4::kGeneral);
    const float p[3] = {1.0f, 0.0f, 0.0f};
    double q[3];
    MapPoint(a, p, q);  // (2, 2, 3) turned a quarter about z
    EXPECT_NEAR(q[0], -2.0, 1e-6);
    EXPECT_NEAR(q[1], 2.0, 1e-6);
    EXPECT_NEAR(q[2], 3.0, 1e-6);
}

TEST(Vector3, RotationIsRightHandedAboutItsPoint)
{
    FZMatrix4 m;
    FZDirection3 axis(0.0f, 0.0f, 1.0f);
    const float pivot[3] = {5.0f, 5.0f, 0.0f};
    m.SetRotation(1.0, 0.0, axis, pivot);
    double q[3];
    MapPoint(m, pivot, q);
    EXPECT_NEAR(q[0], 5.0, 1e-6);
    EXPECT_NEAR(q[1], 5.0, 1e-6);
    const float east[3] = {6.0f, 5.0f, 0.0f};
    MapPoint(m, east, q);  // x turns into y
    EXPECT_NEAR(q[0], 5.0, 1e-6);
    EXPECT_NEAR(q[1], 6.0, 1e-6);
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
