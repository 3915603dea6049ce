#include "dialogs/anisotropy_diagram.h"

#include <cmath>

#include <QPainter>

#include "engine/fz_math.h"

namespace {

const QColor kPatternColor(180, 180, 180);
const QColor kAxisColor(120, 120, 120);
const QColor kMarkColor(255, 255, 0);

constexpr int kRadialStep = 4;                  // pixels between rings, arms' points, lines
constexpr double kRingStep = 0.034908433;       // 2 degrees
constexpr double kArmStep = 0.17454217;         // 10 degrees
constexpr int kMarkRadius = 6;

// A centre far outside the unit square asks for rings out to its distance;
// rings stop at this radius (some twenty diagram widths) so that a bad
// record cannot stall the dialog. No centre a user can click comes near it.
constexpr int kMaxRadius = 4096;
// Device coordinates are held within this box before they reach the
// painter. With radii held as above, only points of a centre that lies
// further out still are moved, and they stay far outside the picture.
constexpr int kFar = 1 << 22;

// Draws polylines point by point, as a pen that moves and draws to, in
// pattern coordinates: truncated toward zero, then flipped so that y grows
// upwards (unless the pattern asks for device coordinates).
class DiagramPen {
public:
    DiagramPen(QPainter& painter, int height, bool flip)
        : painter(painter), height(height), flip(flip)
    {
    }

    void MoveTo(double x, double y) { current = Device(x, y); }
    void LineTo(double x, double y)
    {
        const QPoint next = Device(x, y);
        painter.drawLine(current, next);
        current = next;
    }

private:
    QPoint Device(double x, double y) const
    {
        const int dx = FZTruncateClamped(x, -kFar, kFar);
        const int dy = FZTruncateClamped(y, -kFar, kFar);
        return QPoint(dx, flip ? height - dy : dy);
    }

