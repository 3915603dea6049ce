#include "engine/support/failing_allocations.h"

#include <cstddef>
#include <new>

namespace {

bool armed = false;
long remaining = 0;
long refused = 0;

bool Refuse()
{
    if (!armed)
        return false;
    if (remaining > 0) {
        --remaining;
        return false;
    }
    ++refused;
    return true;
}

}  // namespace

FailingAllocations::FailingAllocations(long successes)
{
    armed = true;
    remaining = successes;
    refused = 0;
}

FailingAllocations::~FailingAllocations() { armed = false; }

long FailingAllocations::Refused() const { return refused; }

// The replacements forward to the ordinary throwing forms, so memory they
// hand out is released by the ordinary delete and delete[].
void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    if (Refuse())
        return nullptr;
    try {
        return ::operator new(size);
    } catch (...) {
        return nullptr;
    }
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept
{
    if (Refuse())
        return nullptr;
    try {
        return ::operator new[](size);
    } catch (...) {
        return nullptr;
    }
}
