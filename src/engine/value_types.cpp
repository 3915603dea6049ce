#include "engine/value_types.h"

#include <cmath>
#include <cstdlib>
#include <new>
#include <stdexcept>
#include <vector>

#include "engine/fz_math.h"
#include "engine/parallel.h"
#include "engine/scratch.h"

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

namespace {

// One tap sum of the tent filter: the values at positions centre - half to
// centre + half (those inside 0 .. count - 1), stride floats apart, each
// times its weight, summed in double in position order.
//
// The sum leaves out values of 0, which cannot change the sum: it
// starts at +0, never becomes -0, and adding a zero product to any other
// value gives that value back.
// Positions flagged in `zero` hold 0 and are left out the same way.
float TentSum(const float* values, std::size_t stride, int centre, int count, const std::vector<float>& weight,
              int half, const char* zero = nullptr)
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
        acc += static_cast<double>(v) * weight[i - (centre - half)];
    }
    return static_cast<float>(acc);
}

bool AllZero(const float* values, int count)
{
    for (int i = 0; i < count; ++i)
        if (values[i] != 0.0f)
            return false;
    return true;
}

// The same sums in two passes of independent rows, for the pool: every
// value filtered across into the work grid, then every value down from it.
// Rows of zeros (most rows of an emission lattice) filter across to zeros
// and are left out of the sums down.
void FilterRows(FZFloatGrid& grid, std::vector<float>& across, std::vector<char>& zero,
                const std::vector<float>& weight, int half)
{
    const std::size_t w = static_cast<std::size_t>(grid.width);
    ParallelRows(0, grid.height, [&](int r) {
        float* out = &across[r * w];
        zero[r] = AllZero(grid.rows[r], grid.width) ? 1 : 0;
        for (int c = 0; c < grid.width; ++c)
            out[c] = zero[r] != 0 ? 0.0f : TentSum(grid.rows[r], 1, c, grid.width, weight, half);
    });
    ParallelRows(0, grid.height, [&](int r) {
        for (int c = 0; c < grid.width; ++c)
            grid.rows[r][c] = TentSum(&across[c], w, r, grid.height, weight, half, zero.data());
    });
}

} // namespace

FZResult FilterSeparable(FZFloatGrid& grid, int size)
{
    if (grid.width < 1 || grid.height < 1 || grid.rows == nullptr)
        return FZResult::Ok;
    int half = size / 2;
    if (half < 1)
        half = 1;
    const int taps = 2 * half + 1;

    std::vector<float> weight;
    FZScratchFloats work(FZScratchSlot::FilterWork);
    std::vector<float>& copy = work.Vector();
    std::vector<char> zero;
    if (!work.Assign(static_cast<std::size_t>(grid.width) * static_cast<std::size_t>(grid.height)))
        return FZResult::OutOfMemory;
    try {
        weight.resize(static_cast<std::size_t>(taps));
        zero.resize(static_cast<std::size_t>(grid.height));
    } catch (const std::bad_alloc&) {
        return FZResult::OutOfMemory;
    } catch (const std::length_error&) {  // a size no allocator could serve
        return FZResult::OutOfMemory;
    }

    double sum = 0.0;
    for (int i = 0; i < taps; ++i) {
        weight[i] = static_cast<float>(1.0 - std::abs(i - half) / static_cast<double>(half));
        sum += weight[i];
    }
    for (int i = 0; i < taps; ++i)
        weight[i] = static_cast<float>(weight[i] / sum);

    FilterRows(grid, copy, zero, weight, half);
    return FZResult::Ok;
}

void FZSmoothStep::Setup(float ax0, float ay0, float ax1, float ay1)
{
    a = static_cast<float>(2.0 * (static_cast<double>(ay0) - ay1));
    b = static_cast<float>(3.0 * (static_cast<double>(ay1) - ay0));
    x0 = ax0;
    y0 = ay0;
    invWidth = ax1 == ax0 ? 0.0f : static_cast<float>(1.0 / (static_cast<double>(ax1) - ax0));
}
