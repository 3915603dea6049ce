#include "engine/shading/lighting.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "engine/fz_math.h"
#include "engine/parallel.h"
#include "engine/pixel.h"
#include "engine/shading/anisotropy.h"
#include "engine/shading/diffuse_rows.h"
#include "engine/shading/shading_pass.h"
#include "engine/shading/surface.h"

namespace {

// Evaluates light i at p; false when the list holds no light there.
bool EvaluateLight(const FZLightList* lights, std::int32_t i, const float p[3], LightSample& out)
{
    if (lights == nullptr || i < 0 || static_cast<std::size_t>(i) >= lights->size())
        return false;
    (*lights)[static_cast<std::size_t>(i)].Evaluate(p[0], p[1], p[2], out.color, out.direction);
    return true;
}

bool HasSurface(const FZLayer& layer)
{
    return !layer.coverage.empty() && !layer.depth.empty() && !layer.normals.empty();
}

// The shaded image holds the pixels the rows hold.
FZResult EnsureShadedImage(FZLayer& layer)
{
    if (!layer.shaded.empty() && layer.shaded.Layout() == layer.coverage.Layout())
        return FZResult::Ok;
    try {
        layer.shaded = FZRaster<FZShadedPixel>(layer.coverage.Layout());
    } catch (const std::bad_alloc&) {
        layer.shaded.Clear();
        return FZResult::OutOfMemory;
    }
    return FZResult::Ok;
}

// Whether the rainbow tint is a finite number at every pixel: the film's
// optical path (at most 2 n d, as the cosine is at most 1) stays finite.
bool TintIsFinite(const FZAttributeEx& m)
{
    const double n = m.refractiveIndex > 0.0f ? m.refractiveIndex : 1.0f;
    return std::isfinite(static_cast<float>(2.0 * n * m.stripeSpacing * 1.001));
}

// Evaluates the lights once for the layer and sets up their highlights.
void HoistLights(ShadingPass& pass, bool highlight)
{
    LightSample light;
    const float anywhere[3] = {0.0f, 0.0f, 0.0f};
    for (std::int32_t i = 0; EvaluateLight(pass.lights, i, anywhere, light); ++i) {
        pass.fixed.push_back(light);
        if (highlight)
            pass.highlights.push_back(SetUpHighlight(pass.layer, light.direction, pass.view));
    }
    const FZAttributeEx& m = pass.layer.material;
    pass.whiteStaysWhite = m.rainbow == 0 || TintIsFinite(m);
    m.highlightColor.GetFloats(pass.highlightColour);
    for (const LightSample& fixed : pass.fixed) {
        FZDiffuseLight& d = pass.diffuseLights.emplace_back();
        d.direction = fixed.direction;
        for (int c = 0; c < 3; ++c)
            d.color[c] = fixed.color[c];
    }
    pass.diffuse.lights = pass.diffuseLights.data();
    pass.diffuse.lightCount = static_cast<std::int32_t>(pass.diffuseLights.size());
    pass.diffuse.diffuse = m.diffuse;
    pass.diffuse.ambient = m.ambient;
    pass.diffuse.SetColour(m.color);
}

// Pass 1: ambient and diffuse under every light, times the surface colour
// (the material's, or the layer's own at each pixel), a piece of the row at
// a time.
void ShadeDiffuseRow(const ShadingPass& pass, std::int32_t y)
{
    FZLayer& layer = pass.layer;
    const std::uint8_t* coverage = layer.coverage[y];
    const FZPackedVector* normals = layer.normals[y];
    const FZColor* own = layer.colorSource == 1 && !layer.colors.empty() ? layer.colors[y] : nullptr;
    FZDiffuseBytes bytes;
    const FZSpan held = layer.StoredRow(y);
    for (std::int32_t start = held.first; start <= held.last; start += kFZDiffusePiece) {
        const std::int32_t n = FZMin(kFZDiffusePiece, held.last + 1 - start);
        if (std::all_of(coverage + start, coverage + start + n, [](std::uint8_t c) { return c == 0; }))
            continue;
        ShadeDiffusePiece(pass.diffuse, normals + start, own != nullptr ? own + start : nullptr, n, bytes);
        std::uint8_t* out = layer.ShadedAt(start, y);
        for (std::int32_t k = 0; k < n; ++k)
            if (coverage[start + k] != 0)
                FZStoreByteTriple(out + 3 * k, bytes.rgb[0][k], bytes.rgb[1][k], bytes.rgb[2][k]);
    }
}

// Whether a covered neighbour's highlight (each held at most 1) differs by
// more than 0.1 from the pixel's: only there is supersampling worth it.
bool HighlightVaries(const FZLayer& layer, std::int32_t x, std::int32_t y)
{
    const float centre = FZMin(layer.highlight[y][x], 1.0f);
    // Neighbours the rows do not hold are uncovered.
    for (std::int32_t yy = FZMax(y - 1, 0); yy <= FZMin(y + 1, layer.height - 1); ++yy) {
        const FZSpan held = layer.StoredRow(yy);
        const std::int32_t x0 = FZMax(x - 1, held.first);
        const std::int32_t x1 = FZMin(x + 1, held.last);
        if (x0 > x1)
            continue;
        const float* row = layer.highlight[yy];
        for (std::int32_t xx = x0; xx <= x1; ++xx) {
            if (row[xx] < 0.0f)
                continue;
            const float v = FZMin(row[xx], 1.0f);
            if (std::fabs(static_cast<double>(centre) - v) > 0.1)
                return true;
        }
    }
    return false;
}

// The supersampled highlight of every light at pixel (x, y). Kept out of
// the row's loop, which most pixels pass through without it.
[[gnu::noinline]] float SmoothedHighlight(const ShadingPass& pass, std::int32_t x, std::int32_t y)
{
    const FZLayer& layer = pass.layer;
    // A box two frame sides wide (and one pixel more on each side) covers
    // the whole frame wherever a sample lies, so any wider box draws the
    // same picture; held there, an absurd width costs what a frame-wide box
    // does. NaN stays NaN.
    const float frameWide = static_cast<float>(2.0 * (FZMax(layer.width, layer.height) + 1.0));
    const float width = layer.material.smoothWidth > frameWide ? frameWide : layer.material.smoothWidth;
    return SumOverLights(pass.highlights, [&](const HighlightSetup& h) {
        FZNormalAngle angle;
        return SmoothHighlightAt(layer, h, x, y, 3, width, angle);
    });
}

// The highlight of pixel (x, y): the map value, or a supersampled one where
// the highlight changes sharply and smoothing is on.
float PixelHighlight(const ShadingPass& pass, std::int32_t x, std::int32_t y)
{
    const FZLayer& layer = pass.layer;
    const bool smooth = layer.material.smoothHighlight != 0;
    if (!smooth || !HighlightVaries(layer, x, y))
        return layer.highlight[y][x];
    return SmoothedHighlight(pass, x, y);
}

// Lane k's highlight colour: the material's, tinted by the rainbow gloss
// of the first light when the material has one (untinted, the lanes keep
// the colour they are filled with).
void HighlightColor(const ShadingPass& pass, std::int32_t x, std::int32_t y, FZHighlightLanes& lanes,
                    std::int32_t k)
{
    const FZLayer& layer = pass.layer;
    const FZAttributeEx& m = layer.material;
    if (m.rainbow == 0 || pass.fixed.empty())
        return;
    float tint[3];
    RainbowGloss(m.stripeSpacing, m.refractiveIndex, pass.fixed.front().direction, layer.normals[y][x], tint);
    for (int c = 0; c < 3; ++c)
        lanes.colour[c][k] = static_cast<float>(static_cast<double>(pass.highlightColour[c]) * tint[c]);
}

// Pass 3: adds the highlight, held at most 1, in the highlight colour, the
// pixels that take one gathered a piece at a time for the kernel.
void ApplyHighlightRow(const ShadingPass& pass, std::int32_t y)
{
    FZLayer& layer = pass.layer;
    const std::uint8_t* coverage = layer.coverage[y];
    const float* highlight = layer.highlight[y];
    FZHighlightLanes lanes;
    for (int c = 0; c < 3; ++c)
        std::fill(lanes.colour[c], lanes.colour[c] + kFZDiffusePiece, pass.highlightColour[c]);
    std::int32_t columns[kFZDiffusePiece];
    std::int32_t count = 0;
    const auto add = [&] {
        AddHighlightPiece(lanes, count);
        for (std::int32_t k = 0; k < count; ++k)
            FZStoreByteTriple(layer.ShadedAt(columns[k], y), lanes.rgb[0][k], lanes.rgb[1][k], lanes.rgb[2][k]);
        count = 0;
    };
    // Without smoothing the map's value is the pixel's highlight, and most
    // pixels have none: they are passed over first.
    const bool smooth = layer.material.smoothHighlight != 0;
    const FZSpan held = layer.StoredRow(y);
    for (std::int32_t x = held.first; x <= held.last; ++x) {
        if (coverage[x] == 0 || (!smooth && !(highlight[x] > 0.0f)))
            continue;
        const std::uint8_t* shaded = layer.ShadedAt(x, y);
        if (pass.whiteStaysWhite && shaded[0] == 255 && shaded[1] == 255 && shaded[2] == 255)
            continue;
        float h = PixelHighlight(pass, x, y);
        if (h > 1.0f)
            h = 1.0f;
        if (!(h > 0.0f))
            continue;
        const std::int32_t k = count++;
        columns[k] = x;
        lanes.h[k] = h;
        for (int c = 0; c < 3; ++c)
            lanes.shade[c][k] = FZByteToFloat(shaded[2 - c]);
        HighlightColor(pass, x, y, lanes, k);
        if (count == kFZDiffusePiece)
            add();
    }
    add();
}

bool AnyCovered(const FZLayer& layer)
{
    const FZRect stored = layer.Stored();
    for (std::int32_t y = stored.y0; y <= stored.y1; ++y)
        for (std::int32_t x = layer.StoredRow(y).first; x <= layer.StoredRow(y).last; ++x)
            if (layer.coverage[y][x] != 0)
                return true;
    return false;
}

// A flat layer faces the viewer everywhere, so each of its two colours
// shades to one set of bytes: those the rows' pass stores for it.
void ShadeFlatColours(const ShadingPass& pass)
{
    FZLayer& layer = pass.layer;
    FZPackedVector normal;
    normal.SetFloats(0.0f, 0.0f, 1.0f, true);
    for (int k = 0; k < 2; ++k) {
        FZDiffuseBytes bytes;
        const FZColor* own = layer.colorSource == 1 ? &layer.fill.colors[k] : nullptr;
        ShadeDiffusePiece(pass.diffuse, &normal, own, 1, bytes);
        FZStoreByteTriple(layer.fill.shaded[k], bytes.rgb[0][0], bytes.rgb[1][0], bytes.rgb[2][0]);
    }
}

// Clears the highlight map, which lives only while the layer is shaded.
struct HighlightMap {
    FZLayer& layer;
    ~HighlightMap() { layer.highlight.Clear(); }
};

} // namespace

