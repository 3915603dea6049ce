// Fuzz target for the settings file's text. Any bytes must read without
// crashing or reading out of bounds; setting keys must leave them readable
// with the values set, and every other key as it was.
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

#include "material/profile_file.h"

namespace {

struct Key {
    const char* section;
    const char* name;
};

// The keys Tamerisk writes, and some it only keeps.
constexpr Key kSet[] = {{"Window", "Top"}, {"Window", "Left"}, {"LargePreview", "Width"}};
constexpr Key kKept[] = {{"Window", "Display"}, {"LargePreview", "Height"}, {"Other", "Name"}, {"", "Top"}};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    ProfileText text(bytes);
    if (text.Bytes() != bytes)
        std::abort();
    std::optional<std::string> kept[std::size(kKept)];
    for (std::size_t i = 0; i < std::size(kKept); ++i) {
        kept[i] = text.Value(kKept[i].section, kKept[i].name);
        if (kept[i])
            (void)ProfileInt(*kept[i]);
    }
    for (const Key& key : kSet)
        text.Set(key.section, key.name, "-123");
    const ProfileText reread(text.Bytes());
    for (const Key& key : kSet) {
        const std::optional<std::string> value = reread.Value(key.section, key.name);
        if (!value || ProfileInt(*value) != -123)
            std::abort();
    }
    for (std::size_t i = 0; i < std::size(kKept); ++i) {
        if (reread.Value(kKept[i].section, kKept[i].name) != kept[i])
            std::abort();
    }
    return 0;
}
