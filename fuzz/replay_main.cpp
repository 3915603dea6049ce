// The main of a fuzz target built without libFuzzer (GCC): it feeds every
// file it is given, and every file in every folder it is given, to the
// target once, as libFuzzer does with -runs=0, so that a sanitizer build of
// any compiler replays the seed corpus. Options (-runs=0) are ignored.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> Inputs(const fs::path& given)
{
    std::error_code error;
    if (!fs::is_directory(given, error))
        return {given};
    std::vector<fs::path> files;
    for (const fs::directory_entry& entry : fs::directory_iterator(given, error)) {
        if (entry.is_regular_file(error))
            files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

bool Replay(const fs::path& file)
{
    std::ifstream in(file, std::ios::binary);
    if (!in) {
        std::fprintf(stderr, "cannot read %s\n", file.c_str());
        return false;
    }
    const std::vector<char> bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    // As libFuzzer does, an empty input is given a pointer all the same.
    static const std::uint8_t nothing = 0;
    LLVMFuzzerTestOneInput(bytes.empty() ? &nothing : reinterpret_cast<const std::uint8_t*>(bytes.data()),
                           bytes.size());
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    int replayed = 0;
    bool readable = true;
    for (int i = 1; i < argc; ++i) {
        if (argv[i][0] == '-')
            continue;
        for (const fs::path& file : Inputs(argv[i])) {
            readable = Replay(file) && readable;
            ++replayed;
        }
    }
    std::printf("replayed %d inputs\n", replayed);
    return readable && replayed > 0 ? 0 : 1;
}
