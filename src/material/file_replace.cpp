#include "material/file_replace.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>


namespace {

FileWriteResult Failure(FZResult code, int error)
{
    return {code, std::strerror(error)};
}

// Saving through a symbolic link updates the file it names instead of
// replacing the link.
std::string ResolvedTarget(const char* path)
{
    char resolved[PATH_MAX];
    if (::realpath(path, resolved) != nullptr)
        return resolved;
    return path;
}

std::string DirectoryOf(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

// 0 when the user may replace an existing target, else the errno to report.
// Renaming over a file needs only the directory's permission, so the file's
// own is checked here. Root passes access(); a file without any write bit is
// refused all the same, as an editor refuses it.
int ReplaceRefusal(const std::string& target, const struct stat& st)
{
    if (S_ISDIR(st.st_mode))
        return EISDIR;
    if (::faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0)
        return errno;
    if ((st.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0)
        return EACCES;
    return 0;
}

// A new file beside target, hidden from file pickers, that no other file
// shares; its descriptor (or -1 with errno set) and its name.
int CreateTempBeside(const std::string& target, std::string& name)
{
    const std::size_t slash = target.rfind('/');
    const std::string dir = slash == std::string::npos ? "" : target.substr(0, slash + 1);
    const std::string base = slash == std::string::npos ? target : target.substr(slash + 1);
    static std::atomic<unsigned> counter{0};
    for (int attempt = 0; attempt < 100; ++attempt) {
        name = dir + "." + base + "." + std::to_string(::getpid()) + "-" + std::to_string(counter++)
               + ".tmp";
        // Mode 0666 less the umask, as any newly created file would get.
        const int fd = ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd >= 0 || errno != EEXIST)
            return fd;
    }
    return -1;
}

// 0 when every byte reached the file and the file reached the disk, else
// the errno. write() may take fewer bytes than asked without failing; the
// rest is asked for again, so a full disk shows as an error, never as a
// short file.
int WriteAll(int fd, const unsigned char* data, std::size_t size)
{
    while (size > 0) {
        const ssize_t n = ::write(fd, data, size);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return n < 0 ? errno : ENOSPC;
        data += n;
        size -= static_cast<std::size_t>(n);
    }
    return ::fsync(fd) == 0 ? 0 : errno;
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

} // namespace

FileWriteResult ReplaceFile(const char* path, const void* data, std::size_t size)
{
    if (path == nullptr || *path == '\0')
        return Failure(FZResult::OpenFailed, ENOENT);
    const std::string target = ResolvedTarget(path);
    struct stat old;
    const bool replacing = ::stat(target.c_str(), &old) == 0;
    if (replacing) {
        if (const int refusal = ReplaceRefusal(target, old)) {
            FileWriteResult refused = Failure(FZResult::OpenFailed, refusal);
            if (refusal == EACCES)
                refused.reason += " (the file is write-protected)";
            return refused;
        }
    }
    std::string tempName;
    const int fd = CreateTempBeside(target, tempName);
    if (fd < 0)
        return Failure(FZResult::OpenFailed, errno);
    if (replacing)
        ::fchmod(fd, old.st_mode & 07777);
    int error = WriteAll(fd, static_cast<const unsigned char*>(data), size);
    if (::close(fd) != 0 && error == 0)
        error = errno;
    if (error == 0 && std::rename(tempName.c_str(), target.c_str()) != 0)
        error = errno;
    if (error != 0) {
        ::unlink(tempName.c_str());
        return Failure(FZResult::WriteFailed, error);
    }
    SyncDirectory(DirectoryOf(target));
    return {};
}
