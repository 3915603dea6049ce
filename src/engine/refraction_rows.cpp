#include "engine/refraction_rows.h"

#include <cfloat>
#include <cmath>

#include "engine/fz_math.h"
#include "engine/pixel.h"
#include "engine/row_kernel.h"

namespace {

constexpr double kScale = FZPackedVector::kScale;

// The unpacking of FZPackedVector::GetFloats.
inline double Unpacked(double packed)
{
    return FZAsFloat(packed * 1.0 / kScale);
}

// The packing of FZPackedVector::SetFloats, unpacked again.
inline double Repacked(double v)
{
    return Unpacked(std::trunc(FZHeldPackingOfLane(v)));
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
        const FZSnell snell(eta, -(-30000.0 * nz[k] * 1.111111111111111e-9));
        rx[k] = snell.Along(Unpacked(nx[k]), 0.0);
        ry[k] = snell.Along(Unpacked(ny[k]), 0.0);
        rz[k] = snell.Along(Unpacked(nz[k]), -1.0);
        refracts[k] = snell.refracts ? 1.0 : 0.0;
        straight[k] = snell.straight ? 1.0 : 0.0;
    }
}

// FZNormalizeHeld and the packing of SetFloats; the straight view stays
// (0, 0, -1).
TAMERISK_ROW_KERNEL void Normalise(std::int32_t n, Lanes& lanes)
{
    double* rx = lanes.rx;
    double* ry = lanes.ry;
    double* rz = lanes.rz;
    const double* straight = lanes.straight;
    for (std::int32_t k = 0; k < n; ++k) {
        double unit[3];
        FZNormalizeHeld(rx[k], ry[k], rz[k], unit);
        rx[k] = straight[k] > 0.5 ? 0.0 : Repacked(unit[0]);
        ry[k] = straight[k] > 0.5 ? 0.0 : Repacked(unit[1]);
        rz[k] = straight[k] > 0.5 ? -1.0 : Repacked(unit[2]);
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
        double down = FZAsFloat(-(d + bias));
        down = down < 0.0 ? down : 0.0;
        const double p = FZAsFloat(down / rz[k]);
        const double plainX = FZAsFloat(column[k] + layerX + 0.5 + rx[k] * p);
        const double plainY = FZAsFloat(y + 0.5 + ry[k] * p);
        // A plate of the material's thickness: the ray crosses the plate
        // along the refracted direction, then leaves it along the view
        // direction when the plate ends above the surface's base, else goes
        // on refracted.
        const double thick = FZAsFloat(thickness / std::fabs(rz[k]));
        const double inside = d < thick ? -d : -thick;
        const double pIn = FZAsFloat(inside / rz[k]);
        const double px = FZAsFloat(column[k] + 0.5 + rx[k] * pIn);
        const double py = FZAsFloat(ly + 0.5 + ry[k] * pIn);
        const double z1 = FZAsFloat(d - inside);
        const double ox = d >= thick ? 0.0 : rx[k];
        const double oy = d >= thick ? 0.0 : ry[k];
        const double oz = d >= thick ? -1.0 : rz[k];
        double below = FZAsFloat(-(z1 + bias));
        below = below < 0.0 ? below : 0.0;
        const double p2 = FZAsFloat(below / oz);
        const double thinX = FZAsFloat(layerX + px + ox * p2);
        const double thinY = FZAsFloat(layerY + py + oy * p2);

        lands[k] = refracts[k] > 0.5 ? (rz[k] != 0.0 ? 1.0f : 0.0f) : 0.0f;
        sx[k] = static_cast<float>(thinGlass > 0.5 ? thinX : plainX);
        sy[k] = static_cast<float>(thinGlass > 0.5 ? thinY : plainY);
    }
}

// The box of one pixel about a landing point, box-filtering the image
// behind, has weight in at most two columns and two rows: four cells, taken
// row by row. Below 2^23 the box's edges (sx -+ 0.5 rounded to float) are
// exact and one apart; up to 2^24 they round to whole numbers at most two
// apart, so that a third column has width 0; beyond, both round to sx.
constexpr int kCells = 4;

struct BoxLanes {
    // The landing points and whether the views land, in double lanes.
    double sx[kFZRefractionPiece];
    double sy[kFZRefractionPiece];
    double lands[kFZRefractionPiece];
    // 1 where the box is sampled: the view lands at finite coordinates and
    // there are pixels to read.
    double sampled[kFZRefractionPiece];
    // The byte offset of each cell's pixel, -1 where the cell lies outside
    // the image, and the cell's weight (0 for a cell the box misses).
    double offset[kCells][kFZRefractionPiece];
    double weight[kCells][kFZRefractionPiece];
    double value[kCells][3][kFZRefractionPiece];
};

// FZTruncate of a finite value, as a double.
inline double Truncated(double v)
{
    v = v > 2147483647.0 ? 2147483647.0 : v;
    v = v < -2147483648.0 ? -2147483648.0 : v;
    return std::trunc(v);
}

// The box's extent within the cell from r, c (rounded to float in each
// direction, multiplied in double) and where the cell's pixel lies; 0 and
// -1 for a cell the box or the image misses.
struct BoxEdges {
    double left, right, bottom, top;
    double lastColumn, lastRow, stride;
};

