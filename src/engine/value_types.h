// The engine's small value types: FZColor and FZPackedVector (declared with
// the material record, which embeds them), FZRect, the separable tent
// filter, and FZSmoothStep.
//
// Arithmetic: double-precision intermediates, single-precision floats stored,
// every float-to-integer conversion truncated toward zero (FZTruncate).
#ifndef TAMERISK_ENGINE_VALUE_TYPES_H
#define TAMERISK_ENGINE_VALUE_TYPES_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include <tamerisk/attribute.h>

#include "material/result_codes.h"

// An inclusive integer rectangle; row numbering as in the image it refers to
// (row 0 at the bottom). Empty when x0 > x1 or y0 > y1.
struct FZRect {
    std::int32_t x0 = 0x10000;
    std::int32_t y0 = 0x10000;
    std::int32_t x1 = -1;
    std::int32_t y1 = -1;

    FZRect() = default;
    FZRect(std::int32_t ax0, std::int32_t ay0, std::int32_t ax1, std::int32_t ay1)
        : x0(ax0), y0(ay0), x1(ax1), y1(ay1) {}

    // x1 - x0 + 1 and y1 - y0 + 1 (computed in 64 bits, so the empty marker
    // gives -65536 without overflow).
    void GetSize(std::int32_t& w, std::int32_t& h) const
    {
        w = static_cast<std::int32_t>(std::int64_t{x1} - x0 + 1);
        h = static_cast<std::int32_t>(std::int64_t{y1} - y0 + 1);
    }
    bool IsEmpty() const { return x0 > x1 || y0 > y1; }

    // Clips to the bounds. Returns false as soon as the x range is empty
    // (the y values then stay as they were), else whether y0 <= y1.
    bool ClipTo(std::int32_t bx0, std::int32_t by0, std::int32_t bx1, std::int32_t by1);
    bool Intersect(const FZRect& other) { return ClipTo(other.x0, other.y0, other.x1, other.y1); }
};

// The separable tent filter of the given size (half = size / 2, at least
// 1; 2 * half + 1 taps), for passes that filter a raster a row or a column
// at a time. Taps outside the raster are dropped and not renormalised, so
// values near the border darken. std::bad_alloc when its weights cannot be
// had.
class FZTentFilter {
public:
    explicit FZTentFilter(int size);

    int Half() const { return half; }
    // The weight of the value `offset` positions after the first tap.
    float Weight(int offset) const { return weight[static_cast<std::size_t>(offset)]; }
    // The tap sum at position centre of count values stride floats apart,
    // in double, in position order; values of 0, and positions flagged in
    // zero (when given), are left out (they cannot change the sum).
    float Sum(const float* values, std::size_t stride, int centre, int count, const char* zero = nullptr) const;

private:
    int half = 1;
    std::vector<float> weight;
};

// A cubic ease from (x0, y0) to (x1, y1); not clamped outside that span.
struct FZSmoothStep {
    float a = 0.0f;
    float b = 0.0f;
    float x0 = 0.0f;
    float y0 = 0.0f;
    float invWidth = 0.0f;

    void Setup(float ax0, float ay0, float ax1, float ay1);
    // t stays in double; only its square and cube are rounded to float.
    // Inline, so that loops over many points can run as vector code.
    double Evaluate(double x) const
    {
        const double t = (x - x0) * invWidth;
        const float t2 = static_cast<float>(t * t);
        const float t3 = static_cast<float>(t * t * t);
        return static_cast<double>(a) * t3 + static_cast<double>(b) * t2 + y0;
    }
};

#endif
