// Replacing a file on disk without ever losing the one it replaces.
//
// Every file Tamerisk writes (attribute files, images of tamerisk-render, the
// settings file) goes through ReplaceFile: the bytes are written to a new
// file beside the target, every write is checked to its last byte, the new
// file is flushed to disk and only then renamed over the target. On any
// failure the target is untouched and the new file is removed, so a full
// disk or a failing device leaves the old file as it was, never an empty or
// half-written one.
#ifndef TAMERISK_MATERIAL_FILE_REPLACE_H
#define TAMERISK_MATERIAL_FILE_REPLACE_H

#include <cstddef>
#include <string>

#include "material/result_codes.h"

// Ok, or why not: the result and the system's reason in words ("No space
// left on device").
struct FileWriteResult {
    FZResult code = FZResult::Ok;
    std::string reason;

    bool Ok() const { return code == FZResult::Ok; }
};

// Writes size bytes as the whole content of path, following a symbolic link
// to the file it names. A file that exists and that the user may not write
// (by its permission bits, even for root, as an editor would refuse it) is
// refused with -5. The new file keeps the permission bits of the file it
// replaces. -5 when no file can be created beside the target, -7 when
// writing, flushing or renaming fails.
[[nodiscard]] FileWriteResult ReplaceFile(const char* path, const void* data, std::size_t size);

#endif
