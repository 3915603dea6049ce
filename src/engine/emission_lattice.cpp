#include "engine/emission_lattice.h"

#include <atomic>
#include <cstddef>
#include <cmath>
#include <limits>
#include <new>
#include <vector>

#include "engine/fz_math.h"
#include "engine/parallel.h"
#include "engine/render_watch.h"
#include "engine/row_kernel.h"

namespace {

// A float raster seen through its row pointers.
struct FZLightGrid {
    float* const* rows = nullptr;
    std::int32_t width = 0;
    std::int32_t height = 0;
};

// The light centre of the block of m around (br, bc), clipped to m: w, the
// sum of its values, and (cx, cy), the w-weighted mean of their pixel
// centres in the frame (the emitter's grid starts at frame pixel
// (x0, y0)). False, with only w set, when w is 0.
bool EmissionBlockCentre(const FZLightGrid& m, std::int32_t x0, std::int32_t y0, std::int32_t br, std::int32_t bc,
                         float& w, float& cx, float& cy)
{
    w = 0.0f;
    float sumX = 0.0f;
    float sumY = 0.0f;
    for (std::int32_t row = FZMax(br - 2, 0); row <= FZMin(br + 2, m.height - 1); ++row)
        for (std::int32_t col = FZMax(bc - 2, 0); col <= FZMin(bc + 2, m.width - 1); ++col) {
            const double v = m.rows[row][col];
            w = static_cast<float>(w + v);
            sumX = static_cast<float>(sumX + v * (x0 + col + 0.5));
            sumY = static_cast<float>(sumY + v * (y0 + row + 0.5));
        }
    if (w == 0.0f)
        return false;
    cx = static_cast<float>(static_cast<double>(sumX) / w);
    cy = static_cast<float>(static_cast<double>(sumY) / w);
    return true;
}

// A block centre ready for splatting: its light times the falloff constant
// (w x k, the first product of every term) and its position.
struct Centre {
    double wk;
    float cx;
    float cy;
    bool lit;
    // The ground lattice point the centre sits on exactly, or -1.
    std::int32_t column;
    std::int32_t row;
};

// The columns j of the lattice whose point can lie within r of x = cx: a
// pixel beyond r + 1 in x is out of reach whatever the float rounding of
// the distance (checked exactly per point anyway). For radii so large that
// rounding could exceed that margin, every column.
void ReachableColumns(double cx, double x0, double r, std::int32_t n, std::int32_t& first, std::int32_t& last)
{
    first = 0;
    last = n - 1;
    if (!(r < 1048576.0))
        return;
    // Lattice column j lies at x0 + 5 j.
    const double lo = std::floor((cx - r - 1.0 - x0) / 5.0);
    const double hi = std::ceil((cx + r + 1.0 - x0) / 5.0);
    if (lo > first)
        first = lo > last ? n : static_cast<std::int32_t>(lo);
    if (hi < last)
        last = hi < 0.0 ? -1 : static_cast<std::int32_t>(hi);
}

// One centre's light on one lattice row, point by point, as the block-by-
// block splat adds it. A point beyond the radius adds 0, which leaves its
// value as it was (a -0 becomes +0, which stores the same bytes), so that
// the loop has no branch and runs as vector code.
TAMERISK_ROW_KERNEL void SplatCentre(double cx, double wk, double dy2, const double* gx, std::int32_t first,
                                     std::int32_t last, double r, float* cells)
{
    const double rr = r * r;
    for (std::int32_t j = first; j <= last; ++j) {
        const double dx = cx - gx[j];
        const double dist2 = FZAsFloat(dx * dx + dy2);
        const double fall = std::sqrt(dist2) - r;
        const double term = dist2 <= rr ? wk * fall * fall : 0.0;
        cells[j] = static_cast<float>(cells[j] + term);
    }
}

// The falloff of a centre that sits exactly on a ground lattice point, k
// lattice columns and l lattice rows away from the point it lights: its
// offsets are 5 k and 5 l exactly, so the float distance, the radius test
// and the square root depend on k and l alone and are made once here for
// all centres. Most block centres of an evenly lit emitter sit there. Each
// row holds k from -(columns - 1) to columns - 1, so that a centre's terms
// along a lattice row are read in the order of the points.
struct FallTable {
    std::int32_t columns = 0;
    std::int32_t width = 0;                // 2 columns - 1
    std::vector<double> fall;              // row l, column k: sqrt(d2) - r
    std::vector<std::int32_t> reach;       // row l: the largest |k| within r, or -1

