// The settings file's text and its safe reading and updating.
//
// A settings file holds "[Section]" lines and "Key=Value" lines, as the
// private-profile files of desktop programs do. It is held here as bytes,
// line by line, so that whatever this program does not know (other
// sections and keys, comments, bytes that are not UTF-8, the file's line
// ends) is written back exactly as it was read. Section and key names
// compare without regard to ASCII case.
//
// Several hosts may run at once and share the file; each update reads the
// file and replaces it while holding a lock on it, so that no host loses
// another's change. A file that is too large or not text is refused, never
// read whole, and never overwritten.
#ifndef TAMERISK_MATERIAL_PROFILE_FILE_H
#define TAMERISK_MATERIAL_PROFILE_FILE_H

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "material/file_replace.h"

class ProfileText {
public:
    ProfileText() = default;
    explicit ProfileText(std::string_view bytes);

    // The text after the key's '=' (the first key of that name in the first
    // section of that name); nothing when the key is missing.
    std::optional<std::string> Value(std::string_view section, std::string_view key) const;
    // Sets the key: in place, else at the end of its section, which is added
    // at the end of the text when missing. Every other byte stays.
    void Set(std::string_view section, std::string_view key, std::string_view value);

    std::string Bytes() const;

private:
    // The line of the key (-1 when missing), and where a new key of its
    // section would go (-1 when the section is missing).
    struct Place {
        std::ptrdiff_t line = -1;
        std::ptrdiff_t sectionEnd = -1;
    };
    Place Find(std::string_view section, std::string_view key) const;
    std::string LineEnd() const;
    void EndLastLine();

    std::vector<std::string> lines_;  // each with its line end; the last may have none
};

// Reads an integer as private-profile readers do: leading blanks, an
// optional sign, then decimal digits up to the first other character. Text
// without digits reads as 0; values beyond the int range saturate.
int ProfileInt(std::string_view text);

// No settings file is anywhere near this; a larger one is refused.
inline constexpr std::size_t kMaxProfileBytes = std::size_t{1} << 20;

// Reads the file at path into text; a missing file reads as empty. Refused,
// with text left empty and the reason: a file that is not a regular file
// (-5), is larger than kMaxProfileBytes (-10; not read at all), or holds a
// NUL byte and so is no text (-8).
[[nodiscard]] FileWriteResult ReadProfileFile(const char* path, ProfileText& text);

// Reads the file, lets update change its text and replaces the file with
// the result (material/file_replace.h), all under an exclusive lock on the
// file, which other hosts' updates wait for. A file that ReadProfileFile
// refuses is left as it is and the update is refused with its reason.
[[nodiscard]] FileWriteResult UpdateProfileFile(const char* path, const std::function<void(ProfileText&)>& update);

#endif