[[gnu::always_inline]] inline void Cell(const BoxEdges& e, double sampled, double r, double c, double& offset,
                                        double& weight)
{
    const double hy = FZAsFloat(FZMin(r + 1.0, e.top) - FZMax(r, e.bottom));
    const double hx = FZAsFloat(FZMin(c + 1.0, e.right) - FZMax(c, e.left));
    const double inside = r <= e.lastRow ? (c <= e.lastColumn ? sampled : 0.0) : 0.0;
    offset = inside > 0.5 ? r * e.stride + c * 3.0 : -1.0;
    weight = inside > 0.5 ? (hy > 0.0 ? (hx > 0.0 ? hx * hy : 0.0) : 0.0) : 0.0;
}

// The cells of each lane's box and their weights. Flags are 1.0 or 0.0, so
// that the loop keeps one lane width.
TAMERISK_ROW_KERNEL void LocateCells(const FZBehindView& behind, std::int32_t n, BoxLanes& box)
{
    const double image = behind.data != nullptr ? 1.0 : 0.0;
    const double stride = behind.stride;
    const double lastColumn = behind.width - 1.0;
    const double lastRow = behind.height - 1.0;
    for (std::int32_t k = 0; k < n; ++k) {
        const double sx0 = box.sx[k];
        const double sy0 = box.sy[k];
        const double finite = std::fabs(sx0) <= DBL_MAX ? (std::fabs(sy0) <= DBL_MAX ? 1.0 : 0.0) : 0.0;
        const double sx = finite > 0.5 ? sx0 : 0.0;
        const double sy = finite > 0.5 ? sy0 : 0.0;
        BoxEdges e{FZAsFloat(sx - 0.5), FZAsFloat(sx + 0.5), FZAsFloat(sy - 0.5), FZAsFloat(sy + 0.5), 0.0, 0.0,
                   stride};
        const double c0 = FZMax(Truncated(e.left), 0.0);
        const double r0 = FZMax(Truncated(e.bottom), 0.0);
        e.lastColumn = FZMin(Truncated(e.right), lastColumn);
        e.lastRow = FZMin(Truncated(e.top), lastRow);
        const double sampled = (box.lands[k] != 0.0 ? finite : 0.0) * image;
        box.sampled[k] = sampled;
        Cell(e, sampled, r0, c0, box.offset[0][k], box.weight[0][k]);
        Cell(e, sampled, r0, c0 + 1.0, box.offset[1][k], box.weight[1][k]);
        Cell(e, sampled, r0 + 1.0, c0, box.offset[2][k], box.weight[2][k]);
        Cell(e, sampled, r0 + 1.0, c0 + 1.0, box.offset[3][k], box.weight[3][k]);
    }
}

// The cells' colours from the image (0 outside it).
void ReadCells(const FZBehindView& behind, std::int32_t n, BoxLanes& box)
{
    for (int cell = 0; cell < kCells; ++cell) {
        for (std::int32_t k = 0; k < n; ++k) {
            const double offset = box.offset[cell][k];
            if (offset < 0.0) {
                for (int c = 0; c < 3; ++c)
                    box.value[cell][c][k] = 0.0;
                continue;
            }
            // Bytes go blue, green, red.
            const std::uint8_t* p = behind.data + static_cast<std::ptrdiff_t>(offset);
            for (int c = 0; c < 3; ++c)
                box.value[cell][c][k] = FZByteToFloat(p[2 - c]);
        }
    }
}

// The weighted sums in float, cell by cell, then the part of the box
// outside the image in the background's colour.
TAMERISK_ROW_KERNEL void SumCells(const FZBehindView& behind, std::int32_t n, const BoxLanes& box,
                                  FZSeenColours& out)
{
    for (int c = 0; c < 3; ++c) {
        const double background = behind.background[c];
        const double* v0 = box.value[0][c];
        const double* v1 = box.value[1][c];
        const double* v2 = box.value[2][c];
        const double* v3 = box.value[3][c];
        const double* w0 = box.weight[0];
        const double* w1 = box.weight[1];
        const double* w2 = box.weight[2];
        const double* w3 = box.weight[3];
        for (std::int32_t k = 0; k < n; ++k) {
            // A cell of weight 0 adds exactly nothing: the sums are never -0.
            const double first = FZAsFloat(FZAsFloat(0.0 + v0[k] * w0[k]) + v1[k] * w1[k]);
            const double sum = FZAsFloat(FZAsFloat(first + v2[k] * w2[k]) + v3[k] * w3[k]);
            const double total = FZAsFloat(FZAsFloat(FZAsFloat(FZAsFloat(0.0 + w0[k]) + w1[k]) + w2[k]) + w3[k]);
            const double mixed = FZAsFloat(sum / total * total + (1.0 - total) * background);
            out.rgb[c][k] = box.sampled[k] > 0.5 && total > 0.0 ? mixed : background;
        }
    }
}

} // namespace

void SeenThroughPiece(const FZBehindView& behind, const FZLandingPoints& points, std::int32_t n, FZSeenColours& out)
{
    BoxLanes box;
    for (std::int32_t k = 0; k < n; ++k) {
        box.sx[k] = points.sx[k];
        box.sy[k] = points.sy[k];
        box.lands[k] = points.lands[k];
    }
    LocateCells(behind, n, box);
    ReadCells(behind, n, box);
    SumCells(behind, n, box, out);
}

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
