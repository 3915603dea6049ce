// The rule of the colour arithmetic, stated once. A colour channel is a
// float; a byte b reads as b / 255, divided in double and rounded once to
// float; a float v stores as v x 255 in double, truncated toward zero and
// held within 0 to 255 (FZByteOfLane, engine/row_kernel.h), so that a
// negative or NaN channel from a wild record shows black. Images keep their
// bytes blue, green, red; the functions below take and give red, green,
// blue.
#ifndef TAMERISK_ENGINE_PIXEL_H
#define TAMERISK_ENGINE_PIXEL_H

#include <cstdint>

#include "engine/fz_math.h"
#include "engine/image.h"

namespace fz_pixel_detail {

// b / 255 for every byte, worked out by the compiler: a division costs a
// pixel more than the rest of its arithmetic, a table read next to nothing.
struct ByteTables {
    double ratio[256];
    float value[256];
};

constexpr ByteTables MakeByteTables()
{
    ByteTables t{};
    for (int b = 0; b < 256; ++b) {
        t.ratio[b] = b / 255.0;
        t.value[b] = static_cast<float>(t.ratio[b]);
    }
    return t;
}

inline constexpr ByteTables kByteTables = MakeByteTables();

} // namespace fz_pixel_detail

// b / 255 in double.
inline double FZByteRatio(std::uint8_t b)
{
    return fz_pixel_detail::kByteTables.ratio[b];
}

inline float FZByteToFloat(std::uint8_t b)
{
    return fz_pixel_detail::kByteTables.value[b];
}

// The three bytes of a pixel, blue, green, red.
inline void FZReadBytes(const std::uint8_t* p, float rgb[3])
{
    for (int c = 0; c < 3; ++c)
        rgb[c] = FZByteToFloat(p[2 - c]);
}

// Bytes red, green, blue stored blue, green, red.
inline void FZStoreByteTriple(std::uint8_t* p, std::int32_t red, std::int32_t green, std::int32_t blue)
{
    p[0] = static_cast<std::uint8_t>(blue);
    p[1] = static_cast<std::uint8_t>(green);
    p[2] = static_cast<std::uint8_t>(red);
}

#endif
