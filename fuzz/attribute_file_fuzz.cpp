// Fuzz target for the attribute file reader. Any input must load or be
// refused without crashing, leaking or reading out of bounds; a refused file
// must leave the record alone, and a loaded one must save and load back to
// the very same record.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "material/attribute_file.h"

namespace {

bool SameBytes(const FZAttributeEx& a, const FZAttributeEx& b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

// Saves record as a version 10 file in memory and loads it again.
void CheckRoundTrip(const FZAttributeEx& record)
{
    char* buffer = nullptr;
    std::size_t size = 0;
    std::FILE* out = ::open_memstream(&buffer, &size);
    if (out == nullptr)
        return;
    const bool written = WriteFileHeader(out, kAttributeFileHeader) == FZResult::Ok
                         && Write(out, record, kAttributeFileHeader.currentVersion) == FZResult::Ok;
    std::fclose(out);
    FZAttributeEx again;
    int version = -1;
    if (!written || LoadAttributeBytes(buffer, size, again, &version) != FZResult::Ok || version != 10
        || !SameBytes(again, record))
        std::abort();
    std::free(buffer);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FZAttributeEx record;
    const FZAttributeEx untouched;
    int version = -1;
    if (LoadAttributeBytes(data, size, record, &version) != FZResult::Ok) {
        if (!SameBytes(record, untouched) || version != -1)
            std::abort();
        return 0;
    }
    if (version < 0 || version > 10)
        std::abort();
    CheckRoundTrip(record);
    return 0;
}
