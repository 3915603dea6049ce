#include "engine/shading/transparency.h"

#include <cmath>

#include "engine/fz_math.h"
#include "engine/pixel.h"

namespace {

// The least share of the light kept per unit of depth: a full attenuation
// still lets the thinnest parts pass a little.
constexpr float kAttenuationFloor = 0.0001f;

// Grazing views pass less: at incidence dependence k the transmission falls
// from t at nz = 1 to (1 - k) t at nz = 0.
float ApplyIncidence(float t, float k, const FZLayer& layer, std::int32_t x, std::int32_t y)
{
    if (!(k > 0.0f))
        return t;
    // Without normals the surface counts as facing the viewer.
    const double nz = layer.normals.empty() ? 1.0 : static_cast<float>(layer.normals[y][x].Component(2));
    return static_cast<float>((1.0 - k) * t + static_cast<double>(t) * k * nz);
}

float Factor(const FZAttributeEx& m, float range)
{
    float f = static_cast<float>(std::pow(1.0 - m.attenuation, 1.0 / range));
    // An attenuation above 1 (NaN from pow) absorbs as much as 1 does.
    if (!(f >= kAttenuationFloor))
        f = kAttenuationFloor;
    return f;
}

// Thick parts pass less: the fraction a is absorbed through the full depth
// range, and the absorbed light comes back as the surface's own colour.
// factor: the share kept per unit of depth (AttenuationFactor).
float ApplyAttenuation(float t, const FZLayer& layer, std::int32_t x, std::int32_t y, float colour[3],
                       float factor)
{
    const FZAttributeEx& m = layer.material;
    if (!(t > 0.0f) || !(m.attenuation > 0.0f) || layer.depth.empty())
        return t;
    const float range = static_cast<float>(static_cast<double>(layer.depthMax) - layer.depthMin);
    const float h = static_cast<float>(static_cast<double>(layer.depth[y][x]) - layer.depthMin);
    if (!(range > 0.0f) || !(h > 0.0f))
        return t;
    const float kept = static_cast<float>(std::pow(static_cast<double>(factor), static_cast<double>(h)) * t);
    const std::uint8_t surface[3] = {m.color.r, m.color.g, m.color.b};
    const double absorbed = FZMax(0.0, static_cast<double>(t) - kept);
    for (int c = 0; c < 3; ++c) {
        colour[c] = static_cast<float>(colour[c] + absorbed * surface[c] / 255.0);
        if (colour[c] > 1.0f)
            colour[c] = 1.0f;
    }
    return kept;
}

void Lookup(const FZLayer& layer, int x, int y, float colour[3], float& t, float factor)
{
    colour[0] = colour[1] = colour[2] = 0.0f;
    t = 0.0f;
    const FZSpan held = layer.shaded.Row(y);
    if (x < held.first || x > held.last || x >= layer.width || y >= layer.height)
        return;
    FZReadBytes(layer.ShadedAt(x, y), colour);

    const FZAttributeEx& m = layer.material;
    if (!(m.transparency > 0.0f))
        return;
    t = ApplyIncidence(m.transparency, m.incidenceDependence, layer, x, y);
    t = ApplyAttenuation(t, layer, x, y, colour, factor);
    // Fractions from a wild record (above 1, NaN) still give a transmission
    // in [0, 1].
    t = t > 1.0f ? 1.0f : (t > 0.0f ? t : 0.0f);
}

} // namespace

float AttenuationFactor(const FZLayer& layer)
{
    const float range = static_cast<float>(static_cast<double>(layer.depthMax) - layer.depthMin);
    return Factor(layer.material, range);
}

void LookupShade(const FZLayer& layer, int x, int y, float colour[3], float& t, float attenuationFactor)
{
    Lookup(layer, x, y, colour, t, attenuationFactor);
}
