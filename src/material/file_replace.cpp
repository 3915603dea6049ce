#include "material/file_replace.h"

#include "material/bounded_read.h"

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <vector>

namespace {

FileWriteResult Failure(FZResult code, int error)
{
    return {code, std::strerror(error)};
}

FileWriteResult Refusal(std::string reason)
{
    return {FZResult::OpenFailed, std::move(reason)};
}

// The file a save writes: the path itself, or the file its symbolic link
// names, and what it is now when it exists.
struct Target {
    std::string path;
    bool exists = false;
    struct stat st = {};
};

struct FreeDeleter {
    void operator()(char* p) const { std::free(p); }
};

// Saving through a symbolic link updates the file it names instead of
// replacing the link. A link that leads nowhere is refused rather than
// turned into a file of its own name: the user meant the file it named.
FileWriteResult FindTarget(const char* path, Target& target)
{
    target.path = path;
    struct stat entry;
    if (::lstat(path, &entry) != 0)
        return errno == ENOENT ? FileWriteResult{} : Failure(FZResult::OpenFailed, errno);
    if (S_ISLNK(entry.st_mode)) {
        const std::unique_ptr<char, FreeDeleter> resolved(::realpath(path, nullptr));
        if (!resolved) {
            if (errno == ENOENT)
                return Refusal("the symbolic link leads to no file");
            return Failure(FZResult::OpenFailed, errno);
        }
        target.path = resolved.get();
        if (::stat(target.path.c_str(), &entry) != 0)
            return Failure(FZResult::OpenFailed, errno);
    }
    target.exists = true;
    target.st = entry;
    return {};
}

const char* KindOfSpecialFile(mode_t mode)
{
    if (S_ISCHR(mode))
        return "a character device";
    if (S_ISBLK(mode))
        return "a block device";
    if (S_ISFIFO(mode))
        return "a FIFO";
    if (S_ISSOCK(mode))
        return "a socket";
    return "not a regular file";
}

// Ok when the user may replace the existing target. Renaming over a file
// needs only the directory's permission, so the file's own is checked here.
// Root passes access(); a file without any write bit is refused all the
// same, as an editor refuses it. A device, FIFO or socket is never replaced
// by a regular file.
FileWriteResult CheckReplaceable(const Target& target)
{
    const mode_t mode = target.st.st_mode;
    if (S_ISDIR(mode))
        return Failure(FZResult::OpenFailed, EISDIR);
    if (!S_ISREG(mode))
        return Refusal(std::string("the file is ") + KindOfSpecialFile(mode) + "; only regular files are written");
    if (::faccessat(AT_FDCWD, target.path.c_str(), W_OK, AT_EACCESS) != 0)
        return Failure(FZResult::OpenFailed, errno);
    if ((mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0) {
        FileWriteResult refused = Failure(FZResult::OpenFailed, EACCES);
        refused.reason += " (the file is write-protected)";
        return refused;
    }
    return {};
}

// 0 when every byte reached the file at offset, else the errno. write() may
// take fewer bytes than asked without failing; the rest is asked for again,
// so a full disk shows as an error, never as a short file.
int WriteAllAt(int fd, const unsigned char* data, std::size_t size, off_t offset)
{
    while (size > 0) {
        const ssize_t n = ::pwrite(fd, data, size, offset);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return n < 0 ? errno : ENOSPC;
        data += n;
        size -= static_cast<std::size_t>(n);
        offset += n;
    }
    return 0;
}

// Makes the rename itself durable. Best effort: some file systems refuse to
// sync a directory, and the file is already safely in place by then.
void SyncDirectory(const std::string& dir)
{
    const int fd = ::open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        ::fsync(fd);
        ::close(fd);
    }
}

// Where the new files for a target go: its directory ("" or ending in "/")
// and the start of their names, "." and the target's name and ".", cut so
// that the whole name with its process id and counter fits the file
// system's limit. Names are bytes; a cut may fall inside a character.
struct TempPlace {
    std::string dir;
    std::string prefix;
};

constexpr char kTempSuffix[] = ".tmp";
// "4294967295-4294967295" and the suffix.
constexpr std::size_t kTempTailBytes = 21 + sizeof kTempSuffix - 1;

TempPlace TempPlaceFor(const std::string& target)
{
    const std::size_t slash = target.rfind('/');
    TempPlace place;
    place.dir = slash == std::string::npos ? "" : target.substr(0, slash + 1);
    std::string base = slash == std::string::npos ? target : target.substr(slash + 1);
    long nameMax = ::pathconf(place.dir.empty() ? "." : place.dir.c_str(), _PC_NAME_MAX);
    if (nameMax <= 0)
        nameMax = NAME_MAX;
    const std::size_t room = static_cast<std::size_t>(nameMax) > kTempTailBytes + 2
                                 ? static_cast<std::size_t>(nameMax) - kTempTailBytes - 2
                                 : 1;
    if (base.size() > room)
        base.resize(room);
    place.prefix = "." + base + ".";
    return place;
}

bool IsNumber(const std::string& s)
{
    return !s.empty() && s.size() <= 10 && s.find_first_not_of("0123456789") == std::string::npos;
}

// The process id in a new file's name "<prefix><pid>-<n>.tmp", or 0 when
// the name is not one.
pid_t WriterOf(const std::string& name, const std::string& prefix)
{
    const std::size_t suffix = sizeof kTempSuffix - 1;
    if (name.size() <= prefix.size() + suffix || name.compare(0, prefix.size(), prefix) != 0
        || name.compare(name.size() - suffix, suffix, kTempSuffix) != 0)
        return 0;
    const std::string middle = name.substr(prefix.size(), name.size() - prefix.size() - suffix);
    const std::size_t dash = middle.find('-');
    if (dash == std::string::npos || !IsNumber(middle.substr(0, dash)) || !IsNumber(middle.substr(dash + 1)))
        return 0;
    const long long pid = std::atoll(middle.substr(0, dash).c_str());
    return pid > 0 && pid <= INT_MAX ? static_cast<pid_t>(pid) : 0;
}

// Whether the process that made a new file is gone and holds it no more: a
// writer keeps its file locked until it closes it.
bool IsStale(const std::string& path, pid_t writer)
{
    if (writer == ::getpid() || ::kill(writer, 0) == 0 || errno != ESRCH)
        return false;
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (fd < 0)
        return false;
    struct stat st;
    const bool stale = ::fstat(fd, &st) == 0 && S_ISREG(st.st_mode) && ::flock(fd, LOCK_EX | LOCK_NB) == 0;
    ::close(fd);
    return stale;
}

struct DirCloser {
    void operator()(DIR* d) const { ::closedir(d); }
};

// A process killed while it wrote leaves its new file behind; the next
// write to the same name removes it.
void RemoveStaleTemps(const TempPlace& place)
{
    const std::unique_ptr<DIR, DirCloser> dir(::opendir(place.dir.empty() ? "." : place.dir.c_str()));
    if (!dir)
        return;
    while (const dirent* entry = ::readdir(dir.get())) {
        const std::string name = entry->d_name;
        const pid_t writer = WriterOf(name, place.prefix);
        if (writer != 0 && IsStale(place.dir + name, writer))
            ::unlink((place.dir + name).c_str());
    }
}

// A new file beside the target, hidden from file pickers, that no other
// file shares, readable by its owner alone and locked while this process
// writes it; its descriptor (or -1 with errno set) and its name.
int CreateTemp(const TempPlace& place, std::string& name)
{
    static std::atomic<unsigned> counter{0};
    for (int attempt = 0; attempt < 100; ++attempt) {
        name = place.dir + place.prefix + std::to_string(::getpid()) + "-" + std::to_string(counter++) + kTempSuffix;
        const int fd = ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        if (fd >= 0) {
            ::flock(fd, LOCK_EX | LOCK_NB);
            return fd;
        }
        if (errno != EEXIST)
            return -1;
    }
    return -1;
}

// The process's file creation mask, read without changing it (umask() can
// only be read by setting it, which would race with other threads).
mode_t CreationMask()
{
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.compare(0, 6, "Umask:") == 0)
            return static_cast<mode_t>(std::strtoul(line.c_str() + 6, nullptr, 8) & 0777);
    }
    return 022;
}

