// The highlight map of a layer: every light's HighlightTerm summed at each
// covered pixel, plain or from the facets of the grooves.
#include <algorithm>
#include <cstdlib>
#include <new>
#include <mutex>
#include <vector>

#include "engine/fz_math.h"
#include "engine/parallel.h"
#include "engine/shading/anisotropy.h"
#include "engine/shading/shading_pass.h"

namespace {

// The normals' angles of the pixels of the last grooved layer shaded, for
// layers of at most 256 x 256 pixels (the previews the dialogs show, which
// are shaded again at every change of the material).
class NormalAngleTable {
public:
    // Lends the table for a layer of w x h until Release; null when another
    // shading holds it, the layer is larger, or memory runs out.
    FZNormalAngle* Lend(std::int32_t w, std::int32_t h)
    {
        if (std::int64_t{w} * h > 256 * 256 || !lock.try_lock())
            return nullptr;
        try {
            entries.resize(static_cast<std::size_t>(w) * static_cast<std::size_t>(h));
        } catch (const std::bad_alloc&) {
            lock.unlock();
            return nullptr;
        }
        return entries.data();
    }
    void Release() { lock.unlock(); }

private:
    std::mutex lock;
    std::vector<FZNormalAngle> entries;
};

NormalAngleTable normalAngles;

// Without grooves a light's term depends on the normal's cosine to its half
// vector alone: the cosines of a piece of the row come from a vector kernel,
// the power only where a term can be above 0.
void FillPlainHighlightRow(const ShadingPass& pass, std::int32_t y)
{
    FZLayer& layer = pass.layer;
    const std::uint8_t* coverage = layer.coverage[y];
    const FZPackedVector* normals = layer.normals[y];
    float* highlight = layer.highlight[y];
    const FZSpan held = layer.StoredRow(y);
    for (std::int32_t start = held.first; start <= held.last; start += kFZDiffusePiece) {
        const std::int32_t n = FZMin(kFZDiffusePiece, held.last + 1 - start);
        float sum[kFZDiffusePiece] = {};
        if (!std::all_of(coverage + start, coverage + start + n, [](std::uint8_t c) { return c == 0; })) {
            double cosines[kFZDiffusePiece];
            SumOverLights(
                pass.highlights, n, sum,
                [&cosines, piece = normals + start, n](const HighlightSetup& h) {
                    HighlightCosinesOfPiece(h.half, piece, n, cosines);
                },
                [&cosines](const HighlightSetup& h, std::int32_t k) {
                    return TermOf(h, static_cast<float>(cosines[k]));
                });
        }
        for (std::int32_t k = 0; k < n; ++k)
            highlight[start + k] = coverage[start + k] == 0 ? -1.0f : sum[k];
    }
}

// Pass 2 for a grooved layer, a piece of a row at a time: the facets of
// the grooved pixels within some light's reach come from the vector kernel,
// once for all lights (every light's setup has the same pattern centre,
// which depends on the layer and the material alone).
class GroovedPiece {
public:
    GroovedPiece(const ShadingPass& pass, std::int32_t y) : pass_(pass), layer_(pass.layer), y_(y) {}

