// The reflection environment: an infinitely distant sky, a colour gradient
// along y, white below the horizon and sky blue above it, with a smooth band
// around the horizon. Reflective layers look it up along their normals.
#ifndef TAMERISK_ENGINE_ENVIRONMENT_H
#define TAMERISK_ENGINE_ENVIRONMENT_H

#include <cstdint>
#include <vector>

#include "engine/value_types.h"


struct FZRampSegment {
    float color[3] = {0.0f, 0.0f, 0.0f};
    float start = 0.0f;
    float end = 0.0f;
    float fadeIn = 0.0f;
    float fadeOut = 0.0f;
    FZSmoothStep fadeInCurve;
    FZSmoothStep fadeOutCurve;

    // start must lie below end. Builds the fade curves for the widths that
    // are greater than 0.
    void Setup(const float rgb[3], float segStart, float segEnd, float fadeInWidth, float fadeOutWidth);
    // False when the segment does not contribute at t; otherwise its weight
    // and its colour times that weight.
    bool Weight(double t, double& weight, double weighted[3]) const;
};

// A colour ramp over [tMin, tMax]; below the range the first segment's
// colour, above it the last's.
class FZColorRamp {
public:
    float tMin = 0.0f;
    float tMax = 0.0f;
    std::vector<FZRampSegment> segments;

    void Evaluate(double t, float out[3]) const;
};

struct FZRay {
    float origin[3] = {0.0f, 0.0f, 0.0f};
    FZPackedVector direction;
    float weight = 0.0f;
};

class FZEnvironment {
public:
    // Builds the two-segment sky ramp, which never changes.
    FZEnvironment();

    FZColorRamp ramp;
    // The ramp's colour for every packed y component from -kSkyRows to
    // kSkyRows (see BuildSkyTable); empty until built and after
    // ReleaseSkyTable.
    std::vector<float> skyTable;

    static constexpr std::int32_t kSkyRows = 30000;
};

// The sky colour along the ray's direction times its weight.
void LookupEnvironment(const FZEnvironment& env, const FZRay& ray, float colour[3]);

// The sky colour depends only on the y component of the direction, one of
// 60001 packed values (beyond +-30000 the component holds at +-1): a layer
// with many more reflecting pixels than that looks them up in a table,
// built once. False, and no table, without memory or when the render is
// stopped on the way.
bool BuildSkyTable(FZEnvironment& env);

// Gives the table's memory back; the next BuildSkyTable builds it again.
void ReleaseSkyTable(FZEnvironment& env);

// LookupEnvironment from the table: the same colour, weighted the same way.
inline void LookupSkyTable(const FZEnvironment& env, const FZRay& ray, float colour[3])
{
    std::int32_t y = ray.direction.y;
    y = y < -FZEnvironment::kSkyRows ? -FZEnvironment::kSkyRows : (y > FZEnvironment::kSkyRows ? FZEnvironment::kSkyRows : y);
    const float* rgb = env.skyTable.data() + 3 * static_cast<std::size_t>(y + FZEnvironment::kSkyRows);
    for (int c = 0; c < 3; ++c)
        colour[c] = static_cast<float>(static_cast<double>(rgb[c]) * ray.weight);
}

#endif