// Owner and group may be given only as far as the user is permitted: root
// gives both, a member of the file's group at least the group.
void CarryOverOwner(int fd, const struct stat& old)
{
    if (::fchown(fd, old.st_uid, old.st_gid) != 0 && ::fchown(fd, static_cast<uid_t>(-1), old.st_gid) != 0) {
        // Not permitted: the new file stays the user's, as any file they create.
    }
}

// Names the system sets by itself (security labels, trusted attributes) may
// be refused to an ordinary user; the others must come over.
bool MayBeRefused(const char* name)
{
    return std::strncmp(name, "security.", 9) == 0 || std::strncmp(name, "trusted.", 8) == 0;
}

// The names of the extended attributes of path, each ending in '\0'.
int AttributeNames(const std::string& path, std::vector<char>& names)
{
    for (int attempt = 0; attempt < 8; ++attempt) {
        const ssize_t size = ::listxattr(path.c_str(), nullptr, 0);
        if (size < 0)
            return errno == ENOTSUP ? 0 : errno;
        names.resize(static_cast<std::size_t>(size));
        const ssize_t got = ::listxattr(path.c_str(), names.data(), names.size());
        if (got >= 0) {
            names.resize(static_cast<std::size_t>(got));
            return 0;
        }
        if (errno != ERANGE)
            return errno;
    }
    return ERANGE;
}

