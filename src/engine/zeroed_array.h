// FZZeroedArray: the storage of per-pixel data (rasters and images), n
// values that start as all zero bytes.
//
// A preview frame's buffers are large and every one of them starts zeroed,
// yet most are then written in full by the pass that fills them. Large
// blocks are therefore mapped straight from the system, whose fresh pages
// are already zero, instead of being cleared again byte by byte; and they
// ask for huge pages, so that a 1024 x 1024 scene faults its memory in a few
// dozen times instead of some ten thousand (each fault costs microseconds,
// more on a virtual machine). Small blocks come from the ordinary heap.
#ifndef TAMERISK_ENGINE_ZEROED_ARRAY_H
#define TAMERISK_ENGINE_ZEROED_ARRAY_H

#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

// Gives a zeroed block back to where it came from.
struct FZZeroedRelease {
    std::size_t mapped = 0;  // bytes mapped from the system; 0 for the heap
    void operator()(void* p) const;
};

// Untyped zeroed bytes; std::bad_alloc when they cannot be had.
class FZZeroedBlock {
public:
    FZZeroedBlock() = default;
    explicit FZZeroedBlock(std::size_t bytes);

    void* Data() const { return memory.get(); }

private:
    std::unique_ptr<void, FZZeroedRelease> memory;
};

template <typename T>
class FZZeroedArray {
    // Zero bytes must be a value of T, and copying its bytes a copy.
    static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);

public:
    FZZeroedArray() = default;
    // n zero values.
    explicit FZZeroedArray(std::size_t n) : block(Bytes(n)), count(n) {}
    FZZeroedArray(const FZZeroedArray& other) : FZZeroedArray(other.count)
    {
        if (count != 0)
            std::memcpy(data(), other.data(), count * sizeof(T));
    }
    FZZeroedArray& operator=(const FZZeroedArray& other)
    {
        if (&other != this)
            *this = FZZeroedArray(other);
        return *this;
    }
    // The moved-from array is empty.
    FZZeroedArray(FZZeroedArray&& other) noexcept
        : block(std::move(other.block)), count(std::exchange(other.count, 0))
    {
    }
    FZZeroedArray& operator=(FZZeroedArray&& other) noexcept
    {
        block = std::move(other.block);
        count = std::exchange(other.count, 0);
        return *this;
    }

    T* data() { return static_cast<T*>(block.Data()); }
    const T* data() const { return static_cast<const T*>(block.Data()); }
    std::size_t size() const { return count; }
    bool empty() const { return count == 0; }

private:
    static std::size_t Bytes(std::size_t n)
    {
        if (n > static_cast<std::size_t>(-1) / sizeof(T))
            throw std::bad_alloc();
        return n * sizeof(T);
    }

    FZZeroedBlock block;
    std::size_t count = 0;
};

#endif
