#include "engine/shading/diffuse_rows.h"

#include <algorithm>

#include "engine/pixel.h"
#include "engine/row_kernel.h"

namespace {

// FZPackedVector::Dot: the integer sum (exact in a double) wrapped to 32
// bits, then scaled.
inline double PackedDot(double ax, double ay, double az, double bx, double by, double bz)
{
    double sum = ax * bx + ay * by + az * bz;
    sum = sum >= 2147483648.0 ? sum - 4294967296.0 : sum;
    sum = sum < -2147483648.0 ? sum + 4294967296.0 : sum;
    return sum * 1.111111111111111e-9;
}

struct Lanes {
    double nx[kFZDiffusePiece];
    double ny[kFZDiffusePiece];
    double nz[kFZDiffusePiece];
    const double* base[3];
    double own[3][kFZDiffusePiece];
    double acc[3][kFZDiffusePiece];
};

// DiffuseTerm: the diffuse and ambient terms of one light, added to each
// pixel's.
TAMERISK_ROW_KERNEL void AddLight(const FZDiffuseSetup& setup, const FZDiffuseLight& light, std::int32_t n,
                                  Lanes& lanes)
{
    const double lx = light.direction.x;
    const double ly = light.direction.y;
    const double lz = light.direction.z;
    const double diffuse = setup.diffuse;
    const double ambient = setup.ambient;
    const double lit = diffuse > 0.0 ? 1.0 : 0.0;
    const double c0 = light.color[0];
    const double c1 = light.color[1];
    const double c2 = light.color[2];
    const double* nx = lanes.nx;
    const double* ny = lanes.ny;
    const double* nz = lanes.nz;
    double* a0 = lanes.acc[0];
    double* a1 = lanes.acc[1];
    double* a2 = lanes.acc[2];
    for (std::int32_t k = 0; k < n; ++k) {
        const double cosine = FZAsFloat(-PackedDot(lx, ly, lz, nx[k], ny[k], nz[k]));
        const double strength = FZAsFloat(cosine * diffuse);
        const double on = cosine > 0.0 ? lit : 0.0;
        const double t0 = FZAsFloat((on > 0.5 ? FZAsFloat(strength * c0) : 0.0) + ambient);
        const double t1 = FZAsFloat((on > 0.5 ? FZAsFloat(strength * c1) : 0.0) + ambient);
        const double t2 = FZAsFloat((on > 0.5 ? FZAsFloat(strength * c2) : 0.0) + ambient);
        a0[k] = FZAsFloat(a0[k] + t0);
        a1[k] = FZAsFloat(a1[k] + t1);
        a2[k] = FZAsFloat(a2[k] + t2);
    }
}

TAMERISK_ROW_KERNEL void StoreBytes(std::int32_t n, const Lanes& lanes, FZDiffuseBytes& out)
{
    for (int c = 0; c < 3; ++c) {
        const double* base = lanes.base[c];
        const double* acc = lanes.acc[c];
        std::int32_t* bytes = out.rgb[c];
        for (std::int32_t k = 0; k < n; ++k)
            bytes[k] = FZByteOfLane(FZAsFloat(acc[k] * base[k]));
    }
}

TAMERISK_ROW_KERNEL void Cosines(const FZPackedVector& half, std::int32_t n, const Lanes& lanes,
                                 double cosines[kFZDiffusePiece])
{
    const double hx = half.x;
    const double hy = half.y;
    const double hz = half.z;
    for (std::int32_t k = 0; k < n; ++k)
        cosines[k] = FZAsFloat(PackedDot(hx, hy, hz, lanes.nx[k], lanes.ny[k], lanes.nz[k]));
}

void TakeNormals(const FZPackedVector* normals, std::int32_t n, Lanes& lanes)
{
    for (std::int32_t k = 0; k < n; ++k) {
        lanes.nx[k] = normals[k].x;
        lanes.ny[k] = normals[k].y;
        lanes.nz[k] = normals[k].z;
    }
}

} // namespace

void HighlightCosinesOfPiece(const FZPackedVector& half, const FZPackedVector* normals, std::int32_t n,
                             double cosines[kFZDiffusePiece])
{
    Lanes lanes;
    TakeNormals(normals, n, lanes);
    Cosines(half, n, lanes, cosines);
}

void FZDiffuseSetup::SetColour(const FZColor& c)
{
    const std::uint8_t bytes[3] = {c.r, c.g, c.b};
    for (int i = 0; i < 3; ++i)
        std::fill(color[i], color[i] + kFZDiffusePiece, static_cast<double>(FZByteToFloat(bytes[i])));
}

void ShadeDiffusePiece(const FZDiffuseSetup& setup, const FZPackedVector* normals, const FZColor* colours,
                       std::int32_t n, FZDiffuseBytes& out)
{
    Lanes lanes;
    TakeNormals(normals, n, lanes);
    for (int c = 0; c < 3; ++c)
        lanes.base[c] = colours != nullptr ? lanes.own[c] : setup.color[c];
    if (colours != nullptr) {
        for (std::int32_t k = 0; k < n; ++k) {
            lanes.own[0][k] = FZByteToFloat(colours[k].r);
            lanes.own[1][k] = FZByteToFloat(colours[k].g);
            lanes.own[2][k] = FZByteToFloat(colours[k].b);
        }
    }
    for (int c = 0; c < 3; ++c)
        for (std::int32_t k = 0; k < n; ++k)
            lanes.acc[c][k] = 0.0;
    for (std::int32_t i = 0; i < setup.lightCount; ++i)
        AddLight(setup, setup.lights[i], n, lanes);
    StoreBytes(n, lanes, out);
}

TAMERISK_ROW_KERNEL void AddHighlightPiece(FZHighlightLanes& lanes, std::int32_t n)
{
    for (int c = 0; c < 3; ++c)
        for (std::int32_t k = 0; k < n; ++k)
            lanes.rgb[c][k] = FZByteOfLane(FZAsFloat(lanes.shade[c][k] + lanes.h[k] * lanes.colour[c][k]));
}