    QPainter& painter;
    int height;
    bool flip;
    QPoint current;
};

struct PatternFrame {
    int width;
    int height;
    int cx;         // centre in pixels, y upwards
    int cy;
    double reach;   // distance from the centre to the furthest corner
};

PatternFrame FrameFor(const FZAnisotropy& pattern, int width, int height)
{
    PatternFrame f{width, height, 0, 0, 0.0};
    f.cx = FZTruncateClamped(width * static_cast<double>(pattern.center[0]), -kFar, kFar);
    f.cy = FZTruncateClamped(height * static_cast<double>(pattern.center[1]), -kFar, kFar);
    const double left = f.cx;
    const double right = static_cast<double>(width) - f.cx;
    const double bottom = f.cy;
    const double top = static_cast<double>(height) - f.cy;
    const double farthest = FZMax(FZMax(left * left + bottom * bottom, left * left + top * top),
                                  FZMax(right * right + bottom * bottom, right * right + top * top));
    f.reach = std::sqrt(farthest);
    return f;
}

// Calls ring(r) for r = 4, 8, ... up to the reach.
template <typename Ring>
void ForEachRadius(const PatternFrame& f, Ring ring)
{
    const double last = FZMin(f.reach, static_cast<double>(kMaxRadius));
    for (int r = kRadialStep; r <= last; r += kRadialStep)
        ring(r);
}

// Calls point(a) for a = 0, step, 2 step, ... while a <= limit.
template <typename Point>
void ForEachAngle(double step, double limit, Point point)
{
    for (int i = 0;; ++i) {
        const double a = i * step;
        if (a > limit)
            break;
        point(a);
    }
}

void DrawCircles(DiagramPen& pen, const PatternFrame& f)
{
    ForEachRadius(f, [&](int r) {
        pen.MoveTo(f.cx + r, f.cy);
        ForEachAngle(kRingStep, kFZTwoPi + kRingStep, [&](double a) {
            pen.LineTo(f.cx + r * std::cos(a), f.cy + r * std::sin(a));
        });
    });
}

// Rings whose radius swings waveCount times round the turn, each wave a
// sine over its share of the circle.
void DrawWavyCircles(DiagramPen& pen, const PatternFrame& f, const FZAnisotropy& pattern)
{
    // The dialog reads at least one wave from its spin; a picture asked for
    // with fewer shows one.
    const double segment = kFZTwoPi / FZMax(pattern.waveCount, 1);
    ForEachRadius(f, [&](int r) {
        const double h = r * segment * static_cast<double>(pattern.amplitude);
        pen.MoveTo(f.cx + r, f.cy);
        ForEachAngle(kRingStep, kFZTwoPi + kRingStep, [&](double a) {
            const int k = FZTruncate(a / segment);
            const double fraction = (a - k * segment) / segment;
            const double rho = r + h * std::sin(kFZTwoPi * fraction);
            pen.LineTo(f.cx + rho * std::cos(a), f.cy + rho * std::sin(a));
        });
    });
}

// Arms from the centre every 10 degrees, each turning by spiralTwist
// (hundredths of a degree) per pixel of radius.
void DrawSpiral(DiagramPen& pen, const PatternFrame& f, const FZAnisotropy& pattern)
{
    const double twist = static_cast<double>(pattern.spiralTwist);
    ForEachAngle(kArmStep, kArmStep + kFZTwoPi, [&](double phi) {
        pen.MoveTo(f.cx, f.cy);
        ForEachRadius(f, [&](int r) {
            const double theta = phi + r * twist * kFZPi / 180.0 * 100.0;
            pen.LineTo(f.cx + r * std::cos(theta), f.cy + r * std::sin(theta));
        });
    });
}

// Parallel lines as long as the diagonal, turned by -angle about (W/2, W/2):
// the pivot uses the half width for both coordinates, so on a diagram taller
// than wide the pattern turns about a point above the middle.
void DrawStraightLines(DiagramPen& pen, const PatternFrame& f, const FZAnisotropy& pattern)
{
    const double diagonal = std::sqrt(static_cast<double>(f.width) * f.width
                                      + static_cast<double>(f.height) * f.height);
    const double theta = -static_cast<double>(pattern.angle) * kFZPi / 180.0;
    const double c = std::cos(theta);
    const double s = std::sin(theta);
    const int pivot = f.width / 2;
    const double half = diagonal / 2.0;
    auto line = [&](int v) {
        pen.MoveTo(-half * c - v * s + pivot, -half * s + v * c + pivot);
        pen.LineTo(half * c - v * s + pivot, half * s + v * c + pivot);
    };
    for (int v = 0; -v <= half; v -= kRadialStep)
        line(v);
    for (int v = 0; v <= half; v += kRadialStep)
        line(v);
}

void DrawPatternLines(QPainter& painter, const PatternFrame& f, const FZAnisotropy& pattern)
{
    const bool straight = pattern.type == 4;
    DiagramPen pen(painter, f.height, !straight);
    switch (pattern.type) {
    case 1:
        DrawCircles(pen, f);
        break;
    case 2:
        DrawWavyCircles(pen, f, pattern);
        break;
    case 3:
        DrawSpiral(pen, f, pattern);
        break;
    case 4:
        DrawStraightLines(pen, f, pattern);
        break;
    default:  // the wave pattern and unknown types have no picture
        break;
    }
}

void DrawAxes(QPainter& painter, int width, int height)
{
    painter.drawLine(0, height / 2, width, height / 2);
    painter.drawLine(width / 2, 0, width / 2, height);
}

void DrawCenterMark(QPainter& painter, const PatternFrame& f)
{
    // The mark's box runs from cx - 6 to cx + 6 without its right and bottom
    // edge; Qt's outline covers one pixel beyond a rectangle's width, so the
    // rectangle is one pixel narrower than the box.
    const int size = 2 * kMarkRadius - 1;
    painter.drawEllipse(QRect(f.cx - kMarkRadius, f.height - f.cy - kMarkRadius, size, size));
}

// A solid pen one pixel wide that, like a drawn-to line, leaves out the
// line's last pixel: the next segment starts there.
QPen ThinPen(const QColor& color)
{
    return QPen(color, 1, Qt::SolidLine, Qt::FlatCap);
}

} // namespace

QImage DrawAnisotropyPattern(const FZAnisotropy& pattern, int width, int height)
{
    if (width < 1 || height < 1)
        return QImage();
    QImage picture(width, height, QImage::Format_RGB888);
    picture.fill(Qt::white);
    const PatternFrame frame = FrameFor(pattern, width, height);

    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setClipRect(picture.rect());

    painter.setPen(ThinPen(kPatternColor));
    DrawPatternLines(painter, frame, pattern);

    painter.setPen(ThinPen(kAxisColor));
    DrawAxes(painter, width, height);

    if (pattern.type >= 1 && pattern.type <= 3) {
        painter.setPen(ThinPen(Qt::black));
        painter.setBrush(kMarkColor);
        DrawCenterMark(painter, frame);
    }
    return picture;
}
