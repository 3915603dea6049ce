#include "engine/value_types.h"

#include <cmath>
#include <cstdlib>
#include <new>
#include <stdexcept>
#include <vector>

#include "engine/fz_math.h"

bool FZRect::ClipTo(std::int32_t bx0, std::int32_t by0, std::int32_t bx1, std::int32_t by1)
{
    x0 = FZMax(x0, bx0);
    x1 = FZMin(x1, bx1);
    if (x0 > x1)
        return false;
    y0 = FZMax(y0, by0);
    y1 = FZMin(y1, by1);
    return y0 <= y1;
}

FZTentFilter::FZTentFilter(int size) : half(size / 2 < 1 ? 1 : size / 2), weight(static_cast<std::size_t>(2 * half + 1))
{
    const int taps = 2 * half + 1;
    double sum = 0.0;
    for (int i = 0; i < taps; ++i) {
        weight[i] = static_cast<float>(1.0 - std::abs(i - half) / static_cast<double>(half));
        sum += weight[i];
    }
    for (int i = 0; i < taps; ++i)
        weight[i] = static_cast<float>(weight[i] / sum);
}

// The sum leaves out values of 0, which cannot change the sum: it starts
// at +0, never becomes -0, and adding a zero product to any other value
// gives that value back.
float FZTentFilter::Sum(const float* values, std::size_t stride, int centre, int count, const char* zero) const
{
    const int a = FZMax(centre - half, 0);
    const int b = FZMin(centre + half, count - 1);
    double acc = 0.0;
    for (int i = a; i <= b; ++i) {
        if (zero != nullptr && zero[i] != 0)
            continue;
        const float v = values[static_cast<std::size_t>(i) * stride];
        if (v == 0.0f)
            continue;
        acc += static_cast<double>(v) * weight[static_cast<std::size_t>(i - (centre - half))];
    }
    return static_cast<float>(acc);
}

void FZSmoothStep::Setup(float ax0, float ay0, float ax1, float ay1)
{
    a = static_cast<float>(2.0 * (static_cast<double>(ay0) - ay1));
    b = static_cast<float>(3.0 * (static_cast<double>(ay1) - ay0));
    x0 = ax0;
    y0 = ay0;
    invWidth = ax1 == ax0 ? 0.0f : static_cast<float>(1.0 / (static_cast<double>(ax1) - ax0));
}
