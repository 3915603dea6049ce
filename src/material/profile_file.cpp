#include "material/profile_file.h"

#include "material/bounded_read.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <limits>

namespace {

constexpr std::string_view kBlanks = " \t\r\n\v\f";

std::string_view Trimmed(std::string_view s)
{
    const std::size_t first = s.find_first_not_of(kBlanks);
    if (first == std::string_view::npos)
        return {};
    return s.substr(first, s.find_last_not_of(kBlanks) - first + 1);
}

bool SameName(std::string_view a, std::string_view b)
{
    auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [&](char x, char y) {
               return lower(x) == lower(y);
           });
}

// Whether line opens a section, and whether that section is the one named.
bool OpensSection(std::string_view line, std::string_view section, bool& isThatSection)
{
    const std::string_view t = Trimmed(line);
    if (t.size() < 2 || t.front() != '[' || t.back() != ']')
        return false;
    isThatSection = SameName(Trimmed(t.substr(1, t.size() - 2)), section);
    return true;
}

bool IsKeyLine(std::string_view line, std::string_view key)
{
    const std::size_t equals = line.find('=');
    return equals != std::string_view::npos && SameName(Trimmed(line.substr(0, equals)), key);
}

// A line end is "\n" or "\r\n"; a lone '\r' is part of the line, so that a
// last line reads the same once it is given its line end.
std::string_view WithoutLineEnd(std::string_view line)
{
    if (line.empty() || line.back() != '\n')
        return line;
    line.remove_suffix(1);
    if (!line.empty() && line.back() == '\r')
        line.remove_suffix(1);
    return line;
}

FileWriteResult Refused(FZResult code, std::string reason)
{
    return {code, std::move(reason)};
}

FileWriteResult SystemFailure(FZResult code, int error)
{
    return {code, std::strerror(error)};
}

// Reads the open file at fd, refusing what is no settings file.
FileWriteResult ReadOpenProfile(int fd, ProfileText& text)
{
    struct stat st;
    if (::fstat(fd, &st) != 0)
        return SystemFailure(FZResult::ReadFailed, errno);
    if (!S_ISREG(st.st_mode))
        return Refused(FZResult::OpenFailed, "not a regular file");
    const std::string tooLarge = "larger than " + std::to_string(kMaxProfileBytes >> 10) + " KiB";
    if (static_cast<std::uint64_t>(st.st_size) > kMaxProfileBytes)
        return Refused(FZResult::TooLarge, tooLarge);
    // The file may grow while it is read; no more than the limit is taken.
    std::string bytes;
    if (const int error = ReadAtMost(fd, kMaxProfileBytes + 1, bytes))
        return SystemFailure(FZResult::ReadFailed, error);
    if (bytes.size() > kMaxProfileBytes)
        return Refused(FZResult::TooLarge, tooLarge);
    if (bytes.find('\0') != std::string::npos)
        return Refused(FZResult::BadFormat, "it holds a NUL byte, so it is not a settings file");
    text = ProfileText(bytes);
    return {};
}

// The settings file opened for reading and locked, or -1 with the reason.
// Every update replaces the file by another, so a lock won on a file that
// is no longer the one at path is let go and taken again on the new one. A
// missing file is created empty to be locked (and removed again when the
// update fails); a symbolic link that leads nowhere is not followed.
class LockedProfile {
public:
    explicit LockedProfile(const char* path) : path_(path) {}
    LockedProfile(const LockedProfile&) = delete;
    LockedProfile& operator=(const LockedProfile&) = delete;
    ~LockedProfile()
    {
        if (fd_ >= 0)
            ::close(fd_);
    }

    // Each attempt after the first means another host finished an update
    // meanwhile, so the bound is only met when the file changes without end.
    FileWriteResult Lock()
    {
        for (int attempt = 0; attempt < 10000; ++attempt) {
            FileWriteResult opened = Open();
            if (!opened.Ok())
                return opened;
            while (::flock(fd_, LOCK_EX) != 0) {
                if (errno != EINTR)
                    return SystemFailure(FZResult::OpenFailed, errno);
            }
            if (StillThere())
                return {};
            ::close(fd_);
            fd_ = -1;
            created_ = false;
        }
        return SystemFailure(FZResult::OpenFailed, EAGAIN);
    }

    int Descriptor() const { return fd_; }

    // A file made only to be locked goes again when nothing was written.
    void Abandon()
    {
        if (created_)
            ::unlink(path_);
    }

private:
    FileWriteResult Open()
    {
        fd_ = ::open(path_, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
        if (fd_ >= 0 || errno != ENOENT)
            return fd_ >= 0 ? FileWriteResult{} : SystemFailure(FZResult::OpenFailed, errno);
        struct stat entry;
        if (::lstat(path_, &entry) == 0 && S_ISLNK(entry.st_mode))
            return Refused(FZResult::OpenFailed, "the symbolic link leads to no file");
        // O_EXCL does not follow a link that appeared meanwhile; the next
        // attempt sees it.
        fd_ = ::open(path_, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_CREAT | O_EXCL, 0666);
        if (fd_ >= 0) {
            created_ = true;
            return {};
        }
        return errno == EEXIST ? Open() : SystemFailure(FZResult::OpenFailed, errno);
    }

    bool StillThere() const
    {
        struct stat locked;
        struct stat now;
        return ::fstat(fd_, &locked) == 0 && ::stat(path_, &now) == 0 && locked.st_dev == now.st_dev
               && locked.st_ino == now.st_ino;
    }

    const char* path_;
    int fd_ = -1;
    bool created_ = false;
};

}  // namespace