int CopyAttribute(const std::string& path, const char* name, int fd)
{
    std::vector<char> value;
    for (int attempt = 0; attempt < 8; ++attempt) {
        const ssize_t size = ::getxattr(path.c_str(), name, nullptr, 0);
        if (size < 0)
            return errno == ENODATA ? 0 : errno;
        value.resize(static_cast<std::size_t>(size));
        const ssize_t got = ::getxattr(path.c_str(), name, value.data(), value.size());
        if (got >= 0) {
            if (::fsetxattr(fd, name, value.data(), static_cast<std::size_t>(got), 0) == 0 || MayBeRefused(name))
                return 0;
            return errno;
        }
        if (errno != ERANGE)
            return errno;
    }
    return ERANGE;
}

// Extended attributes, access control lists among them.
int CarryOverAttributes(const std::string& path, int fd)
{
    std::vector<char> names;
    if (const int error = AttributeNames(path, names))
        return error;
    for (std::size_t at = 0; at < names.size(); at += std::strlen(names.data() + at) + 1) {
        if (const int error = CopyAttribute(path, names.data() + at, fd))
            return error;
    }
    return 0;
}

// Everything the old file had besides its bytes. The mode comes last: a
// change of owner clears the set-id bits, and setting an access control
// list sets the group bits.
int CarryOver(int fd, const Target& old)
{
    CarryOverOwner(fd, old.st);
    if (const int error = CarryOverAttributes(old.path, fd))
        return error;
    return ::fchmod(fd, old.st.st_mode & 07777) == 0 ? 0 : errno;
}

int NewFileMode(int fd)
{
    return ::fchmod(fd, 0666 & ~CreationMask()) == 0 ? 0 : errno;
}

// Writes the bytes to a new file beside the target and gives it the
// target's mode, owner and attributes; the file stays open, not yet flushed
// nor renamed. On failure nothing is left behind.
FileWriteResult StartBeside(const Target& target, const unsigned char* data, std::size_t size, FileBatch::Waiting& out)
{
    const TempPlace place = TempPlaceFor(target.path);
    RemoveStaleTemps(place);
    std::string tempName;
    const int fd = CreateTemp(place, tempName);
    if (fd < 0)
        return Failure(FZResult::OpenFailed, errno);
    // The bytes go in while only the owner may read them; the final mode
    // and the rest come after.
    int error = WriteAllAt(fd, data, size, 0);
    if (error == 0)
        error = target.exists ? CarryOver(fd, target) : NewFileMode(fd);
    if (error != 0) {
        ::close(fd);
        ::unlink(tempName.c_str());
        return Failure(FZResult::WriteFailed, error);
    }
    out.fd = fd;
    out.temp = std::move(tempName);
    out.target = target.path;
    out.dir = place.dir.empty() ? "." : place.dir;
    return {};
}

// Flushes and closes the new file; on failure it is removed.
int Flush(FileBatch::Waiting& w)
{
    int error = ::fsync(w.fd) == 0 ? 0 : errno;
    if (::close(w.fd) != 0 && error == 0)
        error = errno;
    w.fd = -1;
    if (error != 0)
        ::unlink(w.temp.c_str());
    return error;
}

// Puts the flushed new file in the target's place.
int Rename(const FileBatch::Waiting& w)
{
    if (std::rename(w.temp.c_str(), w.target.c_str()) == 0)
        return 0;
    const int error = errno;
    ::unlink(w.temp.c_str());
    return error;
}

FileWriteResult WriteBeside(const Target& target, const unsigned char* data, std::size_t size)
{
    FileBatch::Waiting w;
    if (FileWriteResult started = StartBeside(target, data, size, w); !started.Ok())
        return started;
    int error = Flush(w);
    if (error == 0)
        error = Rename(w);
    if (error != 0)
        return Failure(FZResult::WriteFailed, error);
    SyncDirectory(w.dir);
    return {};
}

// Whether the file at fd (read from its start) holds exactly the bytes.
int CheckContent(int fd, const unsigned char* data, std::size_t size)
{
    std::string back;
    if (::lseek(fd, 0, SEEK_SET) != 0)
        return errno;
    if (const int error = ReadAtMost(fd, size + 1, back))
        return error;
    return back.size() == size && std::memcmp(back.data(), data, size) == 0 ? 0 : EIO;
}

// What can be known before the first byte of the file changes: the size
// limit of the process, and room on the disk (reserved past the end without
// changing the file's size, where the file system can).
int ReserveInPlace(int fd, std::size_t size)
{
    rlimit limit{};
    if (::getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY && size > limit.rlim_cur)
        return EFBIG;
    if (size == 0 || ::fallocate(fd, FALLOC_FL_KEEP_SIZE, 0, static_cast<off_t>(size)) == 0)
        return 0;
    return errno == EOPNOTSUPP || errno == ENOSYS ? 0 : errno;
}

