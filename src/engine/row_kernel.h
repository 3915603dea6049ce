// TAMERISK_ROW_KERNEL marks a function whose loop GCC turns into vector
// code: it is built in a plain form and in vector forms, and the one the
// processor can run is chosen when the program starts. Every lane does the
// plain form's float and double operations, so all forms give the same
// bytes. Such loops have no branches (both alternatives are computed, then
// one is taken), so that they can run as vector code. A build with
// TAMERISK_PLAIN_KERNELS (cmake -DTAMERISK_KERNEL_CLONES=OFF, and every
// ThreadSanitizer build) has the plain form alone.
#ifndef TAMERISK_ENGINE_ROW_KERNEL_H
#define TAMERISK_ENGINE_ROW_KERNEL_H

#include <cstdint>

#include <tamerisk/attribute.h>

#if defined(__GNUC__) && !defined(__clang__) && (defined(__x86_64__) || defined(__i386__)) && \
    !defined(TAMERISK_PLAIN_KERNELS)
#define TAMERISK_ROW_KERNEL __attribute__((target_clones("avx512f", "avx2", "default")))
#else
#define TAMERISK_ROW_KERNEL
#endif

// Kernels that mix float and double arithmetic hold every float in a
// double lane and round it to float after each operation (FZAsFloat, which
// is exact float arithmetic), and the loop keeps one lane width, which GCC
// vectorises where a mix of widths defeats it.

// The colour rule's store of a channel (engine/pixel.h) in a lane: held at
// most 1, then v x 255 truncated toward zero, NaN as 0, held within 0 to 255
// (holding first and truncating then gives the same integer).
inline std::int32_t FZByteOfLane(double v)
{
    v = v > 1.0 ? 1.0 : v;
    double t = v * 255.0;
    t = t == t ? t : 0.0;
    t = t < 0.0 ? 0.0 : t;
    t = t > 255.0 ? 255.0 : t;
    return static_cast<std::int32_t>(t);
}

// FZPackedVector's packing of a float in a lane: v x 30000, NaN as 0, held
// within the int16 range, then truncated (holding first and truncating
// then gives the same integer). A lane that goes on in doubles truncates
// the held value with std::trunc.
inline double FZHeldPackingOfLane(double v)
{
    double t = v * 30000.0;
    t = t == t ? t : 0.0;
    t = t < -32768.0 ? -32768.0 : t;
    return t > 32767.0 ? 32767.0 : t;
}

inline std::int32_t FZPackedOfLane(double v)
{
    return static_cast<std::int32_t>(FZHeldPackingOfLane(v));
}

#endif
