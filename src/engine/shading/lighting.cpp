#include "engine/shading/lighting.h"

#include <cmath>
#include <new>

#include "engine/fz_math.h"
#include "engine/shading/anisotropy.h"

namespace {

// A light evaluated at one world point.
struct LightSample {
    float color[3];
    FZPackedVector direction;
};

// Evaluates light i at p; false when the list holds no light there.
bool EvaluateLight(const FZPtrArray<FZLight>* lights, std::int32_t i, const float p[3], LightSample& out)
{
    const FZLight* light = lights == nullptr ? nullptr : lights->At(i);
    if (light == nullptr)
        return false;
    light->Evaluate(p[0], p[1], p[2], out.color, out.direction);
    return true;
}

// World point of the centre of pixel (x, y).
void WorldPoint(const FZLayer& layer, std::int32_t x, std::int32_t y, float p[3])
{
    p[0] = static_cast<float>(static_cast<double>(layer.x) + x + 0.5);
    p[1] = static_cast<float>(static_cast<double>(layer.y) + y + 0.5);
    p[2] = static_cast<float>(static_cast<double>(layer.depth[y][x]) + layer.baseDepth);
}

bool HasSurface(const FZLayer& layer)
{
    return layer.coverage != nullptr && layer.depth != nullptr && layer.normals != nullptr;
}

float ByteToFloat(std::uint8_t b)
{
    return static_cast<float>(b * 1.0 / 255.0);
}

// Colours are held at most 1 before they become bytes. Bytes are also held
// at least 0: a negative or NaN colour from a wild record shows black.
std::uint8_t FloatToByte(float v)
{
    return static_cast<std::uint8_t>(FZTruncateClamped(static_cast<double>(v) * 255.0, 0, 255));
}

void ReadPixel(const FZImage& image, std::int32_t x, std::int32_t y, float rgb[3])
{
    const std::uint8_t* p = image.PixelAddress(x, y);
    rgb[0] = ByteToFloat(p[2]);
    rgb[1] = ByteToFloat(p[1]);
    rgb[2] = ByteToFloat(p[0]);
}

void StorePixel(FZImage& image, std::int32_t x, std::int32_t y, const float rgb[3])
{
    std::uint8_t* p = image.PixelAddress(x, y);
    p[2] = FloatToByte(rgb[0]);
    p[1] = FloatToByte(rgb[1]);
    p[0] = FloatToByte(rgb[2]);
}

void ClampToOne(float rgb[3])
{
    for (int c = 0; c < 3; ++c)
        if (rgb[c] > 1.0f)
            rgb[c] = 1.0f;
}

// The surface colour at the pixel. Any colour source but 1, and a layer
// without own colour rows, take the material's colour.
void BaseColor(const FZLayer& layer, std::int32_t x, std::int32_t y, float rgb[3])
{
    if (layer.colorSource == 1 && layer.colors != nullptr)
        layer.colors[y][x].GetFloats(rgb);
    else
        layer.material.color.GetFloats(rgb);
}

int EnsureShadedImage(FZLayer& layer)
{
    FZImage* image = layer.shaded;
    if (image != nullptr && image->width == layer.width && image->height == layer.height
        && image->bytesPerPixel == 3 && image->data != nullptr)
        return 0;
    delete image;
    layer.shaded = new (std::nothrow) FZImage;
    if (layer.shaded == nullptr)
        return -2;
    const int result = layer.shaded->Create(layer.width, layer.height, 3, 0);
    if (result != 0) {
        delete layer.shaded;
        layer.shaded = nullptr;
    }
    return result;
}

// Pass 1: ambient and diffuse under every light, times the surface colour.
void ShadeDiffuse(FZLayer& layer, const FZPtrArray<FZLight>* lights)
{
    for (std::int32_t y = 0; y < layer.height; ++y) {
        for (std::int32_t x = 0; x < layer.width; ++x) {
            if (layer.coverage[y][x] == 0)
                continue;
            float p[3];
            WorldPoint(layer, x, y, p);
            float acc[3] = {0.0f, 0.0f, 0.0f};
            LightSample light;
            for (std::int32_t i = 0; EvaluateLight(lights, i, p, light); ++i) {
                float term[3];
                DiffuseTerm(layer.material, layer.normals[y][x], light.direction, light.color, term);
                for (int c = 0; c < 3; ++c)
                    acc[c] = static_cast<float>(static_cast<double>(acc[c]) + term[c]);
            }
            float base[3];
            BaseColor(layer, x, y, base);
            for (int c = 0; c < 3; ++c)
                acc[c] = static_cast<float>(static_cast<double>(acc[c]) * base[c]);
            ClampToOne(acc);
            StorePixel(*layer.shaded, x, y, acc);
        }
    }
}

// Pass 2: the unclamped highlight of all lights at every covered pixel
// centre, -1 outside the shape.
void FillHighlightMap(FZLayer& layer, const FZPackedVector& view, const FZPtrArray<FZLight>* lights)
{
    for (std::int32_t y = 0; y < layer.height; ++y) {
        for (std::int32_t x = 0; x < layer.width; ++x) {
            if (layer.coverage[y][x] == 0) {
                layer.highlight[y][x] = -1.0f;
                continue;
            }
            float p[3];
            WorldPoint(layer, x, y, p);
            const float px = static_cast<float>(x + 0.5);
            const float py = static_cast<float>(y + 0.5);
            float sum = 0.0f;
            LightSample light;
            for (std::int32_t i = 0; EvaluateLight(lights, i, p, light); ++i)
                sum = static_cast<float>(sum + static_cast<double>(HighlightTerm(
                                                   layer, px, py, layer.depth[y][x], layer.normals[y][x],
                                                   light.direction, view)));
            layer.highlight[y][x] = sum;
        }
    }
}

// Whether a covered neighbour's highlight (each held at most 1) differs by
// more than 0.1 from the pixel's: only there is supersampling worth it.
bool HighlightVaries(const FZLayer& layer, std::int32_t x, std::int32_t y)
{
    const float centre = FZMin(layer.highlight[y][x], 1.0f);
    for (std::int32_t yy = y - 1; yy <= y + 1; ++yy) {
        if (yy < 0 || yy >= layer.height)
            continue;
        for (std::int32_t xx = x - 1; xx <= x + 1; ++xx) {
            if (xx < 0 || xx >= layer.width || layer.highlight[yy][xx] < 0.0f)
                continue;
            const float v = FZMin(layer.highlight[yy][xx], 1.0f);
            if (std::fabs(static_cast<double>(centre) - v) > 0.1)
                return true;
        }
    }
    return false;
}

// The highlight of pixel (x, y): the map value, or a supersampled one where
// the highlight changes sharply and smoothing is on.
float PixelHighlight(const FZLayer& layer, const FZPackedVector& view, const FZPtrArray<FZLight>* lights,
                     std::int32_t x, std::int32_t y)
{
    const bool smooth = layer.material.smoothHighlight != 0;
    if (!smooth || !HighlightVaries(layer, x, y))
        return layer.highlight[y][x];
    float p[3];
    WorldPoint(layer, x, y, p);
    float sum = 0.0f;
    LightSample light;
    for (std::int32_t i = 0; EvaluateLight(lights, i, p, light); ++i)
        sum = static_cast<float>(sum + static_cast<double>(SmoothHighlightTerm(
                                           layer, x, y, 3, layer.material.smoothWidth, light.direction, view)));
    return sum;
}

// The highlight colour, tinted by the rainbow gloss of the first light.
void HighlightColor(const FZLayer& layer, const FZPtrArray<FZLight>* lights, std::int32_t x, std::int32_t y,
                    float hc[3])
{
    const FZAttributeEx& m = layer.material;
    m.highlightColor.GetFloats(hc);
    float p[3];
    WorldPoint(layer, x, y, p);
    LightSample first;
    if (m.rainbow == 0 || !EvaluateLight(lights, 0, p, first))
        return;
    float tint[3];
    RainbowGloss(m.stripeSpacing, m.refractiveIndex, first.direction, layer.normals[y][x], tint);
    for (int c = 0; c < 3; ++c)
        hc[c] = static_cast<float>(static_cast<double>(hc[c]) * tint[c]);
}

// Pass 3: adds the highlight, held at most 1, in the highlight colour.
void ApplyHighlight(FZLayer& layer, const FZPackedVector& view, const FZPtrArray<FZLight>* lights)
{
    for (std::int32_t y = 0; y < layer.height; ++y) {
        for (std::int32_t x = 0; x < layer.width; ++x) {
            if (layer.coverage[y][x] == 0)
                continue;
            float h = PixelHighlight(layer, view, lights, x, y);
            if (h > 1.0f)
                h = 1.0f;
            if (!(h > 0.0f))
                continue;
            float hc[3];
            HighlightColor(layer, lights, x, y, hc);
            float colour[3];
            ReadPixel(*layer.shaded, x, y, colour);
            for (int c = 0; c < 3; ++c)
                colour[c] = static_cast<float>(colour[c] + static_cast<double>(h) * hc[c]);
            ClampToOne(colour);
            StorePixel(*layer.shaded, x, y, colour);
        }
    }
}

} // namespace