// A file with other hard links is written in place, so that every name
// still shows the saved file; then it is read back.
FileWriteResult WriteInPlace(const Target& target, const unsigned char* data, std::size_t size)
{
    const int fd = ::open(target.path.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (fd < 0)
        return Failure(FZResult::OpenFailed, errno);
    struct stat st;
    int error = ::fstat(fd, &st) != 0 ? errno : 0;
    if (error == 0 && (st.st_dev != target.st.st_dev || st.st_ino != target.st.st_ino))
        error = EAGAIN;  // replaced by another file since it was checked
    if (error != 0) {
        ::close(fd);
        return Failure(FZResult::OpenFailed, error);
    }
    error = ReserveInPlace(fd, size);
    if (error == 0)
        error = WriteAllAt(fd, data, size, 0);
    if (error == 0 && ::ftruncate(fd, static_cast<off_t>(size)) != 0)
        error = errno;
    if (error == 0 && ::fsync(fd) != 0)
        error = errno;
    if (error == 0)
        error = CheckContent(fd, data, size);
    if (::close(fd) != 0 && error == 0)
        error = errno;
    return error == 0 ? FileWriteResult{} : Failure(FZResult::WriteFailed, error);
}

// Finds the target of a path and whether it may be replaced, as every write
// asks first. A file with other names must be written in place, so that
// every name sees the new content.
FileWriteResult CheckTarget(const char* path, Target& target, bool& linked)
{
    if (path == nullptr || *path == '\0')
        return Failure(FZResult::OpenFailed, ENOENT);
    if (FileWriteResult found = FindTarget(path, target); !found.Ok())
        return found;
    linked = target.exists && target.st.st_nlink > 1;
    if (target.exists)
        return CheckReplaceable(target);
    return {};
}

} // namespace

FileWriteResult ReplaceFile(const char* path, const void* data, std::size_t size)
{
    Target target;
    bool linked = false;
    if (FileWriteResult refused = CheckTarget(path, target, linked); !refused.Ok())
        return refused;
    const auto* bytes = static_cast<const unsigned char*>(data);
    return linked ? WriteInPlace(target, bytes, size) : WriteBeside(target, bytes, size);
}

FileWriteResult WriteFileInPlace(const char* path, const void* data, std::size_t size)
{
    Target target;
    bool linked = false;
    if (FileWriteResult refused = CheckTarget(path, target, linked); !refused.Ok())
        return refused;
    // Nobody holds a file that is not there yet: it is made as any other.
    const auto* bytes = static_cast<const unsigned char*>(data);
    return target.exists ? WriteInPlace(target, bytes, size) : WriteBeside(target, bytes, size);
}

FileBatch::~FileBatch()
{
    for (Waiting& w : waiting) {
        ::close(w.fd);
        ::unlink(w.temp.c_str());
    }
}

FileWriteResult FileBatch::Add(const char* path, const void* data, std::size_t size)
{
    Target target;
    bool linked = false;
    if (FileWriteResult refused = CheckTarget(path, target, linked); !refused.Ok())
        return refused;
    const auto* bytes = static_cast<const unsigned char*>(data);
    if (linked)
        return WriteInPlace(target, bytes, size);
    waiting.emplace_back();
    FileWriteResult started = StartBeside(target, bytes, size, waiting.back());
    waiting.back().path = path;
    if (!started.Ok())
        waiting.pop_back();
    return started;
}

std::vector<FileBatchFailure> FileBatch::Commit()
{
    std::vector<Waiting> files = std::move(waiting);
    waiting.clear();
    // Writing back every file first lets the file system put them all in
    // one commit of its journal: the flushes that follow find their data
    // on the way or already there, and most find their commit done.
    for (const Waiting& w : files)
        ::sync_file_range(w.fd, 0, 0, SYNC_FILE_RANGE_WRITE);
    std::vector<FileBatchFailure> failures;
    std::vector<bool> flushed(files.size());
    for (std::size_t i = 0; i < files.size(); ++i) {
        const int error = Flush(files[i]);
        flushed[i] = error == 0;
        if (error != 0)
            failures.push_back({files[i].path, Failure(FZResult::WriteFailed, error)});
    }
    // Only now does any target change: each is replaced by a whole file.
    std::vector<std::string> dirs;
    for (std::size_t i = 0; i < files.size(); ++i) {
        if (!flushed[i])
            continue;
        if (const int error = Rename(files[i])) {
            failures.push_back({files[i].path, Failure(FZResult::WriteFailed, error)});
            continue;
        }
        if (std::find(dirs.begin(), dirs.end(), files[i].dir) == dirs.end())
            dirs.push_back(files[i].dir);
    }
    for (const std::string& dir : dirs)
        SyncDirectory(dir);
    return failures;
}
