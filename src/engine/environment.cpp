#include "engine/environment.h"

#include <new>

void FZRampSegment::Setup(const float rgb[3], float segStart, float segEnd, float fadeInWidth,
                          float fadeOutWidth)
{
    if (segStart >= segEnd)
        return;
    for (int c = 0; c < 3; ++c)
        color[c] = rgb[c];
    start = segStart;
    end = segEnd;
    fadeIn = fadeInWidth;
    fadeOut = fadeOutWidth;
    if (fadeIn > 0.0f)
        fadeInCurve.Setup(start, 0.0f, static_cast<float>(static_cast<double>(start) + fadeIn), 1.0f);
    if (fadeOut > 0.0f)
        fadeOutCurve.Setup(static_cast<float>(static_cast<double>(end) - fadeOut), 1.0f, end, 0.0f);
}

bool FZRampSegment::Weight(double t, double& weight, double weighted[3]) const
{
    if (t < start || t > end)
        return false;
    if (t < static_cast<double>(start) + fadeIn)
        weight = fadeInCurve.Evaluate(t);
    else if (t <= static_cast<double>(end) - fadeOut)
        weight = 1.0;
    else
        weight = fadeOutCurve.Evaluate(t);
    for (int c = 0; c < 3; ++c)
        weighted[c] = color[c] * weight;
    return true;
}

FZResult FZColorRamp::Allocate(std::int32_t count)
{
    delete[] segments;
    segments = nullptr;
    segmentCount = 0;
    if (count <= 0)
        return FZResult::Ok;
    segments = new (std::nothrow) FZRampSegment[static_cast<std::size_t>(count)];
    if (segments == nullptr)
        return FZResult::OutOfMemory;
    segmentCount = count;
    return FZResult::Ok;
}

void FZColorRamp::Evaluate(double t, float out[3]) const
{
    out[0] = out[1] = out[2] = 0.0f;
    if (segmentCount < 1)
        return;
    const FZRampSegment* pick = nullptr;
    if (t <= tMin)
        pick = &segments[0];
    else if (t >= tMax)
        pick = &segments[segmentCount - 1];
    if (pick != nullptr) {
        for (int c = 0; c < 3; ++c)
            out[c] = pick->color[c];
    } else {
        double sum[3] = {0.0, 0.0, 0.0};
        double total = 0.0;
        for (int i = 0; i < segmentCount; ++i) {
            double w = 0.0;
            double weighted[3];
            if (!segments[i].Weight(t, w, weighted))
                continue;
            total += w;
            for (int c = 0; c < 3; ++c)
                sum[c] += weighted[c];
        }
        if (total > 0.0)
            for (int c = 0; c < 3; ++c)
                sum[c] /= total;
        for (int c = 0; c < 3; ++c)
            out[c] = static_cast<float>(sum[c]);
    }
    for (int c = 0; c < 3; ++c)
        if (out[c] > 1.0f)
            out[c] = 1.0f;
}

void FZEnvironment::Release()
{
    delete ramp;
    ramp = nullptr;
    rampBuilt = 0;
}

FZResult BuildSkyRamp(FZEnvironment& env)
{
    delete env.ramp;
    env.ramp = new (std::nothrow) FZColorRamp;
    if (env.ramp == nullptr || env.ramp->Allocate(2) != FZResult::Ok) {
        env.Release();
        return FZResult::OutOfMemory;
    }
    const double p = env.horizon;
    const double q = env.blend;
    const float a = static_cast<float>(p - (p + 1.0) * q);
    const float b = static_cast<float>(p + (1.0 - p) * q);
    const float w = static_cast<float>(static_cast<double>(b) - a);
    env.ramp->segments[0].Setup(env.lower, -1.0f, b, 0.0f, w);
    env.ramp->segments[1].Setup(env.upper, a, 1.0f, w, 0.0f);
    env.ramp->tMin = -1.0f;
    env.ramp->tMax = 1.0f;
    return FZResult::Ok;
}

FZResult LookupEnvironment(FZEnvironment& env, const FZRay& ray, float colour[3])
{
    if (env.mode == 1 && !env.rampBuilt) {
        if (BuildSkyRamp(env) != FZResult::Ok)
            return FZResult::OutOfMemory;
        env.rampBuilt = 1;
    }
    colour[0] = colour[1] = colour[2] = 0.0f;
    if (env.mode == 0 || env.ramp == nullptr)
        return FZResult::Ok;
    const double t = ray.direction.Elevation(1);
    env.ramp->Evaluate(t, colour);
    for (int c = 0; c < 3; ++c)
        colour[c] = static_cast<float>(static_cast<double>(colour[c]) * ray.weight);
    return FZResult::Ok;
}