int ShadeLayer(FZLayer& layer, const FZPackedVector& view, const FZPtrArray<FZLight>* lights)
{
    // A layer without its rows (a copy not yet prepared) has nothing to shade.
    if (layer.width < 1 || layer.height < 1 || !HasSurface(layer))
        return -11;
    const int imageResult = EnsureShadedImage(layer);
    if (imageResult != 0)
        return imageResult;
    // A NaN strength counts as no highlight, in every pass.
    const bool highlight = layer.material.highlightStrength > 0.0f;
    // All rows or none: after a failure the next shading starts afresh.
    if (highlight && layer.highlight == nullptr) {
        layer.highlight = FZNewRows<float>(layer.width, layer.height);
        if (layer.highlight == nullptr)
            return -2;
    }

    ShadeDiffuse(layer, lights);
    if (!highlight)
        return 0;
    FillHighlightMap(layer, view, lights);
    ApplyHighlight(layer, view, lights);
    return 0;
}

void DiffuseTerm(const FZAttributeEx& material, const FZPackedVector& normal, const FZPackedVector& lightDir,
                 const float lightColor[3], float out[3])
{
    out[0] = out[1] = out[2] = 0.0f;
    const float cosine = static_cast<float>(-FZPackedVector::Dot(lightDir, normal));
    if (cosine > 0.0f && material.diffuse > 0.0f) {
        const float lit = static_cast<float>(static_cast<double>(cosine) * material.diffuse);
        for (int c = 0; c < 3; ++c)
            out[c] = static_cast<float>(static_cast<double>(lit) * lightColor[c]);
    }
    for (int c = 0; c < 3; ++c)
        out[c] = static_cast<float>(static_cast<double>(out[c]) + material.ambient);
}

