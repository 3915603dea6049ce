#include "engine/environment.h"

#include <new>

#include "engine/parallel.h"
#include "engine/render_watch.h"


void FZRampSegment::Setup(const float rgb[3], float segStart, float segEnd, float fadeInWidth,
                          float fadeOutWidth)
{
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

void FZColorRamp::Evaluate(double t, float out[3]) const
{
    const std::int32_t segmentCount = static_cast<std::int32_t>(segments.size());
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

FZEnvironment::FZEnvironment()
{
    const float lower[3] = {1.0f, 1.0f, 1.0f};
    const float upper[3] = {0.2f, 0.6f, 1.0f};
    // The horizon's elevation, and the share of each side the band around
    // it takes.
    const float horizon = 0.0f;
    const float band = 0.1f;
    const double p = horizon;
    const double q = band;
    ramp.segments.assign(2, FZRampSegment());
    const float a = static_cast<float>(p - (p + 1.0) * q);
    const float b = static_cast<float>(p + (1.0 - p) * q);
    const float w = static_cast<float>(static_cast<double>(b) - a);
    ramp.segments[0].Setup(lower, -1.0f, b, 0.0f, w);
    ramp.segments[1].Setup(upper, a, 1.0f, w, 0.0f);
    ramp.tMin = -1.0f;
    ramp.tMax = 1.0f;
}

void ReleaseSkyTable(FZEnvironment& env)
{
    std::vector<float>().swap(env.skyTable);
}

bool BuildSkyTable(FZEnvironment& env)
{
    if (!env.skyTable.empty())
        return true;
    constexpr std::int32_t rows = FZEnvironment::kSkyRows;
    try {
        env.skyTable.resize(3 * static_cast<std::size_t>(2 * rows + 1));
    } catch (const std::bad_alloc&) {
        env.skyTable.clear();
        return false;
    }
    // Blocks of entries go to the render threads as rows do.
    constexpr std::int32_t block = 512;
    const std::int32_t entries = 2 * rows + 1;
    float* table = env.skyTable.data();
    ParallelRows(0, (entries + block - 1) / block, [&env, table](std::int32_t b) {
        for (std::int32_t i = b * block; i < (b + 1) * block && i < entries; ++i) {
            FZPackedVector direction;
            direction.y = static_cast<std::int16_t>(i - rows);
            env.ramp.Evaluate(direction.Elevation(1), table + 3 * static_cast<std::size_t>(i));
        }
    });
    // A render stopped on the way skips blocks: such a table is no table.
    if (RenderStopRequested()) {
        env.skyTable.clear();
        return false;
    }
    return true;
}

void LookupEnvironment(const FZEnvironment& env, const FZRay& ray, float colour[3])
{
    env.ramp.Evaluate(ray.direction.Elevation(1), colour);
    for (int c = 0; c < 3; ++c)
        colour[c] = static_cast<float>(static_cast<double>(colour[c]) * ray.weight);
}
