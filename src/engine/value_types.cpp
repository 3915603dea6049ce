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

int FilterSeparable(FZFloatGrid& grid, int size)
{
    if (grid.width < 1 || grid.height < 1 || grid.rows == nullptr)
        return 0;
    int half = size / 2;
    if (half < 1)
        half = 1;
    const int taps = 2 * half + 1;

    std::vector<float> weight;
    std::vector<float> copy;
    std::vector<float> column;
    try {
        weight.resize(static_cast<std::size_t>(taps));
        copy.resize(static_cast<std::size_t>(grid.width) * static_cast<std::size_t>(grid.height));
        column.resize(static_cast<std::size_t>(grid.height));
    } catch (const std::bad_alloc&) {
        return -2;
    } catch (const std::length_error&) {  // a size no allocator could serve
        return -2;
    }

    double sum = 0.0;
    for (int i = 0; i < taps; ++i) {
        weight[i] = static_cast<float>(1.0 - std::abs(i - half) / static_cast<double>(half));
        sum += weight[i];
    }
    for (int i = 0; i < taps; ++i)
        weight[i] = static_cast<float>(weight[i] / sum);

    const std::size_t w = static_cast<std::size_t>(grid.width);
    for (int r = 0; r < grid.height; ++r)
        for (int c = 0; c < grid.width; ++c)
            copy[r * w + c] = grid.rows[r][c];

    for (int c = 0; c < grid.width; ++c) {
        const int xa = FZMax(c - half, 0);
        const int xb = FZMin(c + half, grid.width - 1);
        for (int r = 0; r < grid.height; ++r) {
            double acc = 0.0;
            const float* row = &copy[r * w];
            for (int x = xa; x <= xb; ++x)
                acc += static_cast<double>(row[x]) * weight[x - (c - half)];
            column[r] = static_cast<float>(acc);
        }
        for (int r = 0; r < grid.height; ++r) {
            const int ya = FZMax(r - half, 0);
            const int yb = FZMin(r + half, grid.height - 1);
            double acc = 0.0;
            for (int y = ya; y <= yb; ++y)
                acc += static_cast<double>(column[y]) * weight[y - (r - half)];
            grid.rows[r][c] = static_cast<float>(acc);
        }
    }
    return 0;
}

void FZSmoothStep::Setup(float ax0, float ay0, float ax1, float ay1)
{
    a = static_cast<float>(2.0 * (static_cast<double>(ay0) - ay1));
    b = static_cast<float>(3.0 * (static_cast<double>(ay1) - ay0));
    x0 = ax0;
    y0 = ay0;
    invWidth = ax1 == ax0 ? 0.0f : static_cast<float>(1.0 / (static_cast<double>(ax1) - ax0));
}

// t stays in double; only its square and cube are rounded to float.
double FZSmoothStep::Evaluate(double x) const
{
    const double t = (x - x0) * invWidth;
    const float t2 = static_cast<float>(t * t);
    const float t3 = static_cast<float>(t * t * t);
    return static_cast<double>(a) * t3 + static_cast<double>(b) * t2 + y0;
}