float HighlightTerm(const FZLayer& layer, float px, float py, float depth, const FZPackedVector& normal,
                    const FZPackedVector& lightDir, const FZPackedVector& view)
{
    const FZAttributeEx& m = layer.material;
    if (!(m.highlightStrength > 0.0f))
        return 0.0f;
    // The half vector, turned to point away from the surface.
    FZPackedVector h = lightDir;
    h.AddNormalized(view);
    h.x = static_cast<std::int16_t>(-h.x);
    h.y = static_cast<std::int16_t>(-h.y);
    h.z = static_cast<std::int16_t>(-h.z);

    float b;
    if (m.anisotropic != 0) {
        const double x0 = layer.boundsX0 + 0.5;
        const double y0 = layer.boundsY0 + 0.5;
        const float centre[3] = {static_cast<float>(x0 + (layer.boundsX1 - x0) * m.anisotropy.center[0]),
                                 static_cast<float>(y0 + (layer.boundsY1 - y0) * m.anisotropy.center[1]),
                                 0.0f};
        const float point[3] = {px, py, depth};
        FZPackedVector t1, t2;
        AnisotropicFacets(m.anisotropy, point, normal, centre, t1, t2);
        const float b1 = static_cast<float>(FZMax(0.0, FZPackedVector::Dot(h, t1)));
        const float b2 = static_cast<float>(FZMax(0.0, FZPackedVector::Dot(h, t2)));
        b = b2 > b1 ? b2 : b1;
    } else {
        b = static_cast<float>(FZPackedVector::Dot(h, normal));
    }
    if (!(b > 0.0f))
        return 0.0f;
    const double s = m.highlightSharpness;
    return static_cast<float>(std::pow(static_cast<double>(b), s * s * s * 1000.0)
                              * (static_cast<double>(m.highlightStrength) * 4.0));
}

float SmoothHighlightTerm(const FZLayer& layer, int x, int y, int n, float boxWidth, const FZPackedVector& lightDir,
                          const FZPackedVector& view)
{
    if (n < 1 || !HasSurface(layer) || x < 0 || y < 0 || x >= layer.width || y >= layer.height)
        return 0.0f;
    const float depth = layer.depth[y][x];
    float sum = 0.0f;
    for (int j = 0; j < n; ++j) {
        for (int i = 0; i < n; ++i) {
            const float sx = static_cast<float>(x + (i + 0.5) / n);
            const float sy = static_cast<float>(y + (j + 0.5) / n);
            const FZPackedVector filtered = FilteredNormal(layer, sx, sy, boxWidth);
            float h = HighlightTerm(layer, sx, sy, depth, filtered, lightDir, view);
            if (h > 1.0f)
                h = 1.0f;
            sum = static_cast<float>(static_cast<double>(sum) + h);
        }
    }
    return static_cast<float>(static_cast<double>(sum) * (1.0 / (static_cast<double>(n) * n)));
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
        const float rowTop = FZMax(static_cast<float>(r), top);
        const float rowBottom = FZMin(static_cast<float>(r + 1), bottom);
        const float dh = static_cast<float>(static_cast<double>(rowBottom) - rowTop);
        if (!(dh > 0.0f))
            continue;
        for (std::int32_t c = FZTruncate(left); c <= lastColumn; ++c) {
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
