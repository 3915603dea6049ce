#include "engine/refraction_rows.h"

#include <cmath>

#include "engine/row_kernel.h"

namespace {

constexpr double kScale = FZPackedVector::kScale;

// Floats in double lanes (see row_kernel.h).
inline double F(double v)
{
    return FZAsFloat(v);
}

// The unpacking of FZPackedVector::GetFloats.
inline double Unpacked(double packed)
{
    return F(packed * 1.0 / kScale);
}

// The packing of FZPackedVector::SetFloats, unpacked again: v x 30000
// truncated, NaN as 0, held within the int16 range (holding first and
// truncating then gives the same integer).
inline double Repacked(double v)
{
    double t = v * kScale;
    t = t == t ? t : 0.0;
    t = t < -32768.0 ? -32768.0 : t;
    t = t > 32767.0 ? 32767.0 : t;
    return Unpacked(std::trunc(t));
}

struct Lanes {
    double column[kFZRefractionPiece];  // layer column of each pixel
    double nx[kFZRefractionPiece];
    double ny[kFZRefractionPiece];
    double nz[kFZRefractionPiece];
    double depth[kFZRefractionPiece];
    // The refracted direction, and 1 where the view refracts at all.
    double rx[kFZRefractionPiece];
    double ry[kFZRefractionPiece];
    double rz[kFZRefractionPiece];
    double refracts[kFZRefractionPiece];
    double straight[kFZRefractionPiece];
};

// FZPackedVector::Refract of the view (0, 0, -1) at each normal, before the
// direction is normalised. Straight on, the view goes through unchanged.
TAMERISK_ROW_KERNEL void Refract(double eta, std::int32_t n, Lanes& lanes)
{
    const double e2 = F(eta * eta);
    const double* nx = lanes.nx;
    const double* ny = lanes.ny;
    const double* nz = lanes.nz;
    double* rx = lanes.rx;
    double* ry = lanes.ry;
    double* rz = lanes.rz;
    double* refracts = lanes.refracts;
    double* straight = lanes.straight;
    for (std::int32_t k = 0; k < n; ++k) {
        // Dot((0, 0, -30000), n): the x and y products are 0.
        const double c = F(-(-30000.0 * nz[k] * 1.111111111111111e-9));
        const double c2 = F(c * c);
        const double kk = F(e2 - 1.0 + c2);
        const double cosT2 = F(kk / e2);
        const double cosT = F(std::sqrt(cosT2));
        const double s = F(std::sqrt((1.0 - cosT2) / (1.0 - c2)));
        const double m = F(s * c - cosT);
        rx[k] = F(m * Unpacked(nx[k]) + s * 0.0);
        ry[k] = F(m * Unpacked(ny[k]) + s * 0.0);
        rz[k] = F(m * Unpacked(nz[k]) + s * -1.0);
        refracts[k] = kk >= 1e-5 ? 1.0 : 0.0;
        straight[k] = 1.0 - c2 < 1e-5 ? 1.0 : 0.0;
    }
}

// FZNormalizeFloats and the packing of SetFloats; the straight view stays
// (0, 0, -1).
TAMERISK_ROW_KERNEL void Normalise(std::int32_t n, Lanes& lanes)
{
    double* rx = lanes.rx;
    double* ry = lanes.ry;
    double* rz = lanes.rz;
    const double* straight = lanes.straight;
    for (std::int32_t k = 0; k < n; ++k) {
        const double x = rx[k];
        const double y = ry[k];
        const double z = rz[k];
        const double sq = F(F(F(x * x) + F(y * y)) + F(z * z));
        const double inv = F(1.0 / std::sqrt(sq));
        const double nx = Repacked(sq > 0.0 ? F(x * inv) : 0.0);
        const double ny = Repacked(sq > 0.0 ? F(y * inv) : 0.0);
        const double nz = Repacked(sq > 0.0 ? F(z * inv) : 1.0);
        rx[k] = straight[k] > 0.5 ? 0.0 : nx;
        ry[k] = straight[k] > 0.5 ? 0.0 : ny;
        rz[k] = straight[k] > 0.5 ? -1.0 : nz;
    }
}

// The walk from the surface to z = 0 along the refracted direction.
TAMERISK_ROW_KERNEL void Walk(const FZRefraction& setup, std::int32_t n, double ly, const Lanes& lanes,
                              FZLandingPoints& out)
{
    const double bias = setup.bias;
    const double thickness = setup.thickness;
    const double layerX = setup.layerX;
    const double layerY = setup.layerY;
    const double thinGlass = setup.thinGlass ? 1.0 : 0.0;
    const double y = ly + layerY;
    const double* column = lanes.column;
    const double* depth = lanes.depth;
    const double* rx = lanes.rx;
    const double* ry = lanes.ry;
    const double* rz = lanes.rz;
    const double* refracts = lanes.refracts;
    float* lands = out.lands;
    float* sx = out.sx;
    float* sy = out.sy;
    for (std::int32_t k = 0; k < n; ++k) {
        const double d = depth[k];
        // A plain surface: the ray goes on refracted down to z = 0.
        double down = F(-(d + bias));
        down = down < 0.0 ? down : 0.0;
        const double p = F(down / rz[k]);
        const double plainX = F(column[k] + layerX + 0.5 + rx[k] * p);
        const double plainY = F(y + 0.5 + ry[k] * p);
        // A plate of the material's thickness: the ray crosses the plate
        // along the refracted direction, then leaves it along the view
        // direction when the plate ends above the surface's base, else goes
        // on refracted.
        const double thick = F(thickness / std::fabs(rz[k]));
        const double inside = d < thick ? -d : -thick;
        const double pIn = F(inside / rz[k]);
        const double px = F(column[k] + 0.5 + rx[k] * pIn);
        const double py = F(ly + 0.5 + ry[k] * pIn);
        const double z1 = F(d - inside);
        const double ox = d >= thick ? 0.0 : rx[k];
        const double oy = d >= thick ? 0.0 : ry[k];
        const double oz = d >= thick ? -1.0 : rz[k];
        double below = F(-(z1 + bias));
        below = below < 0.0 ? below : 0.0;
        const double p2 = F(below / oz);
        const double thinX = F(layerX + px + ox * p2);
        const double thinY = F(layerY + py + oy * p2);

        lands[k] = refracts[k] > 0.5 ? (rz[k] != 0.0 ? 1.0f : 0.0f) : 0.0f;
        sx[k] = static_cast<float>(thinGlass > 0.5 ? thinX : plainX);
        sy[k] = static_cast<float>(thinGlass > 0.5 ? thinY : plainY);
    }
}

} // namespace

void RefractRowPiece(const FZRefraction& setup, const FZRefractionPiece& piece, const FZPackedVector* normals,
                     const float* depths, FZLandingPoints& out)
{
    Lanes lanes;
    for (std::int32_t k = 0; k < piece.n; ++k) {
        const FZPackedVector n = normals != nullptr ? normals[piece.first + k] : FZPackedVector{0, 0, 30000};
        lanes.column[k] = piece.first + k;
        lanes.nx[k] = n.x;
        lanes.ny[k] = n.y;
        lanes.nz[k] = n.z;
        lanes.depth[k] = depths[piece.first + k];
    }
    Refract(setup.eta, piece.n, lanes);
    Normalise(piece.n, lanes);
    Walk(setup, piece.n, piece.ly, lanes, out);
}
