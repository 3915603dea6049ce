// Replacing a file keeps everything the old one had, refuses what is no
// regular file, takes names as bytes and cleans up after a killed writer.
#include <gtest/gtest.h>

#include <signal.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <string>
#include <vector>

#include "scratch_dir.h"
#include "material/file_replace.h"

namespace fs = std::filesystem;

namespace {

bool Replace(const fs::path& p, const std::string& bytes)
{
    return ReplaceFile(p.c_str(), bytes.data(), bytes.size()).Ok();
}

std::string Attribute(const fs::path& p, const char* name)
{
    char value[256];
    const ssize_t n = ::getxattr(p.c_str(), name, value, sizeof value);
    return n < 0 ? std::string("(none)") : std::string(value, static_cast<std::size_t>(n));
}

// An access list that also lets user 1234 read: version 2, then the tag,
// permissions and id of the owner, user 1234, the group, the mask and others.
const std::string kAccessList("\2\0\0\0" "\1\0\6\0\xff\xff\xff\xff" "\2\0\4\0\xd2\x04\0\0"
                              "\4\0\4\0\xff\xff\xff\xff" "\x10\0\4\0\xff\xff\xff\xff"
                              "\x20\0\0\0\xff\xff\xff\xff", 44);

std::size_t Entries(const fs::path& dir)
{
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(dir), fs::directory_iterator()));
}

class FileReplaceTest : public ::testing::Test {
protected:

    ScratchDirectory scratch{"tamerisk-replace"};
    const fs::path dir = scratch.path;
    const fs::path target = dir / "m.qva";
};

}  // namespace

