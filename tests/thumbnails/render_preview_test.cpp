// Tamerisk_RenderPreview through the shared library, as a host without a
// QApplication calls it: the preview's picture in the host's buffer,
// refusals that write nothing, and several host threads at once getting
// exactly what one thread gets alone.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>
#include <thread>
#include <vector>

#include <tamerisk/tamerisk.h>

#include "../../bench/bench_materials.h"
#include "preview/preview_panel.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint8_t kUntouched = 0xA5;

struct Request {
    FZAttributeEx material;
    int shape, width, height, bind;
};

// The picture in a buffer with `padding` spare bytes after every row.
Bytes Render(const Request& r, int padding = 0)
{
    const int stride = 3 * r.width + padding;
    Bytes rgb(static_cast<std::size_t>(stride) * r.height, kUntouched);
    EXPECT_EQ(Tamerisk_RenderPreview(&r.material, r.shape, r.width, r.height, r.bind, rgb.data(), stride), TAMERISK_OK);
    return rgb;
}

// What the editor's preview panel shows, top row first, red-green-blue.
Bytes PanelPicture(const Request& r)
{
    CPreviewPanel panel;
    EXPECT_EQ(panel.SetUpFrame(r.width, r.height), FZResult::Ok);
    EXPECT_EQ(panel.BuildSampleShape(r.shape), FZResult::Ok);
    EXPECT_EQ(panel.ApplyMaterial(r.material, r.bind), FZResult::Ok);
    const FZImage& frame = *panel.Scene()->frame;
    Bytes rgb;
    for (int y = frame.height - 1; y >= 0; --y)
        for (int x = 0; x < frame.width; ++x)
            for (int c = 2; c >= 0; --c)
                rgb.push_back(frame.PixelAddress(x, y)[c]);
    return rgb;
}

// Every benchmark material on every shape at two sizes, a mix of what the
// thread keeps and what it must build again.
std::vector<Request> Requests()
{
    std::vector<Request> list;
    const std::vector<BenchMaterial> materials = BenchMaterials();
    for (int shape = 1; shape <= 4; ++shape)
        for (std::size_t i = 0; i < materials.size(); ++i)
            list.push_back({materials[i].material, shape, i % 3 == 0 ? 61 : 48, 48, static_cast<int>(i % 2)});
    return list;
}

} // namespace

// The groove noise is seeded by the clock inside the library, so the
// comparison with the panel takes the materials without grooves.
TEST(RenderPreview, DrawsThePreviewPanelsPictureUprightAndLeavesTheRowGaps)
{
    for (const Request& r : Requests()) {
        if (r.material.anisotropic != 0)
            continue;
        const Bytes padded = Render(r, 5);
        const Bytes expected = PanelPicture(r);
        Bytes pixels;
        for (int y = 0; y < r.height; ++y) {
            const auto row = padded.begin() + y * (3 * r.width + 5);
            pixels.insert(pixels.end(), row, row + 3 * r.width);
            EXPECT_EQ(Bytes(row + 3 * r.width, row + 3 * r.width + 5), Bytes(5, kUntouched));
        }
        ASSERT_EQ(pixels, expected) << "shape " << r.shape << " size " << r.width << "x" << r.height;
    }
}

TEST(RenderPreview, BadArgumentsAreRefusedWithNothingWritten)
{
    const FZAttributeEx m;
    std::array<std::uint8_t, 64> rgb;
    rgb.fill(kUntouched);
    struct Case {
        const FZAttributeEx* material;
        int shape, width, height;
        std::uint8_t* out;
        int stride;
    } cases[] = {
        {nullptr, 1, 4, 4, rgb.data(), 12}, {&m, 1, 4, 4, nullptr, 12},   {&m, 0, 4, 4, rgb.data(), 12},
        {&m, 5, 4, 4, rgb.data(), 12},      {&m, 1, 0, 4, rgb.data(), 12}, {&m, 1, 4, -1, rgb.data(), 12},
        {&m, 1, 8193, 1, rgb.data(), 1 << 16}, {&m, 1, 1, 8193, rgb.data(), 3}, {&m, 1, 4, 4, rgb.data(), 11},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Tamerisk_RenderPreview(c.material, c.shape, c.width, c.height, 0, c.out, c.stride),
                  TAMERISK_ERROR_BAD_ARGUMENT);
        EXPECT_EQ(Tamerisk_GetLastResult(), TAMERISK_ERROR_BAD_ARGUMENT);
    }
    for (std::uint8_t b : rgb)
        ASSERT_EQ(b, kUntouched);
    // A record of any values is drawn, not refused.
    FZAttributeEx wild;
    wild.diffuse = std::numeric_limits<float>::quiet_NaN();
    wild.refractiveIndex = -std::numeric_limits<float>::infinity();
    wild.transparency = 1e30f;
    EXPECT_EQ(Tamerisk_RenderPreview(&wild, 3, 4, 4, 7, rgb.data(), 12), TAMERISK_OK);
    EXPECT_EQ(Tamerisk_GetLastResult(), TAMERISK_OK);
}

// Three host threads start at once, so that the groove noise is first made
// while they all want it; each then gets the bytes that one thread alone
// gets afterwards.
TEST(RenderPreview, HostThreadsAtOnceGetWhatOneThreadGets)
{
    const std::vector<Request> requests = Requests();
    std::vector<std::vector<Bytes>> seen(3);
    std::vector<std::thread> hosts;
    for (std::size_t t = 0; t < seen.size(); ++t)
        hosts.emplace_back([&, t] {
            // Each thread walks the list from another place.
            for (std::size_t i = 0; i < requests.size(); ++i)
                seen[t].push_back(Render(requests[(i + t * 11) % requests.size()]));
        });
    for (std::thread& host : hosts)
        host.join();
    for (std::size_t i = 0; i < requests.size(); ++i) {
        const Bytes alone = Render(requests[i]);
        for (std::size_t t = 0; t < seen.size(); ++t)
            ASSERT_EQ(seen[t][(i + requests.size() - t * 11 % requests.size()) % requests.size()], alone)
                << "request " << i << " on thread " << t;
    }
}
