#include "engine/display/canvas.h"

#include <algorithm>
#include <utility>

#include <QPainter>
#include <QTimer>

FZCanvas::FZCanvas(QWidget* parent) : QWidget(parent)
{
    // The canvas paints every pixel itself, so an update of the canvas never
    // needs the dialog beneath to repaint.
    setAttribute(Qt::WA_OpaquePaintEvent);
}

QSize FZCanvas::PixelSize() const
{
    const qreal ratio = devicePixelRatioF();
    return QSize(qRound(width() * ratio), qRound(height() * ratio));
}

void FZCanvas::FitSurface()
{
    const qreal ratio = devicePixelRatioF();
    if (surface.size() == PixelSize() && surface.devicePixelRatio() == ratio)
        return;
    QImage fitted(PixelSize(), QImage::Format_RGB888);
    fitted.fill(palette().color(QPalette::Window));
    if (!surface.isNull()) {
        QPainter painter(&fitted);
        surface.setDevicePixelRatio(1.0);
        painter.drawImage(QPoint(0, 0), surface);
    }
    fitted.setDevicePixelRatio(ratio);
    surface = fitted;
}

void FZCanvas::Blit(const QImage& source, const QRect& sourceRect, const QPoint& target)
{
    if (source.isNull() || width() <= 0 || height() <= 0)
        return;
    FitSurface();
    // Clip to the source, then to the surface, moving both ends together.
    QRect from = sourceRect.intersected(source.rect());
    QRect to(target + (from.topLeft() - sourceRect.topLeft()), from.size());
    const QRect clipped = to.intersected(QRect(QPoint(0, 0), surface.size()));
    from.translate(clipped.topLeft() - to.topLeft());
    from.setSize(clipped.size());
    if (clipped.isEmpty())
        return;
    // Pixels go to pixels: the surface is addressed in device pixels here.
    const qreal ratio = surface.devicePixelRatio();
    surface.setDevicePixelRatio(1.0);
    QPainter painter(&surface);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(clipped.topLeft(), source, from);
    painter.end();
    surface.setDevicePixelRatio(ratio);
    update();
}

namespace {

// The most a band of rows holds: its paint is a copy of this many bytes at
// most, a few milliseconds.
constexpr qsizetype kBandBytes = qsizetype{2} << 20;

} // namespace

void FZCanvas::Show(QImage picture, QRect changed)
{
    if (picture.size() != surface.size())
        changed = picture.rect();
    surface = std::move(picture);
    unpainted = unpainted.united(changed.intersected(surface.rect()));
    if (unpainted.isEmpty() || bandQueued)
        return;
    bandQueued = true;
    QTimer::singleShot(0, this, &FZCanvas::PaintNextBand);
}

void FZCanvas::PaintNextBand()
{
    bandQueued = false;
    if (unpainted.isEmpty())
        return;
    const qsizetype rowBytes = std::max<qsizetype>(surface.bytesPerLine(), 1);
    const int rows = static_cast<int>(std::clamp<qsizetype>(kBandBytes / rowBytes, 1, unpainted.height()));
    QRect band = unpainted;
    band.setHeight(rows);
    unpainted.setTop(band.bottom() + 1);
    const qreal ratio = surface.devicePixelRatio();
    const QRectF logical(band.x() / ratio, band.y() / ratio, band.width() / ratio, band.height() / ratio);
    repaint(logical.toAlignedRect());
    if (!unpainted.isEmpty()) {
        bandQueued = true;
        QTimer::singleShot(0, this, &FZCanvas::PaintNextBand);
    }
}

void FZCanvas::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    if (surface.isNull()) {
        painter.fillRect(rect(), palette().color(QPalette::Window));
        painter.setPen(palette().color(QPalette::Mid));
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
        return;
    }
    if (surface.size() != PixelSize())
        painter.fillRect(rect(), palette().color(QPalette::Window));
    // The surface carries the screen's pixel ratio: drawn one pixel to one.
    painter.drawImage(QPoint(0, 0), surface);
}