    void Run(std::int32_t start, std::int32_t n)
    {
        count_ = 0;
        for (std::int32_t x = start; x < start + n; ++x)
            Visit(x);
        if (count_ == 0)
            return;
        FZFacetNormalsOfPiece(lanes_, count_);
        for (std::int32_t k = 0; k < count_; ++k) {
            // Kept for the next shading of the layer, or for the next pixels
            // with the normal or its mirror image.
            const std::size_t at = static_cast<std::size_t>(y_) * layer_.width + x_[k];
            const FZPackedVector& normal = layer_.normals[y_][x_[k]];
            FZTakeFacetAngle(lanes_, k, normal, pass_.angles != nullptr ? pass_.angles[at] : Remembered(normal));
        }
        FZGrooveFacetsOfPiece(layer_.material.anisotropy, pass_.highlights[0].centre, lanes_, count_);
        for (std::int32_t k = 0; k < count_; ++k)
            layer_.highlight[y_][x_[k]] = Sum(layer_.normals[y_][x_[k]], FZFacetOfLane(lanes_.t1, k),
                                               FZFacetOfLane(lanes_.t2, k));
    }

private:
    // A covered pixel out of every light's reach, or without a groove, is
    // done here; otherwise it takes the next lane.
    void Visit(std::int32_t x)
    {
        float& out = layer_.highlight[y_][x];
        if (layer_.coverage[y_][x] == 0) {
            out = -1.0f;
            return;
        }
        const FZPackedVector& normal = layer_.normals[y_][x];
        bool reachable = false;
        for (const HighlightSetup& h : pass_.highlights)
            reachable = reachable || !FacetsOutOfReach(h, normal);
        if (!reachable) {
            out = 0.0f;
            return;
        }
        if (!FZGrooved(layer_.material.anisotropy)) {
            out = Sum(normal, normal, normal);
            return;
        }
        x_[count_] = x;
        const float point[2] = {static_cast<float>(x + 0.5), static_cast<float>(y_ + 0.5)};
        FZSetFacetLane(lanes_, count_++, point, normal);
    }

    // The terms of all lights; a pixel within reach of some light is within
    // reach of the only one, when there is one.
    float Sum(const FZPackedVector& normal, const FZPackedVector& t1, const FZPackedVector& t2) const
    {
        const bool single = pass_.highlights.size() == 1;
        return SumOverLights(pass_.highlights, [&](const HighlightSetup& h) {
            return !single && FacetsOutOfReach(h, normal) ? 0.0f : FacetTerm(h, t1, t2);
        });
    }

    // The angles met last on this thread, by the normal's |x|, |y| and z (a
    // symmetric shape's pair of mirrored rows meets each normal four times);
    // the last one alone when memory runs out.
    FZNormalAngle& Remembered(const FZPackedVector& n)
    {
        static thread_local std::vector<FZNormalAngle> angles = [] {
            try {
                return std::vector<FZNormalAngle>(2048);
            } catch (const std::bad_alloc&) {
                return std::vector<FZNormalAngle>();
            }
        }();
        if (angles.empty())
            return last_;
        const std::uint32_t x = std::abs(n.x), y = std::abs(n.y);
        const std::uint32_t key = (x < y ? x * 65537u + y : y * 65537u + x) * 2654435761u ^ (n.z * 40503u);
        return angles[(key >> 16) & 2047u];
    }

    const ShadingPass& pass_;
    FZLayer& layer_;
    std::int32_t y_;
    std::int32_t count_ = 0;
    std::int32_t x_[kFZFacetPiece];
    FZFacetLanes<kFZFacetPiece> lanes_;
    FZNormalAngle last_;
};

void FillGroovedHighlightRow(const ShadingPass& pass, std::int32_t y)
{
    GroovedPiece piece(pass, y);
    const FZSpan held = pass.layer.StoredRow(y);
    for (std::int32_t start = held.first; start <= held.last; start += kFZFacetPiece)
        piece.Run(start, FZMin(kFZFacetPiece, held.last + 1 - start));
}

} // namespace

void FillHighlightMap(ShadingPass& pass)
{
    FZLayer& layer = pass.layer;
    const FZRect stored = layer.Stored();
    if (layer.material.anisotropic == 0 || pass.highlights.empty()) {
        ParallelRows(stored.y0, stored.y1 + 1, [&pass](std::int32_t y) { FillPlainHighlightRow(pass, y); });
        return;
    }
    pass.angles = normalAngles.Lend(layer.width, layer.height);
    // Rows in pairs mirrored about the middle: the second of a symmetric
    // shape's pair finds its normals' angles remembered.
    ParallelRows(0, (stored.y1 - stored.y0 + 2) / 2, [&pass, &stored](std::int32_t i) {
        FillGroovedHighlightRow(pass, stored.y0 + i);
        if (stored.y1 - i > stored.y0 + i)
            FillGroovedHighlightRow(pass, stored.y1 - i);
    });
    if (pass.angles != nullptr)
        normalAngles.Release();
    pass.angles = nullptr;
}