FZResult ShadeLayer(FZLayer& layer, const FZPackedVector& view, const FZLightList* lights)
{
    // A NaN strength counts as no highlight, in every pass.
    const bool highlight = layer.material.highlightStrength > 0.0f;
    // A highlight differs from pixel to pixel: it takes a flat layer's rows.
    if (layer.IsFlat() && highlight) {
        if (const FZResult made = layer.MakeRows(); made != FZResult::Ok)
            return made;
        if (const FZResult prepared = PrepareSurface(layer); prepared != FZResult::Ok)
            return prepared;
    }
    if (layer.IsFlat()) {
        ShadingPass pass{layer, view, lights};
        HoistLights(pass, false);
        ShadeFlatColours(pass);
        return FZResult::Ok;
    }
    // A layer without its rows (a copy not yet prepared) has nothing to shade.
    if (layer.width < 1 || layer.height < 1 || !HasSurface(layer))
        return FZResult::Ok;
    const FZResult imageResult = EnsureShadedImage(layer);
    if (imageResult != FZResult::Ok)
        return imageResult;
    const HighlightMap map{layer};
    try {
        if (highlight)
            layer.highlight = FZRaster<float>(layer.coverage.Layout());
    } catch (const std::bad_alloc&) {
        return FZResult::OutOfMemory;
    }

    ShadingPass pass{layer, view, lights};
    HoistLights(pass, highlight);
    const FZRect stored = layer.Stored();
    ParallelRows(stored.y0, stored.y1 + 1, [&pass](std::int32_t y) { ShadeDiffuseRow(pass, y); });
    if (!highlight)
        return FZResult::Ok;
    // The groove noise table is filled by the first anisotropic highlight of
    // the module's life; it happens here, on this thread, when the rows below
    // would be the first.
    const bool grooves = layer.material.anisotropic != 0;
    if (grooves && !pass.fixed.empty() && AnyCovered(layer))
        GrooveNoiseTable();
    FillHighlightMap(pass);
    ParallelRows(stored.y0, stored.y1 + 1, [&pass](std::int32_t y) { ApplyHighlightRow(pass, y); });
    return FZResult::Ok;
}

