#include "engine/display/canvas.h"

#include <QPainter>

FZCanvas::FZCanvas(QWidget* parent) : QWidget(parent)
{
    // The canvas paints every pixel itself, so an update of the canvas never
    // needs the dialog beneath to repaint (the dialogs redraw their previews
    // from their own paint handlers).
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void FZCanvas::FitSurface()
{
    if (surface.size() == size())
        return;
    QImage fitted(size(), QImage::Format_RGB888);
    fitted.fill(palette().color(QPalette::Window));
    if (!surface.isNull()) {
        QPainter painter(&fitted);
        painter.drawImage(QPoint(0, 0), surface);
    }
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
    const QRect clipped = to.intersected(surface.rect());
    from.translate(clipped.topLeft() - to.topLeft());
    from.setSize(clipped.size());
    if (clipped.isEmpty())
        return;
    QPainter painter(&surface);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(clipped.topLeft(), source, from);
    painter.end();
    update(clipped);
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
    if (surface.size() != size())
        painter.fillRect(rect(), palette().color(QPalette::Window));
    painter.drawImage(QPoint(0, 0), surface);
}
