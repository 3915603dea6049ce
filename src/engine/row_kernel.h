// TAMERISK_ROW_KERNEL marks a function whose loop GCC turns into vector
// code: it is built in a plain form and in vector forms, and the one the
// processor can run is chosen when the program starts. Every lane does the
// plain form's float and double operations, so all forms give the same
// bytes. Such loops have no branches (both alternatives are computed, then
// one is taken), so that they can run as vector code.
#ifndef TAMERISK_ENGINE_ROW_KERNEL_H
#define TAMERISK_ENGINE_ROW_KERNEL_H

#if defined(__GNUC__) && !defined(__clang__) && (defined(__x86_64__) || defined(__i386__))
#define TAMERISK_ROW_KERNEL __attribute__((target_clones("avx512f", "avx2", "default")))
#else
#define TAMERISK_ROW_KERNEL
#endif

// Kernels that mix float and double arithmetic hold every float in a
// double lane and round it to float after each operation: FZAsFloat(a op b)
// for floats a and b is exactly the float result of + - * / and square
// roots (double has more than twice float's precision plus two bits, so
// rounding twice cannot differ from rounding once), and the loop keeps one
// lane width, which GCC vectorises where a mix of widths defeats it.
inline double FZAsFloat(double v)
{
    return static_cast<double>(static_cast<float>(v));
}

#endif