TEST_F(FileReplaceTest, TheNewFileKeepsOwnerModeAttributesAndHardLinks)
{
    ASSERT_TRUE(Replace(target, "old"));
    if (::setxattr(target.c_str(), "user.tamerisk", "kept", 4, 0) != 0
        || ::setxattr(target.c_str(), "system.posix_acl_access", kAccessList.data(), kAccessList.size(), 0) != 0)
        GTEST_SKIP() << "no extended attributes here: " << std::strerror(errno);
    ::chmod(target.c_str(), 0640);
    const bool root = ::geteuid() == 0;
    if (root) {
        ASSERT_EQ(::chown(target.c_str(), 1234, 5678), 0);
    }
    const std::string aclBefore = Attribute(target, "system.posix_acl_access");

    ASSERT_TRUE(Replace(target, "new"));
    struct stat st;
    ASSERT_EQ(::stat(target.c_str(), &st), 0);
    EXPECT_EQ(ReadAll(target), "new");
    EXPECT_EQ(st.st_mode & 07777, 0640u);
    if (root) {
        EXPECT_EQ(st.st_uid, 1234u);
        EXPECT_EQ(st.st_gid, 5678u);
    }
    EXPECT_EQ(Attribute(target, "user.tamerisk"), "kept");
    EXPECT_EQ(Attribute(target, "system.posix_acl_access"), aclBefore);
    EXPECT_EQ(Entries(dir), 1u);

    // Renaming over a hard-linked file would part it from its other name.
    const fs::path other = dir / "other.qva";
    fs::create_hard_link(target, other);
    for (const std::string content : {"a longer content than before", "short"}) {
        ASSERT_TRUE(Replace(target, content));
        EXPECT_EQ(ReadAll(other), content);
        EXPECT_EQ(fs::hard_link_count(target), 2u);
    }
    EXPECT_EQ(Entries(dir), 2u);

    // In place, what would not fit is refused before a byte changes.
    const pid_t child = ::fork();
    if (child == 0) {
        ::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{50, 50};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        const FileWriteResult written = ReplaceFile(target.c_str(), std::string(100, 'x').data(), 100);
        ::_exit(written.code == FZResult::WriteFailed && written.reason == std::strerror(EFBIG) ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(ReadAll(other), "short");

    // Through a symbolic link the file it leads to is replaced; the link stays.
    fs::create_symlink(target, dir / "link.qva");
    ASSERT_TRUE(Replace(dir / "link.qva", "linked"));
    EXPECT_EQ(ReadAll(other), "linked");
    EXPECT_TRUE(fs::is_symlink(dir / "link.qva"));
}

TEST_F(FileReplaceTest, SpecialFilesAndBrokenLinksAreRefusedAndStayAsTheyWere)
{
    const struct {
        const char* name;
        void (*make)(const fs::path&);
        std::string reason;
    } cases[] = {
        {"fifo", [](const fs::path& p) { ASSERT_EQ(::mkfifo(p.c_str(), 0666), 0); }, "a FIFO"},
        {"socket",
         [](const fs::path& p) {
             sockaddr_un address = {};
             address.sun_family = AF_UNIX;
             std::strncpy(address.sun_path, p.c_str(), sizeof address.sun_path - 1);
             const int s = ::socket(AF_UNIX, SOCK_STREAM, 0);
             ASSERT_EQ(::bind(s, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
             ::close(s);
         },
         "a socket"},
        {"device", [](const fs::path& p) { fs::create_symlink("/dev/null", p); }, "a character device"},
        {"dangling", [](const fs::path& p) { fs::create_symlink(p.parent_path() / "missing", p); }, "leads to no file"},
        {"loop", [](const fs::path& p) { fs::create_symlink(p, p); }, std::strerror(ELOOP)},
        {"directory", [](const fs::path& p) { fs::create_directory(p); }, std::strerror(EISDIR)},
    };
    for (const auto& c : cases) {
        const fs::path p = dir / c.name;
        c.make(p);
        const fs::file_type before = fs::symlink_status(p).type();
        const std::size_t entries = Entries(dir);
        const FileWriteResult written = ReplaceFile(p.c_str(), "x", 1);
        EXPECT_EQ(written.code, FZResult::OpenFailed) << c.name;
        EXPECT_NE(written.reason.find(c.reason), std::string::npos) << c.name << ": " << written.reason;
        EXPECT_EQ(fs::symlink_status(p).type(), before) << c.name;
        EXPECT_EQ(Entries(dir), entries) << c.name;
    }
}

TEST_F(FileReplaceTest, NamesAreBytesUpToTheFileSystemsLimit)
{
    // Up to 255 bytes, however many of them a character takes.
    // Both would read as U+FFFD as text, and must stay two files.
    const std::string names[] = {"\xff.qva", "\xfe.qva", std::string(255, 'n'), std::string(254, '\xe9') + "q",
                                 std::string(1, '-')};
    for (const std::string& name : names)
        ASSERT_TRUE(Replace(dir / name, name)) << name.size();
    for (const std::string& name : names) {
        ASSERT_TRUE(Replace(dir / name, name + "!")) << name.size();  // over an existing file
        EXPECT_EQ(ReadAll(dir / name), name + "!");
    }
    EXPECT_EQ(Entries(dir), std::size(names));
    // One byte more is refused, and leaves nothing behind.
    const FileWriteResult tooLong = ReplaceFile((dir / std::string(256, 'n')).c_str(), "x", 1);
    EXPECT_FALSE(tooLong.Ok());
    EXPECT_NE(tooLong.reason.find(std::strerror(ENAMETOOLONG)), std::string::npos) << tooLong.reason;
    EXPECT_EQ(Entries(dir), std::size(names));
}

// A writer killed part way (here by its file size limit) leaves its new
// file, which nobody else could read, and the next write removes it.
TEST_F(FileReplaceTest, AKilledWritersFileIsPrivateAndGoneAtTheNextWrite)
{
    ASSERT_TRUE(Replace(target, "old"));
    ::chmod(target.c_str(), 0644);
    const pid_t child = ::fork();
    if (child == 0) {
        ::signal(SIGXFSZ, SIG_DFL);
        const rlimit limit{50, 50};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        (void)Replace(target, std::string(100, 'x'));
        ::_exit(0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGXFSZ);
    ASSERT_EQ(Entries(dir), 2u);
    for (const auto& entry : fs::directory_iterator(dir)) {
        if (entry.path() != target) {
            EXPECT_EQ(entry.status().permissions(), fs::perms(0600)) << entry.path();
        }
    }
    EXPECT_EQ(ReadAll(target), "old");

    ASSERT_TRUE(Replace(target, "new"));
    EXPECT_EQ(ReadAll(target), "new");
    EXPECT_EQ(Entries(dir), 1u);
}

// A batch changes no target before its commit, then every one; a refused
// target costs the others nothing, and a batch dropped before its commit
// leaves the targets and no new file behind.
TEST_F(FileReplaceTest, ABatchReplacesItsTargetsOnlyAtItsCommit)
{
    const fs::path a = dir / "a.png", b = dir / "b.png";
    ASSERT_TRUE(Replace(a, "old a"));
    fs::create_directory(dir / "taken.png");
    {
        FileBatch dropped;
        ASSERT_TRUE(dropped.Add(a.c_str(), "lost", 4).Ok());
    }
    EXPECT_EQ(ReadAll(a), "old a");
    EXPECT_EQ(Entries(dir), 2u);

    FileBatch batch;
    EXPECT_TRUE(batch.Add(a.c_str(), "new a", 5).Ok());
    EXPECT_FALSE(batch.Add((dir / "taken.png").c_str(), "x", 1).Ok());
    EXPECT_TRUE(batch.Add(b.c_str(), "new b", 5).Ok());
    EXPECT_EQ(batch.Pending(), 2u);
    EXPECT_EQ(ReadAll(a), "old a");
    EXPECT_FALSE(fs::exists(b));
    EXPECT_TRUE(batch.Commit().empty());
    EXPECT_EQ(ReadAll(a), "new a");
    EXPECT_EQ(ReadAll(b), "new b");
    EXPECT_EQ(Entries(dir), 3u);
}

