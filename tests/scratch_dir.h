// A directory of a test's own under the system's temporary directory,
// removed with everything in it when the test ends.
#ifndef TAMERISK_TESTS_SCRATCH_DIR_H
#define TAMERISK_TESTS_SCRATCH_DIR_H

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <system_error>

class ScratchDirectory {
public:
    // prefix names the test's files in a listing of /tmp ("tamerisk-qva").
    explicit ScratchDirectory(const char* prefix)
    {
        std::string pattern = (std::filesystem::temp_directory_path() / prefix).string() + "-XXXXXX";
        if (::mkdtemp(pattern.data()) == nullptr)
            throw std::runtime_error("cannot make a scratch directory in " + pattern);
        path = pattern;
    }
    ~ScratchDirectory()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;

    std::filesystem::path path;
};

// A whole file's bytes, and a file made of bytes, for tests that look at
// what was written.
inline std::string ReadAll(const std::filesystem::path& p)
{
    std::ifstream in(p, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

inline void WriteAll(const std::filesystem::path& p, const std::string& bytes)
{
    std::ofstream(p, std::ios::binary) << bytes;
}

#endif