ProfileText::ProfileText(std::string_view bytes)
{
    while (!bytes.empty()) {
        const std::size_t end = bytes.find('\n');
        const std::size_t length = end == std::string_view::npos ? bytes.size() : end + 1;
        lines_.emplace_back(bytes.substr(0, length));
        bytes.remove_prefix(length);
    }
}

ProfileText::Place ProfileText::Find(std::string_view section, std::string_view key) const
{
    Place place;
    bool inSection = false;
    bool seen = false;
    for (std::size_t i = 0; i < lines_.size(); ++i) {
        const std::string_view line = WithoutLineEnd(lines_[i]);
        const auto at = static_cast<std::ptrdiff_t>(i);
        if (OpensSection(line, section, inSection)) {
            // Only the first section of the name counts, as readers take it.
            inSection = inSection && !seen;
            if (inSection) {
                seen = true;
                place.sectionEnd = at + 1;
            }
        } else if (inSection && IsKeyLine(line, key)) {
            place.line = at;
            return place;
        } else if (inSection && !Trimmed(line).empty()) {
            place.sectionEnd = at + 1;
        }
    }
    return place;
}

std::optional<std::string> ProfileText::Value(std::string_view section, std::string_view key) const
{
    const Place place = Find(section, key);
    if (place.line < 0)
        return std::nullopt;
    const std::string_view line = WithoutLineEnd(lines_[static_cast<std::size_t>(place.line)]);
    return std::string(line.substr(line.find('=') + 1));
}

// New lines end as the file's first line does.
std::string ProfileText::LineEnd() const
{
    for (const std::string& line : lines_) {
        if (!line.empty() && line.back() == '\n')
            return line.size() >= 2 && line[line.size() - 2] == '\r' ? "\r\n" : "\n";
    }
    return "\n";
}

// Only the last line can lack its line end. One that ends in '\r' keeps
// it as text, followed by "\r\n": '\n' alone would make it a line end.
void ProfileText::EndLastLine()
{
    if (lines_.empty() || lines_.back().back() == '\n')
        return;
    lines_.back() += lines_.back().back() == '\r' ? std::string("\r\n") : LineEnd();
}

void ProfileText::Set(std::string_view section, std::string_view key, std::string_view value)
{
    const std::string entry = std::string(key) + "=" + std::string(value);
    Place place = Find(section, key);
    if (place.line >= 0) {
        std::string& line = lines_[static_cast<std::size_t>(place.line)];
        line = entry + line.substr(WithoutLineEnd(line).size());
        return;
    }
    const std::string end = LineEnd();
    if (place.sectionEnd < 0) {
        EndLastLine();
        lines_.push_back("[" + std::string(section) + "]" + end);
        place.sectionEnd = static_cast<std::ptrdiff_t>(lines_.size());
    }
    EndLastLine();
    lines_.insert(lines_.begin() + place.sectionEnd, entry + end);
}

std::string ProfileText::Bytes() const
{
    std::string bytes;
    for (const std::string& line : lines_)
        bytes += line;
    return bytes;
}

int ProfileInt(std::string_view text)
{
    std::size_t i = text.find_first_not_of(kBlanks);
    if (i == std::string_view::npos)
        return 0;
    bool negative = false;
    if (text[i] == '-' || text[i] == '+')
        negative = text[i++] == '-';
    std::int64_t value = 0;
    for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i)
        value = std::min<std::int64_t>(value * 10 + (text[i] - '0'), INT64_C(1) << 40);
    return static_cast<int>(std::clamp<std::int64_t>(negative ? -value : value, std::numeric_limits<int>::min(),
                                                     std::numeric_limits<int>::max()));
}

FileWriteResult ReadProfileFile(const char* path, ProfileText& text)
{
    text = ProfileText();
    const int fd = ::open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0)
        return errno == ENOENT ? FileWriteResult{} : SystemFailure(FZResult::OpenFailed, errno);
    const FileWriteResult read = ReadOpenProfile(fd, text);
    ::close(fd);
    return read;
}

FileWriteResult UpdateProfileFile(const char* path, const std::function<void(ProfileText&)>& update)
{
    LockedProfile locked(path);
    if (FileWriteResult result = locked.Lock(); !result.Ok())
        return result;
    ProfileText text;
    FileWriteResult result = ReadOpenProfile(locked.Descriptor(), text);
    if (result.Ok()) {
        update(text);
        const std::string bytes = text.Bytes();
        result = ReplaceFile(path, bytes.data(), bytes.size());
    }
    if (!result.Ok())
        locked.Abandon();
    return result;
}
