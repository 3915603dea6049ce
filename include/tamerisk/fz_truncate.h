// Float-to-integer conversion for the whole of Tamerisk.
//
// Every place where a floating-point value becomes an integer goes through
// FZTruncate: it truncates toward zero, as the renderer's arithmetic requires,
// and it gives a defined answer for values that a plain cast would turn into
// undefined behaviour (NaN, infinities, values beyond the int32 range). A host
// can hand in any bytes as a material; nothing downstream may crash on them.
#ifndef TAMERISK_FZ_TRUNCATE_H
#define TAMERISK_FZ_TRUNCATE_H

#include <cstdint>

// Truncates toward zero. NaN gives 0; values at or beyond the int32 range
// give INT32_MIN or INT32_MAX.
inline std::int32_t FZTruncate(double v)
{
    if (!(v == v))
        return 0;
    if (v >= 2147483647.0)
        return INT32_MAX;
    if (v <= -2147483648.0)
        return INT32_MIN;
    return static_cast<std::int32_t>(v);
}

// The low 8 bits of FZTruncate(v), as a byte (the colour rule of FZColor).
inline std::uint8_t FZTruncateLow8(double v)
{
    return static_cast<std::uint8_t>(static_cast<std::uint32_t>(FZTruncate(v)) & 0xFFu);
}

// FZTruncate held within [lo, hi].
inline std::int32_t FZTruncateClamped(double v, std::int32_t lo, std::int32_t hi)
{
    const std::int32_t t = FZTruncate(v);
    return t < lo ? lo : (t > hi ? hi : t);
}

#endif
