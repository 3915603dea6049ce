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

    // Stores nothing when start >= end. Builds the fade curves for the
    // widths that are greater than 0.
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
    std::int32_t mode = 1;            // 0 off, 1 sky gradient
    float lower[3] = {1.0f, 1.0f, 1.0f};
    float upper[3] = {0.2f, 0.6f, 1.0f};
    float horizon = 0.0f;             // p, in [-1, 1]
    float blend = 0.1f;               // q, width share of the horizon band
    std::int32_t rampBuilt = 0;
    FZColorRamp ramp;

    bool IsOn() const { return mode != 0; }
};

// Builds the two-segment sky ramp from the horizon and blend.
void BuildSkyRamp(FZEnvironment& env);

// The sky colour along the ray's direction times its weight. Builds the ramp
// on first use. Mode 0 gives black.
void LookupEnvironment(FZEnvironment& env, const FZRay& ray, float colour[3]);

#endif
