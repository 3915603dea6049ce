// Replacing a file on disk without ever losing the one it replaces.
//
// Every file Tamerisk writes (attribute files, images of tamerisk-render, the
// settings file) goes through ReplaceFile: the bytes are written to a new
// file beside the target, every write is checked to its last byte, the new
// file is flushed to disk and only then renamed over the target. On any
// failure the target is untouched and the new file is removed, so a full
// disk or a failing device leaves the old file as it was, never an empty or
// half-written one.
//
// The new file takes over what the old one had besides its bytes: the
// permission bits, the owner and group (as far as the user may give them),
// and the extended attributes, access control lists included. It is created
// readable by its owner alone, so that nobody else can read it before it has
// its final mode. A file with other hard links is written in place instead,
// since renaming over it would split it from its other names; that write is
// read back to check it.
//
// Paths are bytes: a name need not be UTF-8, and a name as long as the file
// system allows can be saved (the new file's name is cut to fit beside it).
// A new file left behind by a process that was killed while writing is
// removed at the next write to the same name.
#ifndef TAMERISK_MATERIAL_FILE_REPLACE_H
#define TAMERISK_MATERIAL_FILE_REPLACE_H

#include <cstddef>
#include <string>
#include <vector>

#include "material/result_codes.h"

// Ok, or why not: the result and the system's reason in words ("No space
// left on device").
struct FileWriteResult {
    FZResult code = FZResult::Ok;
    std::string reason;

    bool Ok() const { return code == FZResult::Ok; }
};

// Writes size bytes as the whole content of path, following a symbolic link
// to the file it names. Refused with -5, and nothing written: a file that
// exists and that the user may not write (by its permission bits, even for
// root, as an editor would refuse it), a directory, a device, FIFO or
// socket, and a symbolic link that leads nowhere or round in a loop. -5 as
// well when no file can be created beside the target, -7 when writing,
// flushing, renaming or checking fails.
[[nodiscard]] FileWriteResult ReplaceFile(const char* path, const void* data, std::size_t size);

// Writes size bytes as the whole content of the file at path itself: the
// same file, which another process may hold open, truncated to the new
// size. For a file that another program hands out to be filled, such as a
// thumbnail service's output, which must not be replaced by another file.
// A missing file is created as ReplaceFile creates it. Refuses what
// ReplaceFile refuses.
[[nodiscard]] FileWriteResult WriteFileInPlace(const char* path, const void* data, std::size_t size);

struct FileBatchFailure {
    std::string path;  // as given to FileBatch::Add
    FileWriteResult result;
};

// Many files replaced at once, as ReplaceFile replaces one, with the disk
// waited for about once for them all instead of twice a file: every new
// file is written first, then all are flushed together, and only then is
// each renamed over its target. A target is never half-written and stays as
// it was until its new file is complete on disk.
class FileBatch {
public:
    FileBatch() = default;
    // Files added and not committed are removed; their targets stay.
    ~FileBatch();
    FileBatch(const FileBatch&) = delete;
    FileBatch& operator=(const FileBatch&) = delete;

    // Checks the target as ReplaceFile does and writes the bytes to a new
    // file beside it, which replaces the target at the next Commit. A target
    // with other hard links is written in place at once. Each waiting file
    // holds a descriptor open: commit every few dozen files.
    [[nodiscard]] FileWriteResult Add(const char* path, const void* data, std::size_t size);
    // The files added since the last Commit.
    std::size_t Pending() const { return waiting.size(); }
    // Flushes the waiting files, renames each over its target and flushes
    // their directories; the files that failed, with their reasons.
    [[nodiscard]] std::vector<FileBatchFailure> Commit();

    // One file between Add and Commit.
    struct Waiting {
        int fd = -1;
        std::string temp;    // the new file
        std::string target;  // the file it replaces
        std::string dir;     // the directory of both
        std::string path;    // as given to Add
    };

private:
    std::vector<Waiting> waiting;
};

#endif
