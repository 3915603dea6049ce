// FZCanvas: the widget that pictures are drawn into (the preview control and
// the pattern diagram). Drawing into it stores the pixels in its surface, an
// image of the widget's size in device pixels (twice the logical size on a
// screen at 200 %), and schedules a repaint; paintEvent only shows the
// surface, pixel for pixel. Before anything was drawn it shows a thin grey
// frame.
#ifndef TAMERISK_ENGINE_DISPLAY_CANVAS_H
#define TAMERISK_ENGINE_DISPLAY_CANVAS_H

#include <QImage>
#include <QWidget>

class FZCanvas : public QWidget {
    Q_OBJECT

public:
    explicit FZCanvas(QWidget* parent = nullptr);

    // Copies `source` (from `sourceRect`) to `target` of the surface, all in
    // device pixels; the parts outside either image are clipped away. Then
    // repaints.
    void Blit(const QImage& source, const QRect& sourceRect, const QPoint& target);

    // Shows `picture` as the whole surface, as it is (device pixels, with
    // the picture's own pixel ratio): a picture already in the screen's
    // format is painted without a conversion, and nothing is copied here.
    // Only `changed` (device pixels; all of it for a picture of another
    // size) differs from the surface before, and only it is painted again,
    // a band of rows at a time, each band in a pass of the event loop of its
    // own: no single paint of a picture the size of a screen holds up the
    // window.
    void Show(QImage picture, QRect changed);

    // What is shown: empty until the first draw.
    const QImage& Surface() const { return surface; }
    // The widget's size in device pixels.
    QSize PixelSize() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    // Makes the surface the widget's size, keeping what it held.
    void FitSurface();
    // Paints the top band of the rows still to be painted.
    void PaintNextBand();

    QImage surface;
    QRect unpainted;  // of the surface, in device pixels
    bool bandQueued = false;
};

#endif
