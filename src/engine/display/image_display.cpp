#include "engine/display/image_display.h"

#include <vector>

#include <QRect>

#include "engine/display/canvas.h"
#include "engine/image.h"
#include "engine/parallel.h"
#include "engine/scene.h"

namespace {

bool HoldsRgbRows(const FZImage& image)
{
    return !image.data.empty() && image.width > 0 && image.height > 0 && image.stride >= std::int64_t{image.width} * 3
           && static_cast<std::int64_t>(image.data.size()) >= std::int64_t{image.stride} * image.height;
}

} // namespace

QImage MakeBitmap(const FZImage& image)
{
    if (!HoldsRgbRows(image))
        return QImage();
    // Wrap the rows as they lie (blue, green, red; padded stride), then take
    // an upright deep copy: the buffer's first row is the picture's bottom.
    const QImage rows(image.data.data(), image.width, image.height, image.stride,
                      QImage::Format_BGR888);
    return rows.mirrored(false, true).convertToFormat(QImage::Format_RGB888);
}

QImage MakeScreenBitmap(const FZImage& image, QSize size)
{
    if (!HoldsRgbRows(image) || size.isEmpty())
        return QImage();
    QImage screen(size, QImage::Format_RGB32);
    if (screen.isNull())
        return QImage();
    std::vector<std::int32_t> columns(static_cast<std::size_t>(size.width()));
    for (std::int32_t x = 0; x < size.width(); ++x)
        columns[static_cast<std::size_t>(x)]
            = static_cast<std::int32_t>(std::int64_t{x} * image.width / size.width()) * 3;
    // Taken once: scanLine() on the row threads would each touch the image.
    uchar* const lines = screen.bits();
    const qsizetype lineBytes = screen.bytesPerLine();
    // Line 0 is the picture's top, the image's last data row.
    ParallelCopyRows(0, size.height(), std::int64_t{size.width()} * 4, [&](std::int32_t line) {
        const auto from = static_cast<std::int32_t>(std::int64_t{line} * image.height / size.height());
        const std::uint8_t* row = image.PixelAddress(0, image.height - 1 - from);
        auto* out = reinterpret_cast<QRgb*>(lines + line * lineBytes);
        for (std::size_t x = 0; x < columns.size(); ++x) {
            const std::uint8_t* p = row + columns[x];
            out[x] = qRgb(p[2], p[1], p[0]);
        }
    });
    return screen;
}

void PresentFrame(const FZScene& scene, QWidget* target)
{
    auto* canvas = qobject_cast<FZCanvas*>(target);
    if (canvas == nullptr || scene.frame == nullptr)
        return;
    const QImage bitmap = MakeBitmap(*scene.frame);
    if (!bitmap.isNull())
        canvas->Blit(bitmap, bitmap.rect(), QPoint(0, 0));
}
