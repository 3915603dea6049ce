// Work memory of the separable filter, kept from call to call. Freeing a
// raster and asking for it again at the next call makes the system hand
// the memory back and forth (and map fresh pages each time), which costs
// more than a small filter pass itself. Each thread keeps one buffer per
// slot; a buffer larger than a 1024 x 1024 raster of floats is not kept.
#ifndef TAMERISK_ENGINE_SCRATCH_H
#define TAMERISK_ENGINE_SCRATCH_H

#include <cstddef>
#include <vector>

enum class FZScratchSlot { FilterWork, Count };

// Borrows the calling thread's buffer of a slot for its lifetime. A slot
// already borrowed on this thread lends a buffer of its own.
class FZScratchFloats {
public:
    explicit FZScratchFloats(FZScratchSlot slot);
    ~FZScratchFloats();
    FZScratchFloats(const FZScratchFloats&) = delete;
    FZScratchFloats& operator=(const FZScratchFloats&) = delete;

    // n floats set to 0; false when the memory cannot be had.
    bool Assign(std::size_t n);
    float* Data() { return buffer.data(); }
    std::size_t Size() const { return buffer.size(); }
    float& operator[](std::size_t i) { return buffer[i]; }
    std::vector<float>& Vector() { return buffer; }

private:
    FZScratchSlot slot;
    std::vector<float> buffer;
};

#endif
