#include "dialogs/color_choice.h"

namespace {

FZColor FromQColor(const QColor& c)
{
    FZColor color;
    color.SetBytes(static_cast<std::uint8_t>(c.red()), static_cast<std::uint8_t>(c.green()),
                   static_cast<std::uint8_t>(c.blue()));
    return color;
}

} // namespace

void SetUpColorPicker(QColorDialog& picker, const FZColor& start, std::function<void(const FZColor&)> show)
{
    // Qt's own picker, which always shows the custom colour part.
    picker.setOption(QColorDialog::DontUseNativeDialog);
    picker.setCurrentColor(QColor(start.r, start.g, start.b));
    QObject::connect(&picker, &QColorDialog::currentColorChanged, &picker,
                     [show = std::move(show)](const QColor& c) { show(FromQColor(c)); });
}

FZColor ChosenColor(const QColorDialog& picker)
{
    return FromQColor(picker.selectedColor());
}

QString ColorTipText(const FZColor& color)
{
    return QStringLiteral("RGB %1, %2, %3").arg(color.r).arg(color.g).arg(color.b);
}