    // False when its memory cannot be had (then every centre takes the
    // plain way).
    bool Make(std::int32_t rows, std::int32_t cols, double r)
    {
        // A ground too small for a lattice point has nothing to light.
        if (rows <= 0 || cols <= 0)
            return false;
        width = 2 * cols - 1;
        try {
            fall.assign(static_cast<std::size_t>(rows) * static_cast<std::size_t>(width), 0.0);
            reach.assign(static_cast<std::size_t>(rows), -1);
        } catch (const std::bad_alloc&) {
            fall.clear();
            reach.clear();
            return false;
        }
        columns = cols;
        for (std::int32_t l = 0; l < rows; ++l) {
            const double dy = 5.0 * l;
            double* middle = &fall[static_cast<std::size_t>(l) * width + (cols - 1)];
            for (std::int32_t k = 0; k < cols; ++k) {
                const double dx = 5.0 * k;
                const float dist2 = static_cast<float>(dx * dx + dy * dy);
                // The distance grows with k, so the points within r end at
                // the first one beyond.
                if (!(dist2 <= r * r))
                    break;
                middle[k] = middle[-k] = std::sqrt(static_cast<double>(dist2)) - r;
                reach[l] = k;
            }
        }
        return true;
    }
    bool Ready() const { return !reach.empty(); }
    // Row l as seen from a centre in lattice column jc: entry j is the
    // falloff (or the whole term) at lattice column j.
    const double* RowFrom(const std::vector<double>& table, std::int32_t l, std::int32_t jc) const
    {
        return table.data() + static_cast<std::size_t>(l) * width + (columns - 1) - jc;
    }

    // The whole terms w k x fall x fall for the light wk that most centres
    // share (every evenly lit block has the same), so that those centres
    // only add. Without memory for them every centre multiplies.
    double wk = std::numeric_limits<double>::quiet_NaN();
    std::vector<double> term;
    void MakeTerms(double sharedWk)
    {
        try {
            term.assign(fall.size(), 0.0);
        } catch (const std::bad_alloc&) {
            return;
        }
        for (std::size_t i = 0; i < fall.size(); ++i)
            term[i] = sharedWk * fall[i] * fall[i];
        wk = sharedWk;
    }
};

// The lattice index of coordinate v on a lattice starting at v0 with step 5,
// or -1 when v is not exactly one of its n points.
std::int32_t LatticeIndexOf(double v, double v0, std::int32_t n)
{
    const double t = (v - v0) / 5.0;
    if (!(t >= 0.0 && t < n))
        return -1;
    const auto i = static_cast<std::int32_t>(t);
    return v0 + 5.0 * i == v ? i : -1;
}

// A centre on lattice point (jc, ic) lighting lattice row i (|i - ic| = l):
// the same terms as the plain splat, their distances from the table row
// (or, for the shared light, the whole terms: then wk is 1 and the term
// goes in as it is).
template <bool kWholeTerms>
inline __attribute__((always_inline)) void SplatAlignedCentre(double wk, const double* row, std::int32_t jc,
                                                              std::int32_t reach, std::int32_t columns, float* cells)
{
    const std::int32_t first = FZMax(jc - reach, 0);
    const std::int32_t last = FZMin(jc + reach, columns - 1);
    for (std::int32_t j = first; j <= last; ++j)
        cells[j] = static_cast<float>(cells[j] + (kWholeTerms ? row[j] : wk * row[j] * row[j]));
}

std::int32_t LatticeCount(std::int32_t size)
{
    return size > 2 ? (size - 3) / 5 + 1 : 0;
}

struct Lattice {
    const FZEmitterLight& m;
    const FZRect& emitterRect;
    FZGroundLattice& g;
    const FZRect& groundRect;
    double r;
    std::int32_t blockColumns;
    std::int32_t columns;  // lattice columns of the ground
    std::int32_t groundRows;
    std::vector<Centre> centres;
    std::vector<double> gx;
    FallTable falls;
};

// The centres of one row of blocks, from the five emitter rows it spans
// (fewer at the end of the grid, which clips the blocks there).
void GatherCentres(Lattice& l, std::int32_t blockRow, std::vector<float>& band)
{
    const std::int32_t first = 5 * blockRow;
    const std::int32_t n = FZMin(5, l.m.height - first);
    float* rows[5];
    for (std::int32_t r = 0; r < n; ++r)
        rows[r] = band.data() + static_cast<std::size_t>(r) * static_cast<std::size_t>(l.m.width);
    l.m.FillRows(first, n, rows);
    const FZLightGrid light{rows, l.m.width, n};
    const float k = static_cast<float>(1.0 / (l.r * l.r * l.r * 100.0));
    for (std::int32_t j = 0; j < l.blockColumns; ++j) {
        Centre& c = l.centres[static_cast<std::size_t>(blockRow) * l.blockColumns + j];
        float w = 0.0f;
        c.lit = EmissionBlockCentre(light, l.emitterRect.x0, l.emitterRect.y0 + first, 2, 2 + 5 * j, w, c.cx,
                                    c.cy);
        c.wk = static_cast<double>(w) * k;
        c.column = -1;
        c.row = -1;
        if (c.lit && l.falls.Ready()) {
            const std::int32_t row = LatticeIndexOf(c.cy, l.groundRect.y0 + 2 + 0.5, l.groundRows);
            const std::int32_t column = row < 0 ? -1 : LatticeIndexOf(c.cx, l.groundRect.x0 + 2 + 0.5, l.columns);
            c.row = column < 0 ? -1 : row;
            c.column = column;
        }
    }
}

TAMERISK_ROW_KERNEL void SplatGroundRow(Lattice& l, std::int32_t row)
{
    const double r = l.r;
    const double gy = l.groundRect.y0 + (2 + 5 * row) + 0.5;
    float* cells = l.g.cells.data() + static_cast<std::size_t>(row) * static_cast<std::size_t>(l.columns);
    const double x0 = l.groundRect.x0 + 2 + 0.5;
    if (RenderStopRequested())
        return;
    for (const Centre& c : l.centres) {
        if (!c.lit)
            continue;
        const double dy = c.cy - gy;
        if (!(dy * dy <= r * r))
            continue;
        if (c.row >= 0) {
            const std::int32_t rows = row > c.row ? row - c.row : c.row - row;
            const std::int32_t reach = l.falls.reach[rows];
            if (reach >= 0 && c.wk == l.falls.wk)
                SplatAlignedCentre<true>(1.0, l.falls.RowFrom(l.falls.term, rows, c.column), c.column, reach,
                                         l.columns, cells);
            else if (reach >= 0)
                SplatAlignedCentre<false>(c.wk, l.falls.RowFrom(l.falls.fall, rows, c.column), c.column, reach,
                                          l.columns, cells);
            continue;
        }
        std::int32_t first = 0;
        std::int32_t last = 0;
        ReachableColumns(c.cx, x0, r, l.columns, first, last);
        if (first <= last)
            SplatCentre(c.cx, c.wk, dy * dy, l.gx.data(), first, last, r, cells);
    }
}

} // namespace


