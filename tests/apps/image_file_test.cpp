// tamerisk-render's image files, read back with Qt's readers and with zlib:
// exactly the frame's pixels at any size, the same PNG bytes at any thread
// count, and no file from an encoding that was asked to stop.
#include <gtest/gtest.h>

#include <zlib.h>

#include <QImage>

#include <atomic>
#include <cstdint>
#include <vector>

#include "attribute_bytes.h"
#include "engine/image.h"
#include "engine/parallel.h"
#include "engine/render_watch.h"
#include "tamerisk-render/image_file.h"

namespace {

// The render threads for one test, back to the default after it.
class Threads {
public:
    explicit Threads(int count) { SetRenderThreads(count); }
    ~Threads() { SetRenderThreads(0); }
    Threads(const Threads&) = delete;
    Threads& operator=(const Threads&) = delete;
};

// Flat cells, which the compressor shortens, crossed by diagonal stripes of
// noise, which it cannot.
FZImage TestImage(std::int32_t w, std::int32_t h)
{
    FZImage image;
    EXPECT_EQ(image.Create(w, h), FZResult::Ok);
    std::uint32_t noise = 12345;
    for (std::int32_t y = 0; y < h; ++y) {
        for (std::int32_t x = 0; x < w; ++x) {
            std::uint8_t* pixel = image.PixelAddress(x, y);
            const bool light = ((x / 16) + (y / 16)) % 2 == 0;
            const std::uint8_t cell[3] = {153, 102, static_cast<std::uint8_t>(light ? 255 : 25)};
            for (int c = 0; c < 3; ++c) {
                noise = noise * 1664525u + 1013904223u;
                pixel[c] = (x + y) % 40 < 7 ? static_cast<std::uint8_t>(noise >> 24) : cell[c];
            }
        }
    }
    return image;
}

// Row r of the picture (0 on top) as red, green, blue.
ByteVector RgbRow(const FZImage& image, std::int32_t r)
{
    const std::uint8_t* bgr = image.PixelAddress(0, image.height - 1 - r);
    ByteVector rgb;
    for (std::int32_t x = 0; x < image.width; ++x)
        rgb.insert(rgb.end(), {bgr[3 * x + 2], bgr[3 * x + 1], bgr[3 * x]});
    return rgb;
}

void ExpectPicture(const QImage& decoded, const FZImage& image)
{
    ASSERT_FALSE(decoded.isNull());
    ASSERT_EQ(decoded.width(), image.width);
    ASSERT_EQ(decoded.height(), image.height);
    const QImage rgb = decoded.convertToFormat(QImage::Format_RGB888);
    for (std::int32_t r = 0; r < image.height; ++r) {
        const uchar* line = rgb.constScanLine(r);
        ASSERT_EQ(ByteVector(line, line + 3 * image.width), RgbRow(image, r)) << "row " << r;
    }
}

QImage Decode(const ByteVector& file, const char* format)
{
    return QImage::fromData(file.data(), static_cast<int>(file.size()), format);
}

std::uint32_t BigEndian(const std::uint8_t* p)
{
    return std::uint32_t{p[0]} << 24 | std::uint32_t{p[1]} << 16 | std::uint32_t{p[2]} << 8 | p[3];
}

// What a lenient reader might let pass: every chunk's CRC, and the zlib
// stream of the IDAT chunks to its check value, holding one filter byte and
// a row of pixels for each row.
void ExpectSoundPng(const ByteVector& file, const FZImage& image)
{
    ASSERT_GT(file.size(), 8u);
    ByteVector stream;
    std::size_t at = 8;
    bool ended = false;
    while (at + 12 <= file.size() && !ended) {
        const std::uint32_t length = BigEndian(&file[at]);
        ASSERT_LE(at + 12 + length, file.size());
        const std::uint8_t* type = &file[at + 4];
        EXPECT_EQ(crc32(0, type, length + 4), BigEndian(type + 4 + length));
        if (ByteVector(type, type + 4) == ByteVector{'I', 'D', 'A', 'T'})
            stream.insert(stream.end(), type + 4, type + 4 + length);
        ended = ByteVector(type, type + 4) == ByteVector{'I', 'E', 'N', 'D'};
        at += 12 + length;
    }
    EXPECT_TRUE(ended);
    EXPECT_EQ(at, file.size());
    const std::size_t filtered = static_cast<std::size_t>(image.height) * (3 * static_cast<std::size_t>(image.width) + 1);
    ByteVector raw(filtered + 1);
    uLongf rawSize = static_cast<uLongf>(raw.size());
    ASSERT_EQ(uncompress(raw.data(), &rawSize, stream.data(), static_cast<uLong>(stream.size())), Z_OK);
    EXPECT_EQ(rawSize, filtered);
}

} // namespace

TEST(ImageFile, PngAndPpmHoldExactlyTheFramesPixels)
{
    // 97 and 1501 pixels make rows that are not a multiple of 4 bytes;
    // 1501 x 130 makes several bands, the last one short.
    const std::int32_t bandRows = PngBandRows(1501);
    ASSERT_LT(2 * bandRows, 130);
    ASSERT_NE(130 % bandRows, 0);
    const Threads threads(2);
    for (const auto& [w, h] : {std::pair{1, 1}, std::pair{97, 61}, std::pair{1501, 130}}) {
        SCOPED_TRACE(testing::Message() << w << " x " << h);
        const FZImage image = TestImage(w, h);
        ByteVector png, ppm;
        ASSERT_TRUE(EncodePng(image, png));
        ExpectPicture(Decode(png, "PNG"), image);
        ExpectSoundPng(png, image);
        ASSERT_TRUE(EncodePpm(image, ppm));
        ExpectPicture(Decode(ppm, "PPM"), image);
    }
}

TEST(ImageFile, PngBytesAreTheSameAtEveryThreadCount)
{
    const FZImage image = TestImage(1501, 130);
    ByteVector one, three;
    {
        const Threads threads(1);
        ASSERT_TRUE(EncodePng(image, one));
    }
    const Threads threads(3);
    ASSERT_TRUE(EncodePng(image, three));
    EXPECT_EQ(one, three);
}

TEST(ImageFile, NothingIsMadeOfAStoppedEncodingOrAnImageOfAnotherDepth)
{
    const FZImage image = TestImage(1501, 130);
    ByteVector bytes{1, 2, 3};
    std::atomic<bool> stop{true};
    FZRenderWatch watch;
    watch.stop = &stop;
    SetRenderWatch(&watch);
    EXPECT_FALSE(EncodePng(image, bytes));
    SetRenderWatch(nullptr);
    EXPECT_TRUE(bytes.empty());

    bytes = {1, 2, 3};
    EXPECT_FALSE(EncodePpm(FZImage(), bytes));
    EXPECT_TRUE(bytes.empty());
}
