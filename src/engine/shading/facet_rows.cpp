#include "engine/shading/facet_rows.h"

void FZFacetRotationAngle(float nx, float ny, float nz, double& sine, double& cosine)
{
    const double length = std::sqrt(static_cast<double>(nx) * nx + static_cast<double>(ny) * ny
                                    + static_cast<double>(nz) * nz);
    double gamma = 0.0;
    if (!(length < 1e-10)) {
        // The dot product with +z, zero products included.
        double c = (0.0 * nx + 0.0 * ny + 1.0 * nz) / (1.0 * length);
        c = c > 1.0 ? 1.0 : (c < -1.0 ? -1.0 : c);
        gamma = std::acos(c);
    }
    sine = std::sin(gamma);
    cosine = std::cos(gamma);
}

TAMERISK_ROW_KERNEL void RotationsOfPiece(FZFacetLanes& lanes, std::int32_t n)
{
    for (std::int32_t k = 0; k < n; ++k) {
        double m[9];
        FZRotationEntries(lanes.nx[k], lanes.ny[k], lanes.nz[k], lanes.sine[k], lanes.cosine[k], m);
        const bool turns = FZRotationTurns(lanes.sine[k]);
        lanes.m[0][k] = turns ? m[0] : 1.0;
        lanes.m[1][k] = turns ? m[1] : 0.0;
        lanes.m[2][k] = turns ? m[2] : 0.0;
        lanes.m[3][k] = turns ? m[3] : 0.0;
        lanes.m[4][k] = turns ? m[4] : 1.0;
        lanes.m[5][k] = turns ? m[5] : 0.0;
        lanes.m[6][k] = turns ? m[6] : 0.0;
        lanes.m[7][k] = turns ? m[7] : 0.0;
        lanes.m[8][k] = turns ? m[8] : 1.0;
        lanes.identity[k] = turns ? 0.0 : 1.0;
    }
}

namespace {

// Facet d (normalised) turned by the lane's rotation: the mirror facet
// (-d.x, -d.y, d.z) negates the products of x and y, and (-a) + (-b) is
// exactly -(a + b), so only the sums with the z term differ. Stored as
// floats (the translation row adds +0), then normalised again.
[[gnu::always_inline]] inline void TurnedPair(const FZFacetLanes& lanes, std::int32_t k, const double d[3],
                                              double turned1[3], double turned2[3])
{
    const double shared0 = d[0] * lanes.m[0][k] + d[1] * lanes.m[3][k];
    const double shared1 = d[0] * lanes.m[1][k] + d[1] * lanes.m[4][k];
    const double shared2 = d[0] * lanes.m[2][k] + d[1] * lanes.m[5][k];
    const double lifted0 = d[2] * lanes.m[6][k];
    const double lifted1 = d[2] * lanes.m[7][k];
    const double lifted2 = d[2] * lanes.m[8][k];
    FZUnitVectorFloats(FZAsFloat(shared0 + lifted0 + 0.0), FZAsFloat(shared1 + lifted1 + 0.0),
                       FZAsFloat(shared2 + lifted2 + 0.0), turned1);
    FZUnitVectorFloats(FZAsFloat(-shared0 + lifted0 + 0.0), FZAsFloat(-shared1 + lifted1 + 0.0),
                       FZAsFloat(-shared2 + lifted2 + 0.0), turned2);
}

} // namespace

TAMERISK_ROW_KERNEL void FacetsOfPiece(FZFacetLanes& lanes, std::int32_t n)
{
    for (std::int32_t k = 0; k < n; ++k) {
        const double gx = lanes.gx[k];
        const double gy = lanes.gy[k];
        // The flanks rise by 1 / depth across the groove.
        const double z = FZAsFloat(std::sqrt(gx * gx + gy * gy) / lanes.depth[k]);
        double d[3];
        FZUnitVectorFloats(gx, gy, z, d);
        double turned1[3];
        double turned2[3];
        TurnedPair(lanes, k, d, turned1, turned2);
        // The identity copies: d as it is, and its mirror.
        const bool identity = lanes.identity[k] > 0.5;
        lanes.t1[0][k] = FZPackedComponent(identity ? d[0] : turned1[0]);
        lanes.t1[1][k] = FZPackedComponent(identity ? d[1] : turned1[1]);
        lanes.t1[2][k] = FZPackedComponent(identity ? d[2] : turned1[2]);
        lanes.t2[0][k] = FZPackedComponent(identity ? -d[0] : turned2[0]);
        lanes.t2[1][k] = FZPackedComponent(identity ? -d[1] : turned2[1]);
        lanes.t2[2][k] = FZPackedComponent(identity ? d[2] : turned2[2]);
    }
}
