#include "engine/refraction_rows.h"

#include <cmath>

namespace {

constexpr double kScale = FZPackedVector::kScale;

// The packing of FZPackedVector::SetFloats: v x 30000 truncated, NaN as 0,
// held within the int16 range (holding first and truncating then gives the
// same integer), as a double.
inline double PackedValue(float v)
{
    double t = v * kScale;
    t = t == t ? t : 0.0;
    t = t < -32768.0 ? -32768.0 : t;
    t = t > 32767.0 ? 32767.0 : t;
    return static_cast<double>(static_cast<std::int32_t>(t));
}

// The unpacking of FZPackedVector::GetFloats.
inline float Unpacked(double packed)
{
    return static_cast<float>(packed * 1.0 / kScale);
}

struct Lanes {
    double nx[kFZRefractionPiece];
    double ny[kFZRefractionPiece];
    double nz[kFZRefractionPiece];
    float depth[kFZRefractionPiece];
};

// FZPackedVector::Refract of the view (0, 0, -1) at each normal, then the
// walk to z = 0. Both sides of every choice are computed and one is taken:
// on the curved parts of a shape the choices change from pixel to pixel.
void LandingPoints(const FZRefraction& setup, const FZRefractionPiece& piece, const Lanes& in,
                                       FZLandingPoints& out)
{
    // Copies, which the stores through out cannot change.
    const FZRefraction s0 = setup;
    const std::int32_t first = piece.first;
    const std::int32_t n = piece.n;
    const std::int32_t ly = piece.ly;
    const float e2 = static_cast<float>(static_cast<double>(s0.eta) * s0.eta);
    const double thickness = s0.thickness;
    const double y = static_cast<double>(ly) + s0.layerY;
    for (std::int32_t k = 0; k < n; ++k) {
        // Dot((0, 0, -30000), n): the x and y products are 0.
        const double dot = -30000.0 * in.nz[k] * 1.111111111111111e-9;
        const float c = static_cast<float>(-dot);
        const float c2 = static_cast<float>(static_cast<double>(c) * c);
        const float kk = static_cast<float>(e2 - 1.0 + c2);
        const bool refracts = kk >= 1e-5;
        const float cosT2 = static_cast<float>(static_cast<double>(kk) / e2);
        const float cosT = static_cast<float>(std::sqrt(static_cast<double>(cosT2)));
        const bool straight = 1.0 - c2 < 1e-5;
        const float s = static_cast<float>(std::sqrt((1.0 - cosT2) / (1.0 - c2)));
        const float m = static_cast<float>(static_cast<double>(s) * c - cosT);
        const float nxf = Unpacked(in.nx[k]);
        const float nyf = Unpacked(in.ny[k]);
        const float nzf = Unpacked(in.nz[k]);
        float rx = static_cast<float>(static_cast<double>(m) * nxf + static_cast<double>(s) * 0.0f);
        float ry = static_cast<float>(static_cast<double>(m) * nyf + static_cast<double>(s) * 0.0f);
        float rz = static_cast<float>(static_cast<double>(m) * nzf + static_cast<double>(s) * -1.0f);
        // NormalizeFloats, then the packing; straight through keeps the view.
        const float sq = rx * rx + ry * ry + rz * rz;
        const bool long_ = sq > 0.0f;
        const float inv = static_cast<float>(1.0 / std::sqrt(static_cast<double>(sq)));
        rx = long_ ? rx * inv : 0.0f;
        ry = long_ ? ry * inv : 0.0f;
        rz = long_ ? rz * inv : 1.0f;
        const double packedX = PackedValue(rx);
        const double packedY = PackedValue(ry);
        const double packedZ = PackedValue(rz);
        rx = Unpacked(straight ? 0.0 : packedX);
        ry = Unpacked(straight ? 0.0 : packedY);
        rz = Unpacked(straight ? -30000.0 : packedZ);

        const float d = in.depth[k];
        const double x = static_cast<double>(first + k) + s0.layerX;
        // A plain surface: the ray goes on refracted down to z = 0.
        float down = static_cast<float>(-(static_cast<double>(d) + s0.bias));
        down = down < 0.0f ? down : 0.0f;
        const float p = static_cast<float>(static_cast<double>(down) / rz);
        const float plainX = static_cast<float>(x + 0.5 + static_cast<double>(rx) * p);
        const float plainY = static_cast<float>(y + 0.5 + static_cast<double>(ry) * p);
        // A plate of the material's thickness: the ray crosses the plate
        // along the refracted direction, then leaves it along the view
        // direction when the plate ends above the surface's base, else goes
        // on refracted.
        const float thick = static_cast<float>(thickness / std::fabs(static_cast<double>(rz)));
        const float inside = d < thick ? -d : -thick;
        const float pIn = static_cast<float>(static_cast<double>(inside) / rz);
        const float px = static_cast<float>(static_cast<double>(first + k) + 0.5 + static_cast<double>(rx) * pIn);
        const float py = static_cast<float>(static_cast<double>(ly) + 0.5 + static_cast<double>(ry) * pIn);
        const float z1 = static_cast<float>(static_cast<double>(d) - inside);
        const bool leaves = d >= thick;
        const float ox = leaves ? 0.0f : rx;
        const float oy = leaves ? 0.0f : ry;
        const float oz = leaves ? -1.0f : rz;
        float below = static_cast<float>(-(static_cast<double>(z1) + s0.bias));
        below = below < 0.0f ? below : 0.0f;
        const float p2 = static_cast<float>(static_cast<double>(below) / oz);
        const float thinX = static_cast<float>(s0.layerX + static_cast<double>(px) + static_cast<double>(ox) * p2);
        const float thinY = static_cast<float>(s0.layerY + static_cast<double>(py) + static_cast<double>(oy) * p2);

        out.lands[k] = refracts & (rz != 0.0f);
        out.sx[k] = s0.thinGlass ? thinX : plainX;
        out.sy[k] = s0.thinGlass ? thinY : plainY;
    }
}

} // namespace

void RefractRowPiece(const FZRefraction& setup, const FZRefractionPiece& piece, const FZPackedVector* normals,
                     const float* depths, FZLandingPoints& out)
{
    Lanes in;
    for (std::int32_t k = 0; k < piece.n; ++k) {
        const FZPackedVector n = normals != nullptr ? normals[piece.first + k] : FZPackedVector{0, 0, 30000};
        in.nx[k] = n.x;
        in.ny[k] = n.y;
        in.nz[k] = n.z;
        in.depth[k] = depths[piece.first + k];
    }
    LandingPoints(setup, piece, in, out);
}
