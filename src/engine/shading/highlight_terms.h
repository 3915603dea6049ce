// The highlight term of one light at a pixel (HighlightTerm): the plain
// highlight about the surface normal, or the larger of a groove's two
// facets, raised to the material's power; and what a layer's shading sets
// up once per light to work it out.
#ifndef TAMERISK_ENGINE_SHADING_HIGHLIGHT_TERMS_H
#define TAMERISK_ENGINE_SHADING_HIGHLIGHT_TERMS_H

#include <cmath>
#include <cstdint>
#include <vector>

#include "engine/fz_math.h"
#include "engine/scene.h"

struct FZNormalAngle;

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
    // The limit times |H|, per unit of a normal's packed length.
    double facetReach = 0.0;
};

HighlightSetup SetUpHighlight(const FZLayer& layer, const FZPackedVector& lightDir, const FZPackedVector& view);

// The length of a packed vector in its own units: 30000 for a unit vector.
inline double PackedLength(const FZPackedVector& v)
{
    return std::sqrt(static_cast<double>(v.x) * v.x + static_cast<double>(v.y) * v.y
                     + static_cast<double>(v.z) * v.z);
}

// Whether no facet of a groove at this normal can reach above the cutoff.
inline bool FacetsOutOfReach(const HighlightSetup& h, const FZPackedVector& normal)
{
    if (h.facetLimit <= -2.0)
        return false;
    const double length = PackedLength(normal);
    return length > 0.0 && FZPackedVector::Dot(h.half, normal) < h.facetReach * length;
}

// The term for the highlight's cosine b.
inline float TermOf(const HighlightSetup& h, float b)
{
    if (!(b > 0.0f) || b <= h.cutoff)
        return 0.0f;
    return static_cast<float>(std::pow(static_cast<double>(b), h.exponent) * h.scale);
}

// The term of a groove's two facets: the larger of their cosines counts.
inline float FacetTerm(const HighlightSetup& h, const FZPackedVector& t1, const FZPackedVector& t2)
{
    const float b1 = static_cast<float>(FZMax(0.0, FZPackedVector::Dot(h.half, t1)));
    const float b2 = static_cast<float>(FZMax(0.0, FZPackedVector::Dot(h.half, t2)));
    return TermOf(h, b2 > b1 ? b2 : b1);
}

// Every light's term summed at each of n pixels (at most W), in the
// lights' order, each sum rounded to float: ready(h) readies a light's
// terms, term(h, k) gives the one at pixel k.
template <int W, typename Ready, typename Term>
inline void SumOverLights(const std::vector<HighlightSetup>& lights, std::int32_t n, float (&sum)[W], Ready&& ready,
                          Term&& term)
{
    for (const HighlightSetup& h : lights) {
        ready(h);
        for (std::int32_t k = 0; k < n; ++k)
            sum[k] = static_cast<float>(sum[k] + static_cast<double>(term(h, k)));
    }
}

// The sum at one pixel, termOf(h) giving each light's term there.
template <typename TermOf>
inline float SumOverLights(const std::vector<HighlightSetup>& lights, TermOf&& termOf)
{
    float sum[1] = {0.0f};
    SumOverLights(lights, 1, sum, [](const HighlightSetup&) {},
                  [&termOf](const HighlightSetup& h, std::int32_t) { return termOf(h); });
    return sum[0];
}

// The supersampled highlight of one light over pixel (x, y): n x n points,
// each with the normal filtered over a box, each held at most 1. angle: the
// memory of the normal's angle for the facets.
float SmoothHighlightAt(const FZLayer& layer, const HighlightSetup& h, int x, int y, int n, float boxWidth,
                        FZNormalAngle& angle);

#endif
