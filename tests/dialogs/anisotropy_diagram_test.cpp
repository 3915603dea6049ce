// The pattern diagram of the anisotropic reflection dialog follows the
// parameters that shape each type.
#include <gtest/gtest.h>

#include "dialogs/anisotropy_diagram.h"

namespace {

QImage Picture(int type, void (*adjust)(FZAnisotropy&) = [](FZAnisotropy&) {})
{
    FZAnisotropy a;
    a.type = type;
    adjust(a);
    return DrawAnisotropyPattern(a, 100, 120);
}

TEST(AnisotropyDiagram, WavesAndArmsFollowTheirParameters)
{
    EXPECT_TRUE(DrawAnisotropyPattern(FZAnisotropy(), 0, 120).isNull());
    const QImage rings = Picture(1);
    EXPECT_EQ(Picture(2, [](FZAnisotropy& a) { a.amplitude = 0.0f; }), rings);
    EXPECT_NE(Picture(2, [](FZAnisotropy& a) { a.amplitude = 0.25f; }), rings);
    const QImage arms = Picture(3, [](FZAnisotropy& a) { a.spiralTwist = 0.0f; });
    EXPECT_NE(Picture(3, [](FZAnisotropy& a) { a.spiralTwist = 0.05f; }), arms);
    // The centre, y up, is marked yellow wherever it lies.
    EXPECT_EQ(rings.pixel(50, 60), qRgb(255, 255, 0));
    const QImage corner = Picture(1, [](FZAnisotropy& a) { a.center[0] = a.center[1] = 0.0f; });
    EXPECT_EQ(corner.pixel(0, 119), qRgb(255, 255, 0));
}

} // namespace
