// CColorSwatch: paints one colour swatch, a button filled with a colour and
// labelled in the middle. Short-lived: the material dialog builds one from
// the record whenever it redraws and draws it into the swatch button, which
// keeps showing it until the next draw.
#ifndef TAMERISK_DIALOGS_COLOR_SWATCH_H
#define TAMERISK_DIALOGS_COLOR_SWATCH_H

#include <QColor>
#include <QString>

class QPainter;
class QRect;
class QWidget;

class CColorSwatch {
public:
    // Each value is held within [0, 1].
    void SetColor(float red, float green, float blue);
    // Character height of the label in pixels; below 1 becomes 1.
    void SetFontHeight(int pixels);
    void SetLabel(const QString& text) { label = text; }

    // Hands the swatch to an owner-drawn button (COwnerDrawButton), which
    // repaints with it; any other or a null window draws nothing.
    void Draw(QWidget* window) const;
    // Fills the rectangle and writes the label centred on one line.
    void Paint(QPainter& painter, const QRect& rect) const;

    // The fill: each float times 255, truncated.
    QColor FillColor() const;
    // White on a fill whose bytes add up to less than 360, else black.
    QColor LabelColor() const;
    int FontHeight() const { return fontHeight; }

private:
    float color[3] = {1.0f, 1.0f, 1.0f};
    int fontHeight = 11;
    QString label;
};

#endif
