// The pictures are the contract: every frame below must keep its checksum
// (FNV-1a over the frame bytes, padding included) from one version to the
// next. The table in golden_frames.txt is written by scripts/make_goldens.py
// from the renderer as it stands; regenerate it only for a deliberate change
// of the pictures.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "../../bench/bench_materials.h"
#include "engine/parallel.h"
#include "engine/random.h"
#include "preview/preview_panel.h"
#include "preview/record_maker.h"

namespace {

struct Frame {
    std::string name;
    FZAttributeEx material;
    std::int32_t bind, shape, w, h;
};

constexpr std::int32_t kSizes[][2] = {{120, 120}, {97, 61}};

// Every benchmark material on every shape and size; then 256 random records,
// each on one shape and size in turn.
std::vector<Frame> Frames()
{
    std::vector<Frame> frames;
    for (const auto& size : kSizes)
        for (std::int32_t shape = 1; shape <= 4; ++shape)
            for (const BenchMaterial& m : BenchMaterials())
                frames.push_back({m.name, m.material, 0, shape, size[0], size[1]});
    RecordMaker records(977u);
    for (int i = 0; i < 256; ++i) {
        const FZAttributeEx m = records.Next();
        const std::int32_t bind = records.Bind();
        const auto& size = kSizes[i / 4 % 2];
        frames.push_back({"record" + std::to_string(i), m, bind, i % 4 + 1, size[0], size[1]});
    }
    return frames;
}

std::string Key(const Frame& f)
{
    return f.name + ' ' + std::to_string(f.shape) + ' ' + std::to_string(f.w) + 'x' + std::to_string(f.h);
}

std::uint64_t Fnv1a(const std::uint8_t* bytes, std::size_t n)
{
    std::uint64_t hash = 14695981039346656037ull;
    for (std::size_t i = 0; i < n; ++i)
        hash = (hash ^ bytes[i]) * 1099511628211ull;
    return hash;
}

std::uint64_t Render(CPreviewPanel& panel, const Frame& f)
{
    if (panel.Scene() == nullptr || panel.Scene()->width != f.w || panel.Scene()->height != f.h) {
        EXPECT_EQ(panel.SetUpFrame(f.w, f.h), FZResult::Ok);
    }
    EXPECT_EQ(panel.BuildSampleShape(f.shape), FZResult::Ok);
    EXPECT_EQ(panel.ApplyMaterial(f.material, f.bind), FZResult::Ok);
    const FZImage& frame = *panel.Scene()->frame;
    return Fnv1a(frame.data.data(), frame.data.size());
}

std::map<std::string, std::string> ReadTable()
{
    std::map<std::string, std::string> table;
    std::ifstream in(TAMERISK_GOLDEN_FRAMES);
    std::string line;
    while (std::getline(in, line)) {
        const auto cut = line.rfind(' ');
        if (!line.empty() && line[0] != '#' && cut != std::string::npos)
            table[line.substr(0, cut)] = line.substr(cut + 1);
    }
    return table;
}

} // namespace

// Every thread count runs the same code: one thread and three (rows split
// unevenly) must both give the table's bytes.
TEST(Goldens, EveryFrameKeepsItsChecksumAtAnyThreadCount)
{
    // The groove depth noise is otherwise seeded by the time.
    FZRandom::SetFixedSeed(1u);
    const char* write = std::getenv("TAMERISK_WRITE_GOLDENS");
    const std::map<std::string, std::string> table = ReadTable();
    if (write == nullptr) {
        ASSERT_FALSE(table.empty()) << "no table at " << TAMERISK_GOLDEN_FRAMES;
    }

    std::ostringstream out;
    out << "# frame shape size fnv1a-64; written by scripts/make_goldens.py\n";
    for (int threads : {1, 3}) {
        SetRenderThreads(threads);
        CPreviewPanel panel;
        for (const Frame& f : Frames()) {
            char hex[17];
            std::snprintf(hex, sizeof hex, "%016llx", static_cast<unsigned long long>(Render(panel, f)));
            if (threads == 1)
                out << Key(f) << ' ' << hex << '\n';
            if (write == nullptr) {
                const auto found = table.find(Key(f));
                EXPECT_TRUE(found != table.end() && found->second == hex)
                    << Key(f) << " renders " << hex << " with " << threads << " threads";
            }
        }
    }
    SetRenderThreads(0);
    FZRandom::SetFixedSeed(std::nullopt);
    if (write != nullptr)
        std::ofstream(TAMERISK_GOLDEN_FRAMES) << out.str();
}
