#include "engine/scratch.h"

#include <new>
#include <stdexcept>
#include <utility>

namespace {

constexpr std::size_t kKeepFloats = std::size_t{1024} * 1024;

struct Slots {
    std::vector<float> spare[static_cast<int>(FZScratchSlot::Count)];
    bool lent[static_cast<int>(FZScratchSlot::Count)] = {};
};

thread_local Slots slots;

} // namespace

FZScratchFloats::FZScratchFloats(FZScratchSlot s) : slot(s)
{
    const int i = static_cast<int>(slot);
    if (!slots.lent[i]) {
        buffer = std::move(slots.spare[i]);
        slots.spare[i] = std::vector<float>();
        slots.lent[i] = true;
    } else {
        slot = FZScratchSlot::Count;  // a buffer of its own, not given back
    }
}

FZScratchFloats::~FZScratchFloats()
{
    if (slot == FZScratchSlot::Count)
        return;
    const int i = static_cast<int>(slot);
    slots.lent[i] = false;
    if (buffer.capacity() <= kKeepFloats)
        slots.spare[i] = std::move(buffer);
}

bool FZScratchFloats::Assign(std::size_t n)
{
    try {
        buffer.assign(n, 0.0f);
    } catch (const std::bad_alloc&) {
        return false;
    } catch (const std::length_error&) {
        return false;
    }
    return true;
}
