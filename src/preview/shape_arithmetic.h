// The float arithmetic the sample shapes share: each step in double,
// stored as a float.
#ifndef TAMERISK_PREVIEW_SHAPE_ARITHMETIC_H
#define TAMERISK_PREVIEW_SHAPE_ARITHMETIC_H

#include <cmath>
#include <initializer_list>

namespace fz_shapes {

inline float Sum(float p, float q) { return static_cast<float>(static_cast<double>(p) + q); }
inline float Difference(float p, float q) { return static_cast<float>(static_cast<double>(p) - q); }
inline float Product(float p, float q) { return static_cast<float>(static_cast<double>(p) * q); }

// The room a reach leaves for rounding: relative to the radius, and in
// pixels. The tests round to float, some parts in a hundred million.
inline constexpr double kRelativeRoom = 1e-4;
inline constexpr double kRoom = 0.01;

inline bool Finite(std::initializer_list<double> values)
{
    for (const double v : values)
        if (!std::isfinite(v))
            return false;
    return true;
}

// Half the chord at distance dy from the centre of a circle of the given
// radius, or -1 where the row misses the circle.
inline double HalfChord(double radius, double dy)
{
    return radius > std::fabs(dy) ? std::sqrt(radius * radius - dy * dy) : -1.0;
}

} // namespace fz_shapes

#endif
