// The ground light that emitting layers cast: the light of each emitter,
// gathered and splatted on the emission lattice, spread by the tent filter
// and added to the ground's pixels of the frame.

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <new>
#include <vector>

#include "engine/emission_lattice.h"
#include "engine/frame_rects.h"
#include "engine/parallel.h"
#include "engine/pixel.h"
#include "engine/render.h"
#include "engine/shading/surface.h"

namespace {

bool IsEmitter(const FZLayer* layer)
{
    return layer != nullptr && layer->IsVisible() != 0 && layer->material.emission > 0.0f;
}

// Dims one row of the emitter's light (frame row y) by a layer in front:
// each cell keeps 1 - a + a x transparency of its light.
void DimEmissionRow(const FZLayer* front, const FZRect& renderRect, const FZRect& rect, std::int32_t y, float* row)
{
    if (front == nullptr || front->IsVisible() == 0 || (front->coverage.empty() && !front->IsFlat()))
        return;
    FZRect frontRect = LayerFrameRect(*front);
    if (!frontRect.Intersect(renderRect) || !frontRect.Intersect(rect) || y < frontRect.y0 || y > frontRect.y1)
        return;
    const double clear = front->material.transparency;
    for (std::int32_t fx = frontRect.x0; fx <= frontRect.x1; ++fx) {
        const float aj = FZByteToFloat(front->CoverageAt(fx - front->x, y - front->y));
        float& cell = row[fx - rect.x0];
        cell = static_cast<float>(cell * (1.0 - aj + aj * clear));
    }
}

// The emitter's light, coverage / 255 x emission x 200 per frame pixel of
// rect, dimmed by the layers between it and the ground (first to index - 1)
// by how much of the light their coverage and transparency let pass. Rows
// are independent: each cell is dimmed by the layers in list order.
class EmitterRows : public FZEmitterLight {
public:
    EmitterRows(const FZScene& s, std::int32_t i, const FZRect& render, const FZRect& r)
        : scene(s), index(i), renderRect(render), rect(r)
    {
        rect.GetSize(width, height);
    }

