#include "engine/shading/lighting.h"

#include <algorithm>
#include <cmath>
#include <mutex>
#include <vector>

#include "engine/fz_math.h"
#include "engine/parallel.h"
#include "engine/pixel.h"
#include "engine/shading/anisotropy.h"
#include "engine/shading/diffuse_rows.h"
#include "engine/shading/facets.h"
#include "engine/shading/surface.h"

namespace {

// A light evaluated at one world point.
struct LightSample {
    float color[3];
    FZPackedVector direction;
};

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

void ClampToOne(float rgb[3])
{
    for (int c = 0; c < 3; ++c)
        if (rgb[c] > 1.0f)
            rgb[c] = 1.0f;
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

// What a highlight term needs that stays the same over a layer for one
// light: the half vector (turned to point away from the surface), the power
// and the strength, the centre of the groove pattern, and below which value
// of b a term certainly rounds to 0.
struct HighlightSetup {
    FZPackedVector half;
    double exponent = 0.0;
    double scale = 0.0;
    float centre[3] = {0.0f, 0.0f, 0.0f};
    // A b at or below the cutoff gives exactly 0 (0: not known).
    double cutoff = 0.0;
    // Anisotropic: a normal whose cosine to the half vector is below this
    // has no facet that reaches above the cutoff (-2: not known).
    double facetLimit = -2.0;
    double halfLength = 0.0;
};

// The largest b whose term pow(b, exponent) x scale certainly rounds to 0 as
// a float: the term is then at most 2^-151, half of what rounds to 0 at the
// most, which leaves room for the rounding of pow and of the product. Only
// for the powers and strengths a material can sensibly have; 0 otherwise.
double UnderflowCutoff(double exponent, double scale)
{
    constexpr double kTiny = 0x1p-151;
    if (!(exponent >= 1.0 && exponent <= 1e6 && scale >= 0x1p-20 && scale <= 0x1p20))
        return 0.0;
    double b = std::exp(std::log(kTiny / scale) / exponent);
    for (int i = 0; i < 8 && !(std::pow(b, exponent) * scale <= kTiny); ++i)
        b *= 0.999;
    return std::pow(b, exponent) * scale <= kTiny ? b : 0.0;
}

// The facets lie within `tilt` (plus the rounding of their arithmetic and
// packing, well below 1e-3 radians) of the normal, and their packed length
// is below 1.0001. A facet can then reach b above the cutoff only where the
// normal lies within acos(cutoff / (|H| x 1.0001)) + tilt + 1e-3 of H.
double FacetLimit(double halfLength, double cutoff, double tilt)
{
    if (!(cutoff > 0.0) || !(tilt >= 0.0) || !(halfLength > 0.0))
        return -2.0;
    const double reach = FZMin(1.0, cutoff * (1.0 - 1e-6) / (halfLength * 1.0001));
    const double angle = std::acos(reach) + tilt + 1e-3;
    return angle < 3.0 ? std::cos(angle) - 1e-9 : -2.0;
}

double PackedLength(const FZPackedVector& v)
{
    return std::sqrt(static_cast<double>(v.x) * v.x + static_cast<double>(v.y) * v.y
                     + static_cast<double>(v.z) * v.z) / FZPackedVector::kScale;
}

HighlightSetup SetUpHighlight(const FZLayer& layer, const FZPackedVector& lightDir, const FZPackedVector& view)
{
    const FZAttributeEx& m = layer.material;
    HighlightSetup h;
    h.half = lightDir;
    h.half.AddNormalized(view);
    h.half.x = static_cast<std::int16_t>(-h.half.x);
    h.half.y = static_cast<std::int16_t>(-h.half.y);
    h.half.z = static_cast<std::int16_t>(-h.half.z);
    if (m.anisotropic != 0) {
        const double x0 = layer.boundsX0 + 0.5;
        const double y0 = layer.boundsY0 + 0.5;
        h.centre[0] = static_cast<float>(x0 + (layer.boundsX1 - x0) * m.anisotropy.center[0]);
        h.centre[1] = static_cast<float>(y0 + (layer.boundsY1 - y0) * m.anisotropy.center[1]);
    }
    const double s = m.highlightSharpness;
    h.exponent = s * s * s * 1000.0;
    h.scale = static_cast<double>(m.highlightStrength) * 4.0;
    h.cutoff = UnderflowCutoff(h.exponent, h.scale);
    h.halfLength = PackedLength(h.half);
    if (m.anisotropic != 0)
        h.facetLimit = FacetLimit(h.halfLength, h.cutoff, MaxFacetTilt(m.anisotropy));
    return h;
}

// Whether no facet of a groove at this normal can reach above the cutoff.
bool FacetsOutOfReach(const HighlightSetup& h, const FZPackedVector& normal)
{
    if (h.facetLimit <= -2.0)
        return false;
    const double length = PackedLength(normal);
    return length > 0.0 && FZPackedVector::Dot(h.half, normal) < h.facetLimit * h.halfLength * length;
}

// The term for the highlight's cosine b.
float TermOf(const HighlightSetup& h, float b)
{
    if (!(b > 0.0f) || b <= h.cutoff)
        return 0.0f;
    return static_cast<float>(std::pow(static_cast<double>(b), h.exponent) * h.scale);
}

// The term of a groove's two facets: the larger of their cosines counts.
float FacetTerm(const HighlightSetup& h, const FZPackedVector& t1, const FZPackedVector& t2)
{
    const float b1 = static_cast<float>(FZMax(0.0, FZPackedVector::Dot(h.half, t1)));
    const float b2 = static_cast<float>(FZMax(0.0, FZPackedVector::Dot(h.half, t2)));
    return TermOf(h, b2 > b1 ? b2 : b1);
}

// The highlight term of one light at (px, py) with the given normal.
// angle: the memory of the normal's angle for the facets.
float HighlightAt(const FZLayer& layer, const HighlightSetup& h, float px, float py, float depth,
                  const FZPackedVector& normal, FZNormalAngle& angle)
{
    const FZAttributeEx& m = layer.material;
    if (m.anisotropic == 0)
        return TermOf(h, static_cast<float>(FZPackedVector::Dot(h.half, normal)));
    if (FacetsOutOfReach(h, normal))
        return 0.0f;
    const float point[3] = {px, py, depth};
    FZPackedVector t1, t2;
    AnisotropicFacets(m.anisotropy, point, normal, h.centre, t1, t2, &angle);
    return FacetTerm(h, t1, t2);
}

// The supersampled highlight of one light over pixel (x, y): n x n points,
// each with the normal filtered over a box, each held at most 1.
float SmoothHighlightAt(const FZLayer& layer, const HighlightSetup& h, int x, int y, int n, float boxWidth,
                        FZNormalAngle& angle)
{
    const float depth = layer.depth[y][x];
    float sum = 0.0f;
    for (int j = 0; j < n; ++j) {
        for (int i = 0; i < n; ++i) {
            const float sx = static_cast<float>(x + (i + 0.5) / n);
            const float sy = static_cast<float>(y + (j + 0.5) / n);
            const FZPackedVector filtered = FilteredNormal(layer, sx, sy, boxWidth);
            float term = HighlightAt(layer, h, sx, sy, depth, filtered, angle);
            if (term > 1.0f)
                term = 1.0f;
            sum = static_cast<float>(static_cast<double>(sum) + term);
        }
    }
    return static_cast<float>(static_cast<double>(sum) * (1.0 / (static_cast<double>(n) * n)));
}

// What the three passes share. Each light is evaluated once for the layer
// (the lights of Tamerisk are directional: the same at every point) and
// each light's highlight is set up once.
struct ShadingPass {
    ShadingPass(FZLayer& l, const FZPackedVector& v, const FZLightList* list)
        : layer(l), view(v), lights(list) {}

    FZLayer& layer;
    const FZPackedVector& view;
    const FZLightList* lights;
    std::vector<LightSample> fixed;
    std::vector<HighlightSetup> highlights;
    // A white pixel stays white under any highlight: the highlight colour
    // and the rainbow tint never add a negative or NaN amount.
    bool whiteStaysWhite = false;
    float highlightColour[3] = {0.0f, 0.0f, 0.0f};
    // The normals' angles by pixel, kept from the last shading (null: none).
    FZNormalAngle* angles = nullptr;
    // The lights and the material as the diffuse kernel takes them.
    std::vector<FZDiffuseLight> diffuseLights;
    FZDiffuseSetup diffuse;
};

// The normals' angles of the pixels of the last grooved layer shaded, for
// layers of at most 256 x 256 pixels (the previews the
// dialogs show, which are shaded again at every change of the material).
class NormalAngleTable {
public:
    static constexpr std::int64_t kMaxPixels = 256 * 256;

    // Lends the table for a layer of w x h until Release; null when another
    // shading holds it, the layer is larger, or memory runs out.
    FZNormalAngle* Lend(std::int32_t w, std::int32_t h)
    {
        if (std::int64_t{w} * h > kMaxPixels || !lock.try_lock())
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

NormalAngleTable& NormalAngles()
{
    static NormalAngleTable table;
    return table;
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
    m.color.GetFloats(pass.diffuse.color);
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

// Pass 2: the unclamped highlight of all lights at every covered pixel
// centre, -1 outside the shape. Without grooves a light's term depends on
// the normal's cosine to its half vector alone: the cosines of a piece of
// the row come from a vector kernel, the power only where a term can be
// above 0.
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
            for (const HighlightSetup& h : pass.highlights) {
                double cosines[kFZDiffusePiece];
                HighlightCosinesOfPiece(h.half, normals + start, n, cosines);
                for (std::int32_t k = 0; k < n; ++k)
                    sum[k] = static_cast<float>(sum[k] + static_cast<double>(TermOf(h, static_cast<float>(cosines[k]))));
            }
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
        FZGrooveFacetsOfPiece(lanes_, count_);
        for (std::int32_t k = 0; k < count_; ++k)
            layer_.highlight[y_][x_[k]] = Sum(layer_.normals[y_][x_[k]], Facet(lanes_.t1, k), Facet(lanes_.t2, k));
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
        const float point[3] = {static_cast<float>(x + 0.5), static_cast<float>(y_ + 0.5), layer_.depth[y_][x]};
        const FZGroovePoint groove = GroovePointAt(layer_.material.anisotropy, point, normal, pass_.highlights[0].centre);
        if (!groove.grooved) {
            out = Sum(normal, normal, normal);
            return;
        }
        // Kept for the next shading of the layer, or for the next pixel.
        FZNormalAngle& angle
            = pass_.angles != nullptr ? pass_.angles[static_cast<std::size_t>(y_) * layer_.width + x] : last_;
        // Flat parts are not turned: they need no angle.
        if (!(normal.z >= 30000))
            angle.Take(normal);
        const std::int32_t k = count_++;
        x_[k] = x;
        FZSetFacetLane(lanes_, k, normal, groove.g, groove.depth, angle);
    }

    static FZPackedVector Facet(const std::int32_t (&t)[3][kFZFacetPiece], std::int32_t k)
    {
        FZPackedVector v;
        v.x = static_cast<std::int16_t>(t[0][k]);
        v.y = static_cast<std::int16_t>(t[1][k]);
        v.z = static_cast<std::int16_t>(t[2][k]);
        return v;
    }

    // The terms of all lights; a pixel within reach of some light is within
    // reach of the only one, when there is one.
    float Sum(const FZPackedVector& normal, const FZPackedVector& t1, const FZPackedVector& t2) const
    {
        const bool single = pass_.highlights.size() == 1;
        float sum = 0.0f;
        for (const HighlightSetup& h : pass_.highlights) {
            const float term = !single && FacetsOutOfReach(h, normal) ? 0.0f : FacetTerm(h, t1, t2);
            sum = static_cast<float>(sum + static_cast<double>(term));
        }
        return sum;
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

// The highlight of pixel (x, y): the map value, or a supersampled one where
// the highlight changes sharply and smoothing is on.
float PixelHighlight(const ShadingPass& pass, std::int32_t x, std::int32_t y)
{
    const FZLayer& layer = pass.layer;
    const bool smooth = layer.material.smoothHighlight != 0;
    if (!smooth || !HighlightVaries(layer, x, y))
        return layer.highlight[y][x];
    // A box two frame sides wide (and one pixel more on each side) covers
    // the whole frame wherever a sample lies, so any wider box draws the
    // same picture; held there, an absurd width costs what a frame-wide box
    // does. NaN stays NaN.
    const float frameWide = static_cast<float>(2.0 * (FZMax(layer.width, layer.height) + 1.0));
    const float width = layer.material.smoothWidth > frameWide ? frameWide : layer.material.smoothWidth;
    float sum = 0.0f;
    for (const HighlightSetup& h : pass.highlights) {
        FZNormalAngle angle;
        const float term = SmoothHighlightAt(layer, h, x, y, 3, width, angle);
        sum = static_cast<float>(sum + static_cast<double>(term));
    }
    return sum;
}

// The highlight colour, tinted by the rainbow gloss of the first light.
void HighlightColor(const ShadingPass& pass, std::int32_t x, std::int32_t y, float hc[3])
{
    const FZLayer& layer = pass.layer;
    const FZAttributeEx& m = layer.material;
    for (int c = 0; c < 3; ++c)
        hc[c] = pass.highlightColour[c];
    if (m.rainbow == 0)
        return;
    if (pass.fixed.empty())
        return;
    float tint[3];
    RainbowGloss(m.stripeSpacing, m.refractiveIndex, pass.fixed.front().direction, layer.normals[y][x], tint);
    for (int c = 0; c < 3; ++c)
        hc[c] = static_cast<float>(static_cast<double>(hc[c]) * tint[c]);
}

bool IsWhite(const std::uint8_t* p)
{
    return p[0] == 255 && p[1] == 255 && p[2] == 255;
}

// Pass 3: adds the highlight, held at most 1, in the highlight colour, the
// pixels that take one gathered a piece at a time for the kernel.
void ApplyHighlightRow(const ShadingPass& pass, std::int32_t y)
{
    FZLayer& layer = pass.layer;
    const std::uint8_t* coverage = layer.coverage[y];
    const float* highlight = layer.highlight[y];
    FZHighlightLanes lanes;
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
        if (pass.whiteStaysWhite && IsWhite(shaded))
            continue;
        float h = PixelHighlight(pass, x, y);
        if (h > 1.0f)
            h = 1.0f;
        if (!(h > 0.0f))
            continue;
        float hc[3];
        HighlightColor(pass, x, y, hc);
        const std::int32_t k = count++;
        columns[k] = x;
        lanes.h[k] = h;
        for (int c = 0; c < 3; ++c) {
            lanes.shade[c][k] = FZByteToFloat(shaded[2 - c]);
            lanes.colour[c][k] = hc[c];
        }
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

// The highlight map, while the highlight is worked out.
struct HighlightMap {
    explicit HighlightMap(FZLayer& l) : layer(l) {}
    ~HighlightMap() { layer.highlight.Clear(); }
    HighlightMap(const HighlightMap&) = delete;
    HighlightMap& operator=(const HighlightMap&) = delete;

    FZResult Make()
    {
        try {
            layer.highlight = FZRaster<float>(layer.coverage.Layout());
        } catch (const std::bad_alloc&) {
            return FZResult::OutOfMemory;
        }
        return FZResult::Ok;
    }

    FZLayer& layer;
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
    // The map lives only while the layer is shaded.
    HighlightMap map(layer);
    if (highlight)
        if (const FZResult made = map.Make(); made != FZResult::Ok)
            return made;

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
    if (grooves)
        pass.angles = NormalAngles().Lend(layer.width, layer.height);
    if (grooves && !pass.highlights.empty())
        ParallelRows(stored.y0, stored.y1 + 1, [&pass](std::int32_t y) { FillGroovedHighlightRow(pass, y); });
    else
        ParallelRows(stored.y0, stored.y1 + 1, [&pass](std::int32_t y) { FillPlainHighlightRow(pass, y); });
    if (pass.angles != nullptr)
        NormalAngles().Release();
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
