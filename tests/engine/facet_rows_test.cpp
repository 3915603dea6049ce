// The facet kernels build the rotation and tilt the facets in double lanes;
// the goldens see only the normals their shapes make. Here every kind of
// normal (near +z and -z, straight down, grazing, far from unit length)
// and groove (steep, shallow, none across) must give the packed facets of
// AnisotropicFacets with a rotation memory, lane by lane.
#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <vector>

#include "engine/shading/anisotropy.h"
#include "engine/shading/facet_rows.h"

namespace {

FZPackedVector Packed(int x, int y, int z)
{
    return FZPackedVector{static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), static_cast<std::int16_t>(z)};
}

bool Same(const FZPackedVector& a, std::int32_t x, std::int32_t y, std::int32_t z)
{
    return a.x == x && a.y == y && a.z == z;
}

} // namespace

TEST(FacetRows, GiveTheFacetsOfTheSinglePixel)
{
    std::vector<FZPackedVector> normals = {Packed(0, 0, -30000), Packed(0, 0, 29999), Packed(1, 0, 29999),
                                           Packed(0, -1, 29999), Packed(30000, 0, 0), Packed(0, -30000, 0),
                                           Packed(21213, 21213, 0), Packed(-5, 3, -29999), Packed(0, 0, 0),
                                           Packed(32767, -32768, 32767), Packed(100, -200, 300)};
    std::mt19937 random(3);
    std::uniform_int_distribution<int> component(-32768, 32767);
    std::uniform_real_distribution<float> unit(-1.0f, 1.0f);
    while (normals.size() < 4 * kFZFacetPiece) {
        FZPackedVector n;
        n.SetFloats(unit(random), unit(random), unit(random), true);
        normals.push_back(normals.size() % 5 == 0 ? Packed(component(random), component(random), component(random)) : n);
    }
    FZAnisotropy params;  // concentric: the groove runs across (dx, dy)
    const float centre[3] = {0.0f, 0.0f, 0.0f};
    for (const float depth : {0.15f, 2e-6f, 3.0f, 1e6f}) {
        params.grooveDepth = depth;
        for (std::size_t first = 0; first < normals.size(); first += kFZFacetPiece) {
            FZFacetLanes lanes;
            float points[kFZFacetPiece][3];
            for (std::int32_t k = 0; k < kFZFacetPiece; ++k) {
                // Points on and off the centre, near and far.
                const float point[3] = {k % 7 == 0 ? 0.0f : unit(random) * 300.0f, unit(random) * (k % 3) * 40.0f, 0.0f};
                std::copy(point, point + 3, points[k]);
                float nx, ny, nz;
                normals[first + k].GetFloats(nx, ny, nz);
                lanes.nx[k] = nx;
                lanes.ny[k] = ny;
                lanes.nz[k] = nz;
                FZFacetRotationAngle(nx, ny, nz, lanes.sine[k], lanes.cosine[k]);
                lanes.gx[k] = point[0];
                lanes.gy[k] = point[1];
                lanes.depth[k] = depth;
            }
            RotationsOfPiece(lanes, kFZFacetPiece);
            FacetsOfPiece(lanes, kFZFacetPiece);
            for (std::int32_t k = 0; k < kFZFacetPiece; ++k) {
                const FZPackedVector& n = normals[first + k];
                float nx, ny, nz;
                n.GetFloats(nx, ny, nz);
                if (nz > 0.9999999f)
                    continue;  // flat: no rotation, the single pixel's own path
                FZFacetFrame frame;
                FZPackedVector t1, t2;
                AnisotropicFacets(params, points[k], n, centre, t1, t2, frame);
                EXPECT_TRUE(Same(t1, lanes.t1[0][k], lanes.t1[1][k], lanes.t1[2][k])
                            && Same(t2, lanes.t2[0][k], lanes.t2[1][k], lanes.t2[2][k]))
                    << "normal " << n.x << ' ' << n.y << ' ' << n.z << " point " << points[k][0] << ' '
                    << points[k][1] << " depth " << depth;
            }
        }
    }
}
