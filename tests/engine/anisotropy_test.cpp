#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>

#include "engine/shading/anisotropy.h"
#include "engine/support/shading_fixture.h"
#include "wild_values.h"

namespace {

// The first facet at (x, y) about the centre (cx, cy) under the given normal.
FZPackedVector FacetAt(const FZAnisotropy& p, float x, float y, const FZPackedVector& normal, float cx = 0.0f,
                       float cy = 0.0f)
{
    const float point[3] = {x, y, 0.0f};
    const float centre[3] = {cx, cy, 0.0f};
    FZPackedVector t1, t2;
    AnisotropicFacets(p, point, normal, centre, t1, t2);
    return t1;
}

} // namespace

TEST(Anisotropy, WildRecordsFinishWithDefinedFacets)
{
    FZAnisotropy p;
    p.depthVariation = 1.0f;
    for (int type : {1, 2, 3, 4, 5, 11, 20, 21, 99, INT_MIN}) {
        p.type = type;
        for (float v : {kNaN, kInf, -kInf, 1e30f, -1e30f, 0.0f, -1.0f, 1.0f}) {
            p.amplitude = p.spiralTwist = p.wavePeriod = p.angle = p.grooveWidth = v;
            p.waveCount = INT_MIN;
            // 3e9 from the centre is beyond what the noise lookup truncates.
            for (float y : {-1e7f, 0.5f, kNaN, 3e9f}) {
                // Unit facets or none at all, nothing in between.
                const FZPackedVector t1 = FacetAt(p, 3.5f, y, Packed(0.6f, 0.0f, 0.8f), v, 2.0f);
                const double length = std::sqrt(FZPackedVector::Dot(t1, t1));
                EXPECT_TRUE(length == 0.0 || std::fabs(length - 1.0) < 1e-3) << type << " " << v << " " << y;
            }
        }
    }
}
