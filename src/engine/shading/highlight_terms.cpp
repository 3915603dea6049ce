#include "engine/shading/highlight_terms.h"

#include <cmath>

#include "engine/fz_math.h"
#include "engine/shading/anisotropy.h"
#include "engine/shading/facets.h"
#include "engine/shading/lighting.h"

namespace {

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

} // namespace

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
    const double halfLength = PackedLength(h.half) / FZPackedVector::kScale;
    if (m.anisotropic != 0)
        h.facetLimit = FacetLimit(halfLength, h.cutoff, MaxFacetTilt(m.anisotropy));
    h.facetReach = h.facetLimit * halfLength / FZPackedVector::kScale;
    return h;
}

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