    void FillRows(std::int32_t first, std::int32_t n, float* const* rows) const override
    {
        const FZLayer& layer = *scene.LayerAt(index);
        const double emission = layer.material.emission;
        const float uncovered = static_cast<float>(FZByteRatio(0) * emission * 200.0);
        for (std::int32_t k = 0; k < n; ++k) {
            const std::int32_t y = rect.y0 + first + k;
            float* row = rows[k];
            std::fill(row, row + width, uncovered);
            // The columns of rect the layer's row holds (all of a flat layer's).
            const FZSpan held = layer.IsFlat() ? FZSpan{0, layer.width - 1} : layer.StoredRow(y - layer.y);
            const std::int32_t c0 = ClampToInt32(FZMax<std::int64_t>(std::int64_t{held.first} + layer.x - rect.x0, 0));
            const std::int32_t c1
                = ClampToInt32(FZMin<std::int64_t>(std::int64_t{held.last} + layer.x - rect.x0, width - 1));
            const std::uint8_t* coverage = layer.IsFlat() || c0 > c1 ? nullptr : layer.coverage[y - layer.y];
            for (std::int32_t c = c0; c <= c1; ++c) {
                const std::uint8_t cov = coverage == nullptr ? 255 : coverage[rect.x0 + c - layer.x];
                if (cov != 0)
                    row[c] = static_cast<float>(FZByteRatio(cov) * emission * 200.0);
            }
            for (std::int32_t j = 1; j < index; ++j)
                DimEmissionRow(scene.LayerAt(j), renderRect, rect, y, row);
        }
    }

private:
    const FZScene& scene;
    std::int32_t index;
    FZRect renderRect;
    FZRect rect;
};

// byte + light, at most 255. Light that a broken material makes negative or
// not a number adds nothing below 0 and nothing at all, respectively.
std::uint8_t AddLight(std::uint8_t byte, double light)
{
    const double v = byte + light;
    if (!(v == v))
        return byte;
    return static_cast<std::uint8_t>(FZTruncateClamped(v, 0, 255));
}

bool AllZero(const std::vector<float>& values)
{
    return std::all_of(values.begin(), values.end(), [](float v) { return v == 0.0f; });
}

// Runs row(y, buffer) over [begin, end) on the pool, each chunk of rows
// with a buffer of n values of its own; std::bad_alloc (after the pool is
// done) when one cannot be had.
template <typename T, typename RowFunction>
void ParallelRowsWithBuffer(std::int32_t begin, std::int32_t end, std::size_t n, RowFunction&& row)
{
    struct Context {
        RowFunction& row;
        std::size_t n;
        std::atomic<bool> failed;
    } context{row, n, false};
    RunRowChunks(begin, end, [](void* p, std::int32_t first, std::int32_t last) {
        Context& c = *static_cast<Context*>(p);
        std::vector<T> buffer;
        try {
            buffer.resize(c.n);
        } catch (const std::bad_alloc&) {
            c.failed = true;
            return;
        }
        for (std::int32_t y = first; y < last; ++y)
            c.row(y, buffer);
    }, &context);
    if (context.failed)
        throw std::bad_alloc();
}

// The ground's light spread from its lattice to every pixel by the tent
// filter of size 10: the sums the filter makes over a grid holding the
// lattice's light at its points and 0 elsewhere, where only the lattice
// rows are not 0. They are filtered across and kept; each pixel row then
// sums them down, in row order. std::bad_alloc when memory runs out.
class GroundLight {
public:
    GroundLight(const FZGroundLattice& g, std::int32_t w, std::int32_t h)
        : lattice(g), width(w), height(h), tent(10),
          across(static_cast<std::size_t>(g.rows) * static_cast<std::size_t>(w)),
          zero(static_cast<std::size_t>(g.rows))
    {
        ParallelRowsWithBuffer<float>(0, g.rows, static_cast<std::size_t>(w),
                                      [this](std::int32_t i, std::vector<float>& row) { FilterAcross(i, row); });
    }

    // The sums of pixel row r, width values; each rounded to float is the
    // light of its pixel.
    void Row(std::int32_t r, std::vector<double>& sums) const
    {
        std::fill(sums.begin(), sums.end(), 0.0);
        const int half = tent.Half();
        for (std::int32_t gr = FZMax(r - half, 0); gr <= FZMin(r + half, height - 1); ++gr) {
            const std::int32_t i = (gr - 2) / 5;
            if (gr < 2 || (gr - 2) % 5 != 0 || i >= lattice.rows || zero[static_cast<std::size_t>(i)] != 0)
                continue;
            const float* values = &across[static_cast<std::size_t>(i) * static_cast<std::size_t>(width)];
            const double weight = tent.Weight(gr - (r - half));
            for (std::int32_t c = 0; c < width; ++c)
                if (values[c] != 0.0f)
                    sums[static_cast<std::size_t>(c)] += static_cast<double>(values[c]) * weight;
        }
    }

private:
    // Lattice row i filtered across; row is width floats of work memory.
    void FilterAcross(std::int32_t i, std::vector<float>& row)
    {
        std::fill(row.begin(), row.end(), 0.0f);
        for (std::int32_t j = 0; j < lattice.columns; ++j)
            row[static_cast<std::size_t>(2 + 5 * j)]
                = lattice.cells[static_cast<std::size_t>(i) * static_cast<std::size_t>(lattice.columns) + j];
        zero[static_cast<std::size_t>(i)] = AllZero(row) ? 1 : 0;
        float* out = &across[static_cast<std::size_t>(i) * static_cast<std::size_t>(width)];
        for (std::int32_t c = 0; c < width; ++c)
            out[c] = zero[static_cast<std::size_t>(i)] != 0 ? 0.0f : tent.Sum(row.data(), 1, c, width);
    }

