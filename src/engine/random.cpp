#include "engine/random.h"

#include <ctime>
#include <mutex>
#include <random>

namespace {

// std::mt19937 is the published mt19937ar generator, and its one-value
// constructor is the published init_genrand seeding.
std::mt19937& State()
{
    static std::mt19937 state(5489u);
    return state;
}

// The editor draws random colours on its window's thread while the large
// preview may shade grooves on its own; each draw or seeding is whole.
std::mutex& StateMutex()
{
    static std::mutex mutex;
    return mutex;
}

std::optional<std::uint32_t>& FixedSeedSlot()
{
    static std::optional<std::uint32_t> seed;
    return seed;
}

} // namespace

FZRandom::FZRandom()
{
    if (const auto fixed = FixedSeedSlot())
        Seed(*fixed);
    else
        Seed(static_cast<std::uint32_t>(std::time(nullptr)));
}

std::uint32_t FZRandom::Next()
{
    const std::lock_guard<std::mutex> lock(StateMutex());
    return static_cast<std::uint32_t>(State()());
}

double FZRandom::Uniform()
{
    return Next() * (1.0 / 4294967296.0);
}

double FZRandom::Between(double a, double b)
{
    return a + (b - a) * Uniform();
}

void FZRandom::Seed(std::uint32_t seed)
{
    const std::lock_guard<std::mutex> lock(StateMutex());
    State().seed(seed);
}

void FZRandom::SetFixedSeed(std::optional<std::uint32_t> seed)
{
    FixedSeedSlot() = seed;
}
