#include "dialogs/color_swatch.h"

#include <QPainter>

#include <tamerisk/fz_truncate.h>

#include "dialogs/dialog_template.h"

namespace {

float Unit(float v)
{
    return v < 0.0f ? 0.0f : (v > 1.0f ? 1.0f : v);
}

int Byte(float v)
{
    return FZTruncateClamped(static_cast<double>(v) * 255.0, 0, 255);
}

} // namespace

void CColorSwatch::SetColor(float red, float green, float blue)
{
    color[0] = Unit(red);
    color[1] = Unit(green);
    color[2] = Unit(blue);
}

void CColorSwatch::SetFontHeight(int pixels)
{
    fontHeight = pixels < 1 ? 1 : pixels;
}

QColor CColorSwatch::FillColor() const
{
    return QColor(Byte(color[0]), Byte(color[1]), Byte(color[2]));
}

QColor CColorSwatch::LabelColor() const
{
    const QColor fill = FillColor();
    return fill.red() + fill.green() + fill.blue() < 360 ? QColor(Qt::white) : QColor(Qt::black);
}

void CColorSwatch::Paint(QPainter& painter, const QRect& rect) const
{
    painter.fillRect(rect, FillColor());
    painter.setFont(JapaneseFont("ＭＳ ゴシック", fontHeight));
    painter.setPen(LabelColor());
    painter.drawText(rect, Qt::AlignCenter | Qt::TextSingleLine, label);
}

void CColorSwatch::Draw(QWidget* window) const
{
    auto* button = qobject_cast<COwnerDrawButton*>(window);
    if (button == nullptr)
        return;
    button->SetPainter([swatch = *this](QPainter& painter, const QRect& rect) {
        swatch.Paint(painter, rect);
    });
    button->update();
}
