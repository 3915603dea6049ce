// The module's random numbers: one MT19937 state (the published mt19937ar
// generator with its published seeding by one 32-bit value) shared by the
// random colours and the groove noise.
//
// Constructing an FZRandom reseeds that shared state with the calendar time
// in whole seconds, or with the fixed seed when one is set (reproducible runs
// of the tools, and tests). Draws take one 32-bit output x and give
// x * 2^-32, in [0, 1).
#ifndef TAMERISK_ENGINE_RANDOM_H
#define TAMERISK_ENGINE_RANDOM_H

#include <cstdint>
#include <optional>

class FZRandom {
public:
    FZRandom();

    static std::uint32_t Next();
    static double Uniform();
    static double Between(double a, double b);

    static void Seed(std::uint32_t seed);

    // While a fixed seed is set, constructing an FZRandom seeds with it
    // instead of the time. std::nullopt goes back to the time.
    static void SetFixedSeed(std::optional<std::uint32_t> seed);
};

#endif