bool SplatEmissionByGroundRows(const FZEmitterLight& m, const FZRect& emitterRect, const FZRect& groundRect,
                               std::int32_t radius, FZGroundLattice& g)
{
    std::int32_t groundWidth = 0;
    std::int32_t groundHeight = 0;
    groundRect.GetSize(groundWidth, groundHeight);
    Lattice l{m, emitterRect, g, groundRect, static_cast<double>(radius), LatticeCount(m.width),
              LatticeCount(groundWidth), LatticeCount(groundHeight), {}, {}, {}};
    const std::int32_t blockRows = LatticeCount(m.height);
    const std::int32_t groundRows = l.groundRows;
    try {
        l.centres.resize(static_cast<std::size_t>(blockRows) * static_cast<std::size_t>(l.blockColumns));
        l.gx.resize(static_cast<std::size_t>(l.columns));
        g.cells.assign(static_cast<std::size_t>(groundRows) * static_cast<std::size_t>(l.columns), 0.0f);
    } catch (const std::bad_alloc&) {
        return false;
    }
    g.rows = groundRows;
    g.columns = l.columns;
    for (std::int32_t j = 0; j < l.columns; ++j)
        l.gx[j] = groundRect.x0 + (2 + 5 * j) + 0.5;
    // Without memory for the table every centre takes the plain way.
    (void)l.falls.Make(groundRows, l.columns, l.r);
    // Each chunk of block rows takes its band of emitter rows once.
    struct Gathering {
        Lattice* lattice;
        std::atomic<bool> failed;
    } gathering{&l, false};
    RunRowChunks(0, blockRows, [](void* context, std::int32_t first, std::int32_t last) {
        auto& g = *static_cast<Gathering*>(context);
        std::vector<float> band;
        try {
            band.resize(static_cast<std::size_t>(5) * static_cast<std::size_t>(g.lattice->m.width));
        } catch (const std::bad_alloc&) {
            g.failed = true;
            return;
        }
        for (std::int32_t row = first; row < last; ++row)
            GatherCentres(*g.lattice, row, band);
    }, &gathering);
    if (gathering.failed)
        return false;
    // The middle of the emitter is the likeliest to be evenly lit.
    const std::size_t middle = l.centres.size() / 2;
    for (std::size_t i = middle; i < l.centres.size(); ++i)
        if (l.centres[i].row >= 0) {
            l.falls.MakeTerms(l.centres[i].wk);
            break;
        }
    ParallelRows(0, groundRows, [&l](std::int32_t row) { SplatGroundRow(l, row); });
    return true;
}
