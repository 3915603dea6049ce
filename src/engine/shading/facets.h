// Groove facets: the two flanks of a groove, tilted by atan(depth) to
// either side of the direction across it and turned into the frame of the
// surface normal. The rule is written once over a number of lanes: the row
// kernel runs it over a piece of a row as vector code, the single pixel
// runs it at width 1. Each lane holds floats in doubles, rounded after
// every operation as the float arithmetic of one pixel is, and takes both
// ways (flat part or turned) before it picks one, so that the loop has no
// branch.
#ifndef TAMERISK_ENGINE_SHADING_FACETS_H
#define TAMERISK_ENGINE_SHADING_FACETS_H

#include <cmath>
#include <cstdint>

#include <tamerisk/attribute.h>

#include "engine/row_kernel.h"

inline constexpr std::int32_t kFZFacetPiece = 64;

// The angle between +z and a normal as its sine and cosine (the C
// library's acos, sin and cos), remembered with the normal it was worked
// out for: a shape's geometry stays while its material changes,
// neighbouring samples often share a normal, and a symmetric shape meets
// each normal mirrored.
struct FZNormalAngle {
    FZPackedVector normal;
    bool valid = false;
    double sine = 0.0;
    double cosine = 1.0;

    // Makes this the angle of n, whose cosine to +z is given, worked out
    // again only for a normal that is not n mirrored or swapped.
    void Take(const FZPackedVector& n, double toZ);
};

template <int W>
struct FZFacetLanes {
    // The point in layer pixels (floats).
    double px[W], py[W];
    // The normal (packed, then its floats), 1 where it faces +z within 1e-7
    // (no turning there), its cosine to +z (held within [-1, 1], 1 for no
    // length) and its angle to +z.
    double nx[W], ny[W], nz[W], flat[W], toZ[W], sine[W], cosine[W];
    // The direction across the groove and the groove depth (at least 1e-6),
    // worked out from the point.
    double gx[W], gy[W], depth[W];
    // Out: the packed facets.
    std::int32_t t1[3][W], t2[3][W];
};

// Fills lane k with a point and its normal.
template <int W>
inline void FZSetFacetLane(FZFacetLanes<W>& l, std::int32_t k, const float point[2], const FZPackedVector& normal)
{
    l.px[k] = point[0];
    l.py[k] = point[1];
    l.nx[k] = normal.x;
    l.ny[k] = normal.y;
    l.nz[k] = normal.z;
}

// The normal's floats, whether it is flat and its cosine to +z, for the
// first n lanes.
template <int W>
[[gnu::always_inline]] inline void FZFacetNormals(FZFacetLanes<W>& l, std::int32_t n)
{
    for (std::int32_t k = 0; k < n; ++k) {
        const double nx = FZAsFloat(l.nx[k] / FZPackedVector::kScale);
        const double ny = FZAsFloat(l.ny[k] / FZPackedVector::kScale);
        const double nz = FZAsFloat(l.nz[k] / FZPackedVector::kScale);
        const double length = std::sqrt(nx * nx + ny * ny + nz * nz);
        // The dot product with +z, zero products included.
        const double c = (0.0 * nx + 0.0 * ny + 1.0 * nz) / (1.0 * length);
        l.nx[k] = nx;
        l.ny[k] = ny;
        l.nz[k] = nz;
        l.flat[k] = nz > 0.9999999 ? 1.0 : 0.0;
        l.toZ[k] = length < 1e-10 ? 1.0 : (c > 1.0 ? 1.0 : (c < -1.0 ? -1.0 : c));
    }
}

// Gives lane k the angle of its normal to +z, kept in memo; flat parts are
// not turned: they need none.
template <int W>
inline void FZTakeFacetAngle(FZFacetLanes<W>& l, std::int32_t k, const FZPackedVector& normal, FZNormalAngle& memo)
{
    if (l.flat[k] < 0.5)
        memo.Take(normal, l.toZ[k]);
    l.sine[k] = memo.sine;
    l.cosine[k] = memo.cosine;
}

// The packed facet of lane k.
template <int W>
inline FZPackedVector FZFacetOfLane(const std::int32_t (&t)[3][W], std::int32_t k)
{
    FZPackedVector v;
    v.x = static_cast<std::int16_t>(t[0][k]);
    v.y = static_cast<std::int16_t>(t[1][k]);
    v.z = static_cast<std::int16_t>(t[2][k]);
    return v;
}

