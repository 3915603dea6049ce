// The settings file's text kept byte for byte, files that are refused
// without being read or changed, and hosts that update it at once.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <climits>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "scratch_dir.h"
#include "material/profile_file.h"

namespace fs = std::filesystem;

namespace {

class ProfileFileTest : public ::testing::Test {
protected:

    ScratchDirectory scratch{"tamerisk-ini"};
    const fs::path dir = scratch.path;
    const fs::path path = dir / "Tamerisk.ini";
};

}  // namespace

TEST(ProfileText, SettingAKeyChangesOnlyItsLine)
{
    const struct {
        const char* before;
        const char* section;
        const char* key;
        const char* after;
    } cases[] = {
        {"", "Window", "Top", "[Window]\nTop=7\n"},
        {"[Window]\r\nTop=1\r\n", "window", "TOP", "[Window]\r\nTOP=7\r\n"},
        {"; \xff\xfe not UTF-8\n[A]\nk=\x80\n", "Window", "Top", "; \xff\xfe not UTF-8\n[A]\nk=\x80\n[Window]\nTop=7\n"},
        {"[Window]\nLeft=1", "Window", "Top", "[Window]\nLeft=1\nTop=7\n"},
        {"[A]\nx=1", "B", "y", "[A]\nx=1\n[B]\ny=7\n"},
        {"[A]\nx=1\r", "B", "y", "[A]\nx=1\r\r\n[B]\ny=7\n"},  // a lone '\r' is text, and stays
        {"[Window]\nLeft=1\n\n[Other]\nTop=3\n", "Window", "Top", "[Window]\nLeft=1\nTop=7\n\n[Other]\nTop=3\n"},
        {"[W]\na=1\n[W]\nb=2\n", "W", "b", "[W]\na=1\nb=7\n[W]\nb=2\n"},  // the first section counts
        {"  [ Window ]  \n  Top  = 12px \n", "Window", "Top", "  [ Window ]  \nTop=7\n"},
    };
    for (const auto& c : cases) {
        ProfileText text(c.before);
        text.Set(c.section, c.key, "7");
        EXPECT_EQ(text.Bytes(), c.after) << c.before;
        EXPECT_EQ(text.Value(c.section, c.key), "7") << c.before;
    }
}

TEST(ProfileText, ValuesReadAsPrivateProfileReadersReadThem)
{
    const ProfileText text("Top=5\n[Window]\nTop = 12px\nLeft=-99999999999\nWide=99999999999999999999\n"
                           "Empty=\nSign=+7\nWords=abc\n");
    EXPECT_EQ(text.Value("Window", "Missing"), std::nullopt);
    EXPECT_EQ(text.Value("Other", "Top"), std::nullopt);
    const struct {
        const char* key;
        int value;
    } cases[] = {{"Top", 12}, {"Left", INT_MIN}, {"Wide", INT_MAX}, {"Empty", 0}, {"Sign", 7}, {"Words", 0}};
    for (const auto& c : cases)
        EXPECT_EQ(ProfileInt(text.Value("Window", c.key).value_or("missing")), c.value) << c.key;
}

TEST_F(ProfileFileTest, FilesThatAreNoSettingsAreRefusedUnreadAndUnchanged)
{
    const struct {
        const char* name;
        FZResult code;
        void (*make)(const fs::path&);
    } cases[] = {
        // Sparse: eight gigabytes that are never read.
        {"huge", FZResult::TooLarge, [](const fs::path& p) { fs::resize_file((WriteAll(p, "[Window]\n"), p), 8ull << 30); }},
        {"binary", FZResult::BadFormat, [](const fs::path& p) { WriteAll(p, std::string("[Window]\nTop=1\n\0\x01", 17)); }},
        {"fifo", FZResult::OpenFailed, [](const fs::path& p) { ASSERT_EQ(::mkfifo(p.c_str(), 0600), 0); }},
        {"directory", FZResult::OpenFailed, [](const fs::path& p) { fs::create_directory(p); }},
    };
    for (const auto& c : cases) {
        const fs::path file = dir / c.name;
        c.make(file);
        const fs::file_status before = fs::status(file);
        ProfileText text("[Stale]\n");
        EXPECT_EQ(ReadProfileFile(file.c_str(), text).code, c.code) << c.name;
        EXPECT_EQ(text.Bytes(), "") << c.name;
        const FileWriteResult updated = UpdateProfileFile(file.c_str(), [](ProfileText& t) { t.Set("Window", "Top", "1"); });
        EXPECT_EQ(updated.code, c.code) << c.name;
        EXPECT_FALSE(updated.reason.empty()) << c.name;
        EXPECT_EQ(fs::status(file).type(), before.type()) << c.name;
        if (fs::is_regular_file(file)) {
            std::string start(9, '\0');
            std::ifstream(file, std::ios::binary).read(start.data(), 9);
            EXPECT_EQ(start, "[Window]\n") << c.name;
            EXPECT_EQ(fs::file_size(file), c.code == FZResult::TooLarge ? 8ull << 30 : 17u) << c.name;
        }
    }
}

TEST_F(ProfileFileTest, MissingFilesAreMadeAndDanglingLinksRefused)
{
    ProfileText text;
    ASSERT_TRUE(ReadProfileFile(path.c_str(), text).Ok());
    ASSERT_TRUE(UpdateProfileFile(path.c_str(), [](ProfileText& t) { t.Set("Window", "Top", "3"); }).Ok());
    EXPECT_EQ(ReadAll(path), "[Window]\nTop=3\n");

    const fs::path link = dir / "link.ini";
    fs::create_symlink(dir / "nowhere.ini", link);
    EXPECT_FALSE(UpdateProfileFile(link.c_str(), [](ProfileText& t) { t.Set("Window", "Top", "3"); }).Ok());
    EXPECT_FALSE(fs::exists(dir / "nowhere.ini"));
}

// Without the lock, one host reads the file, another writes it, and the
// first then writes back what it read: the other's key is lost.
TEST_F(ProfileFileTest, HostsUpdatingAtOnceKeepEachOthersKeys)
{
    constexpr int kHosts = 4;
    constexpr int kUpdates = 40;
    WriteAll(path, "; shared\n");
    pid_t children[kHosts];
    for (int h = 0; h < kHosts; ++h) {
        children[h] = ::fork();
        if (children[h] == 0) {
            for (int i = 1; i <= kUpdates; ++i) {
                const FileWriteResult updated = UpdateProfileFile(path.c_str(), [&](ProfileText& t) {
                    t.Set("Hosts", "Host" + std::to_string(h), std::to_string(i));
                });
                if (!updated.Ok()) {
                    std::fprintf(stderr, "host %d, update %d: %s\n", h, i, updated.reason.c_str());
                    ::_exit(1);
                }
            }
            ::_exit(0);
        }
    }
    for (const pid_t child : children) {
        int status = -1;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
    ProfileText text;
    ASSERT_TRUE(ReadProfileFile(path.c_str(), text).Ok());
    for (int h = 0; h < kHosts; ++h)
        EXPECT_EQ(text.Value("Hosts", "Host" + std::to_string(h)), std::to_string(kUpdates)) << h;
    EXPECT_EQ(std::distance(fs::directory_iterator(dir), fs::directory_iterator()), 1);
}