    const FZGroundLattice& lattice;
    std::int32_t width;
    std::int32_t height;
    FZTentFilter tent;
    std::vector<float> across;
    std::vector<char> zero;
};

void AddLightToFrame(const GroundLight& light, const FZRect& groundRect, const FZColor& colour, FZImage& frame)
{
    float rgb[3];
    colour.GetFloats(rgb);
    std::int32_t w = 0;
    std::int32_t h = 0;
    groundRect.GetSize(w, h);
    ParallelRowsWithBuffer<double>(0, h, static_cast<std::size_t>(w), [&](std::int32_t gr, std::vector<double>& sums) {
        light.Row(gr, sums);
        for (std::int32_t gc = 0; gc < w; ++gc) {
            std::uint8_t* p = frame.PixelAddress(groundRect.x0 + gc, groundRect.y0 + gr);
            const double v = static_cast<float>(sums[static_cast<std::size_t>(gc)]);
            p[0] = AddLight(p[0], rgb[2] * v * 255.0);
            p[1] = AddLight(p[1], rgb[1] * v * 255.0);
            p[2] = AddLight(p[2], rgb[0] * v * 255.0);
        }
    });
}

// Lights the ground around emitter i: 0, or -2 when out of memory.
FZResult AddEmitterLight(FZScene& scene, std::int32_t index, const FZRect& renderRect, const FZRect& groundRect,
                         FZImage& frame)
{
    const FZLayer& layer = *scene.LayerAt(index);
    FZRect rect = LayerFrameRect(layer);
    if ((layer.coverage.empty() && !layer.IsFlat()) || !rect.Intersect(renderRect))
        return FZResult::Ok;
    // An emitter too small for its emission to reach a whole pixel has
    // radius 0: it lights nothing.
    const std::int32_t radius = EmissionRadius(layer);
    if (radius <= 0)
        return FZResult::Ok;
    const EmitterRows m(scene, index, renderRect, rect);
    FZGroundLattice g;
    if (!SplatEmissionByGroundRows(m, rect, groundRect, radius, g))
        return FZResult::OutOfMemory;
    std::int32_t w = 0;
    std::int32_t h = 0;
    groundRect.GetSize(w, h);
    try {
        const GroundLight light(g, w, h);
        AddLightToFrame(light, groundRect, layer.material.color, frame);
    } catch (const std::bad_alloc&) {
        return FZResult::OutOfMemory;
    }
    return FZResult::Ok;
}

} // namespace

FZResult AddEmissionLight(FZScene& scene, const FZRect& rect, FZImage& frame)
{
    const FZLayer* ground = scene.LayerAt(0);
    if (ground == nullptr)
        return FZResult::Ok;
    FZRect area = rect;
    FZRect groundRect = LayerFrameRect(*ground);
    if (!ClipToImage(scene, frame, area) || !groundRect.Intersect(area))
        return FZResult::Ok;

    bool anyLight = false;
    for (std::int32_t i = 1; i < scene.LayerCount() && !anyLight; ++i)
        anyLight = IsEmitter(scene.LayerAt(i)) && !scene.LayerAt(i)->material.color.IsBlack();
    if (!anyLight)
        return FZResult::Ok;

    for (std::int32_t i = 1; i < scene.LayerCount(); ++i) {
        if (!IsEmitter(scene.LayerAt(i)))
            continue;
        const FZResult result = AddEmitterLight(scene, i, area, groundRect, frame);
        if (result != FZResult::Ok)
            return result;
    }
    return FZResult::Ok;
}

int EmissionRadius(const FZLayer& layer)
{
    FZRect bounds;
    if (!(layer.material.emission > 0.0f) || !CoverageBounds(layer, bounds))
        return 0;
    std::int32_t bw = 0;
    std::int32_t bh = 0;
    bounds.GetSize(bw, bh);
    return FZTruncate(std::sqrt(static_cast<double>(layer.material.emission)) * FZMin(bw, bh));
}