FZPackedVector FilteredNormal(const FZLayer& layer, float sx, float sy, float boxWidth)
{
    const float half = static_cast<float>(static_cast<double>(boxWidth) * 0.5);
    float sum[3] = {0.0f, 0.0f, 0.0f};
    FZPackedVector result;
    // A NaN box (or position) covers nothing, like a box of width 0.
    if (!HasSurface(layer) || std::isnan(half) || std::isnan(sx) || std::isnan(sy)) {
        result.SetFloats(sum, true);
        return result;
    }
    const float width = static_cast<float>(layer.width);
    const float height = static_cast<float>(layer.height);
    const float left = FZMax(0.0f, static_cast<float>(static_cast<double>(sx) - half));
    const float right = FZMin(width, static_cast<float>(static_cast<double>(sx) + half));
    const float top = FZMax(0.0f, static_cast<float>(static_cast<double>(sy) - half));
    const float bottom = FZMin(height, static_cast<float>(static_cast<double>(sy) + half));
    const std::int32_t lastColumn = FZMin(FZTruncate(right), layer.width - 1);
    const std::int32_t lastRow = FZMin(FZTruncate(bottom), layer.height - 1);

    for (std::int32_t r = FZTruncate(top); r <= lastRow; ++r) {
        // Pixels the rows do not hold are uncovered.
        const FZSpan held = layer.StoredRow(r);
        const float rowTop = FZMax(static_cast<float>(r), top);
        const float rowBottom = FZMin(static_cast<float>(r + 1), bottom);
        const float dh = static_cast<float>(static_cast<double>(rowBottom) - rowTop);
        if (!(dh > 0.0f))
            continue;
        for (std::int32_t c = FZMax(FZTruncate(left), held.first); c <= FZMin(lastColumn, held.last); ++c) {
            if (layer.coverage[r][c] == 0)
                continue;
            const float colLeft = FZMax(static_cast<float>(c), left);
            const float colRight = FZMin(static_cast<float>(c + 1), right);
            const float area = static_cast<float>((static_cast<double>(colRight) - colLeft) * dh);
            if (!(area > 0.0f))
                continue;
            float n[3];
            layer.normals[r][c].GetFloats(n);
            for (int k = 0; k < 3; ++k)
                sum[k] = static_cast<float>(sum[k] + static_cast<double>(area) * n[k]);
        }
    }
    result.SetFloats(sum, true);
    return result;
}

void RainbowGloss(float spacing, float index, const FZPackedVector& lightDir, const FZPackedVector& normal,
                  float out[3])
{
    // A film index of 0 or below (or NaN) counts as 1.
    const double n = index > 0.0f ? index : 1.0f;
    const float path = static_cast<float>(2.0 * n * spacing * -FZPackedVector::Dot(normal, lightDir));
    static constexpr double kWavelengths[3] = {620.0, 530.0, 485.0};
    for (int c = 0; c < 3; ++c) {
        const float u = static_cast<float>(path / kWavelengths[c] + 0.5);
        // The fraction keeps the sign of u; no integer is needed for it.
        const float phase = static_cast<float>((static_cast<double>(u) - std::trunc(static_cast<double>(u)))
                                               * kFZTwoPi);
        const double sine = -std::sin(static_cast<double>(phase));
        const double cosine = std::cos(static_cast<double>(phase)) + 1.0;
        out[c] = static_cast<float>((sine * sine + cosine * cosine) / 4.0);
    }
}
