// Groove facets for a piece of a row at once. Off the flat parts of a
// layer every pixel turns its two facets into the frame of its own normal
// (no two pixels of a shape's curved parts share a normal): the C
// library's acos, sin and cos give the angle pixel by pixel, and the
// rotation, the tilted facets and their packing run in kernels the
// compiler turns into vector code. Each lane does the float and double
// operations of the single pixel in the same order; the single pixel uses
// the same inline steps below.
#ifndef TAMERISK_ENGINE_SHADING_FACET_ROWS_H
#define TAMERISK_ENGINE_SHADING_FACET_ROWS_H

#include <cmath>
#include <cstdint>

#include "engine/row_kernel.h"

inline constexpr std::int32_t kFZFacetPiece = 64;

// The angle between +z and the normal (nx, ny, nz) as its sine and cosine.
void FZFacetRotationAngle(float nx, float ny, float nz, double& sine, double& cosine);

// Whether the rotation for that angle turns at all; it is the identity
// where it does not (at +z, and opposite to it, where none can be built).
inline bool FZRotationTurns(double sine)
{
    return std::fabs(sine) >= 1e-10;
}

// The rotation that carries +z onto the normal, where it turns: the axis
// +z x n normalised, Rodrigues' matrix stored transposed (points are row
// vectors), each entry a float with -0 made +0, held in a double; m[i * 3
// + j] as FZMatrix4 holds m[i][j]. Written out without loops, so that a
// kernel's loop over its lanes has none inside.
[[gnu::always_inline]] inline void FZRotationEntries(double nx, double ny, double nz, double sine, double cosine,
                                                     double m[9])
{
    // The zero products of +z's components stay: they decide the signs of
    // zeros, as the generic cross product does.
    const double ex = FZAsFloat(0.0 * nz - 1.0 * ny);
    const double ey = FZAsFloat(1.0 * nx - 0.0 * nz);
    const double ez = FZAsFloat(0.0 * ny - 0.0 * nx);
    double length = std::sqrt(ex * ex + ey * ey + ez * ez);
    length = length < 1e-10 ? 1e-10 : length;
    const double ax = FZAsFloat(ex / length);
    const double ay = FZAsFloat(ey / length);
    const double az = FZAsFloat(ez / length);
    const double t = 1.0 - cosine;
    // Row i of the stored matrix is column i of Rodrigues' R.
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

// v / |v| for each component, the length raised to 1e-10, each rounded to
// float.
[[gnu::always_inline]] inline void FZUnitVectorFloats(double x, double y, double z, double out[3])
{
    double length = std::sqrt(x * x + y * y + z * z);
    length = length < 1e-10 ? 1e-10 : length;
    out[0] = FZAsFloat(x / length);
    out[1] = FZAsFloat(y / length);
    out[2] = FZAsFloat(z / length);
}

// FZPackedVector's packing of a float: v x 30000 truncated, NaN as 0,
// held within the int16 range (holding first and truncating then gives
// the same integer).
[[gnu::always_inline]] inline std::int32_t FZPackedComponent(double v)
{
    double t = v * 30000.0;
    t = t == t ? t : 0.0;
    t = t < -32768.0 ? -32768.0 : t;
    t = t > 32767.0 ? 32767.0 : t;
    return static_cast<std::int32_t>(t);
}

// One piece of pixels off the flat parts.
struct FZFacetLanes {
    // In: the normal's floats and its angle to +z.
    double nx[kFZFacetPiece];
    double ny[kFZFacetPiece];
    double nz[kFZFacetPiece];
    double sine[kFZFacetPiece];
    double cosine[kFZFacetPiece];
    // The rotation, m[i * 3 + j] as FZMatrix4 holds m[i][j], and 1 where it
    // is the identity: from RotationsOfPiece, or filled in where known.
    double m[9][kFZFacetPiece];
    double identity[kFZFacetPiece];
    // In: the direction across the groove and the groove depth.
    double gx[kFZFacetPiece];
    double gy[kFZFacetPiece];
    double depth[kFZFacetPiece];
    // Out: the packed facets, tilted to either side of the groove.
    std::int32_t t1[3][kFZFacetPiece];
    std::int32_t t2[3][kFZFacetPiece];
};

// The rotations of the first n lanes from their normals and angles.
void RotationsOfPiece(FZFacetLanes& lanes, std::int32_t n);

// The facets of the first n lanes from their rotations and grooves.
void FacetsOfPiece(FZFacetLanes& lanes, std::int32_t n);

#endif