namespace fz_facets_detail {

// v / |v| for each component, the length in double raised to 1e-10, each
// rounded to float: a direction's normalisation.
[[gnu::always_inline]] inline void Unit(double x, double y, double z, double out[3])
{
    double length = std::sqrt(x * x + y * y + z * z);
    length = length < 1e-10 ? 1e-10 : length;
    out[0] = FZAsFloat(x / length);
    out[1] = FZAsFloat(y / length);
    out[2] = FZAsFloat(z / length);
}

// The rotation that carries +z onto the normal: the axis +z x n
// normalised, Rodrigues' matrix stored transposed (points are row
// vectors), each entry a float with -0 made +0; m[i * 3 + j] is row i,
// column j.
[[gnu::always_inline]] inline void Rotation(double nx, double ny, double nz, double sine, double cosine,
                                            double m[9])
{
    // The zero products of +z's components stay: they decide the signs of
    // zeros, as the generic cross product does.
    double axis[3];
    Unit(FZAsFloat(0.0 * nz - 1.0 * ny), FZAsFloat(1.0 * nx - 0.0 * nz), FZAsFloat(0.0 * ny - 0.0 * nx), axis);
    const double ax = axis[0];
    const double ay = axis[1];
    const double az = axis[2];
    const double t = 1.0 - cosine;
    m[0] = FZAsFloat(cosine + ax * ax * t) + 0.0;
    m[1] = FZAsFloat(ay * ax * t + az * sine) + 0.0;
    m[2] = FZAsFloat(az * ax * t - ay * sine) + 0.0;
    m[3] = FZAsFloat(ax * ay * t - az * sine) + 0.0;
    m[4] = FZAsFloat(cosine + ay * ay * t) + 0.0;
    m[5] = FZAsFloat(az * ay * t + ax * sine) + 0.0;
    m[6] = FZAsFloat(ax * az * t + ay * sine) + 0.0;
    m[7] = FZAsFloat(ay * az * t - ax * sine) + 0.0;
    m[8] = FZAsFloat(cosine + az * az * t) + 0.0;
}

} // namespace fz_facets_detail

// The facets of the first n lanes. On a flat part the raw facets
// (gx, gy, z) and (-gx, -gy, z), z = |g| / depth, are packed with
// FZNormalizeHeld; elsewhere they are normalised as directions, turned
// by the rotation onto the normal (none where it cannot turn) and packed
// as they are.
template <int W>
[[gnu::always_inline]] inline void FZGrooveFacets(FZFacetLanes<W>& l, std::int32_t n)
{
    using namespace fz_facets_detail;
    for (std::int32_t k = 0; k < n; ++k) {
        const double gx = l.gx[k];
        const double gy = l.gy[k];
        const double z = FZAsFloat(std::sqrt(gx * gx + gy * gy) / l.depth[k]);

        double flat[3];
        FZNormalizeHeld(gx, gy, z, flat);

        double d[3];
        Unit(gx, gy, z, d);
        double m[9];
        Rotation(l.nx[k], l.ny[k], l.nz[k], l.sine[k], l.cosine[k], m);
        // The mirror facet (-d.x, -d.y, d.z) negates the products of x and
        // y, and (-a) + (-b) is exactly -(a + b): only the sums with the z
        // term differ. Stored as floats (the translation row adds +0), then
        // normalised again.
        const double shared[3] = {d[0] * m[0] + d[1] * m[3], d[0] * m[1] + d[1] * m[4], d[0] * m[2] + d[1] * m[5]};
        const double lifted[3] = {d[2] * m[6], d[2] * m[7], d[2] * m[8]};
        double turned1[3];
        double turned2[3];
        Unit(FZAsFloat(shared[0] + lifted[0] + 0.0), FZAsFloat(shared[1] + lifted[1] + 0.0),
             FZAsFloat(shared[2] + lifted[2] + 0.0), turned1);
        Unit(FZAsFloat(-shared[0] + lifted[0] + 0.0), FZAsFloat(-shared[1] + lifted[1] + 0.0),
             FZAsFloat(-shared[2] + lifted[2] + 0.0), turned2);

        const bool isFlat = l.flat[k] > 0.5;
        const bool turns = std::fabs(l.sine[k]) >= 1e-10;
        l.t1[0][k] = FZPackedOfLane(isFlat ? flat[0] : (turns ? turned1[0] : d[0]));
        l.t1[1][k] = FZPackedOfLane(isFlat ? flat[1] : (turns ? turned1[1] : d[1]));
        l.t1[2][k] = FZPackedOfLane(isFlat ? flat[2] : (turns ? turned1[2] : d[2]));
        l.t2[0][k] = FZPackedOfLane(isFlat ? -flat[0] : (turns ? turned2[0] : -d[0]));
        l.t2[1][k] = FZPackedOfLane(isFlat ? -flat[1] : (turns ? turned2[1] : -d[1]));
        l.t2[2][k] = FZPackedOfLane(isFlat ? flat[2] : (turns ? turned2[2] : d[2]));
    }
}

// The normals of a piece of a row (FZFacetNormals), and the facets of its
// points, with the groove pattern of the record about the centre (the
// record has some depth: FZGrooved), as vector code.
void FZFacetNormalsOfPiece(FZFacetLanes<kFZFacetPiece>& lanes, std::int32_t n);
void FZGrooveFacetsOfPiece(const FZAnisotropy& params, const float centre[3], FZFacetLanes<kFZFacetPiece>& lanes,
                           std::int32_t n);

#endif
