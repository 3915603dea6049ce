#include "dialogs/attribute_controls.h"

#include <algorithm>
#include <cstdint>

#include <QCheckBox>
#include <QPushButton>
#include <QScrollBar>

#include <tamerisk/fz_truncate.h>

#include "dialogs/color_choice.h"
#include "dialogs/color_swatch.h"
#include "dialogs/dialog_template.h"
#include "dialogs/language.h"
#include "dialogs/slider_value_tip.h"
#include "dialogs/templates.h"
#include "engine/display/canvas.h"

namespace {

constexpr int kSliderMax = kAttributeSliderMax;

std::uint8_t ColorByte(float v)
{
    return static_cast<std::uint8_t>(FZTruncateClamped(static_cast<double>(v) * 255.0, 0, 255));
}

// The slider position that shows a record value v in 0..1.
int Position(float v)
{
    return FZTruncate(static_cast<double>(v) * kSliderMax);
}

// One slider: which control, where it stands for a record, what a position
// in 0..1 (the position over 64) writes into the record, and the field as
// its tooltip names and shows it (the label's text; the value written, with
// the decimals it needs).
struct SliderField {
    int id;
    int (*position)(const FZAttributeEx&);
    void (*store)(FZAttributeEx&, float);
    const char* field;
    double (*written)(const FZAttributeEx&);
    int decimals = 2;
};

constexpr SliderField kSliders[] = {
    {kIdRed, [](const FZAttributeEx& a) { return a.color.r * kSliderMax / 255; },
     [](FZAttributeEx& a, float v) { a.color.r = ColorByte(v); },
     QT_TRANSLATE_NOOP("Tamerisk", "赤"), [](const FZAttributeEx& a) -> double { return a.color.r; }, 0},
    {kIdGreen, [](const FZAttributeEx& a) { return a.color.g * kSliderMax / 255; },
     [](FZAttributeEx& a, float v) { a.color.g = ColorByte(v); },
     QT_TRANSLATE_NOOP("Tamerisk", "緑"), [](const FZAttributeEx& a) -> double { return a.color.g; }, 0},
    {kIdBlue, [](const FZAttributeEx& a) { return a.color.b * kSliderMax / 255; },
     [](FZAttributeEx& a, float v) { a.color.b = ColorByte(v); },
     QT_TRANSLATE_NOOP("Tamerisk", "青"), [](const FZAttributeEx& a) -> double { return a.color.b; }, 0},
    {kIdAmbient, [](const FZAttributeEx& a) { return Position(a.ambient); },
     [](FZAttributeEx& a, float v) { a.ambient = v; },
     QT_TRANSLATE_NOOP("Tamerisk", "環境光反射率"), [](const FZAttributeEx& a) -> double { return a.ambient; }, 2},
    {kIdDiffuse, [](const FZAttributeEx& a) { return Position(a.diffuse); },
     [](FZAttributeEx& a, float v) { a.diffuse = v; },
     QT_TRANSLATE_NOOP("Tamerisk", "拡散反射率"), [](const FZAttributeEx& a) -> double { return a.diffuse; }, 2},
    {kIdHighlightStrength, [](const FZAttributeEx& a) { return Position(a.highlightStrength); },
     [](FZAttributeEx& a, float v) { a.highlightStrength = v; },
     QT_TRANSLATE_NOOP("Tamerisk", "強度"), [](const FZAttributeEx& a) -> double { return a.highlightStrength; }, 2},
    {kIdSpread,
     [](const FZAttributeEx& a) {
         return FZTruncate((1.0 - static_cast<double>(a.highlightSharpness)) * kSliderMax);
     },
     [](FZAttributeEx& a, float v) { a.highlightSharpness = static_cast<float>(1.0 - v); },
     QT_TRANSLATE_NOOP("Tamerisk", "広がり"), [](const FZAttributeEx& a) -> double { return 1.0 - static_cast<double>(a.highlightSharpness); }, 2},
    {kIdTransparency, [](const FZAttributeEx& a) { return Position(a.transparency); },
     [](FZAttributeEx& a, float v) { a.transparency = v; },
     QT_TRANSLATE_NOOP("Tamerisk", "透明度"), [](const FZAttributeEx& a) -> double { return a.transparency; }, 2},
    {kIdRefractiveIndex,
     [](const FZAttributeEx& a) {
         return FZTruncate(static_cast<double>(a.refractiveIndex) * kSliderMax / 2.0);
     },
     [](FZAttributeEx& a, float v) { a.refractiveIndex = static_cast<float>(2.0 * v); },
     QT_TRANSLATE_NOOP("Tamerisk", "屈折率"), [](const FZAttributeEx& a) -> double { return a.refractiveIndex; }, 2},
    {kIdEmission, [](const FZAttributeEx& a) { return Position(a.emission); },
     [](FZAttributeEx& a, float v) { a.emission = v; },
     QT_TRANSLATE_NOOP("Tamerisk", "発光率"), [](const FZAttributeEx& a) -> double { return a.emission; }, 2},
    {kIdReflection, [](const FZAttributeEx& a) { return Position(a.reflection); },
     [](FZAttributeEx& a, float v) { a.reflection = v; },
     QT_TRANSLATE_NOOP("Tamerisk", "映りこみ"), [](const FZAttributeEx& a) -> double { return a.reflection; }, 2},
};
static_assert(std::size(kSliders) == kAttributeSliderCount);

// What colour bind disables: the colour sliders, their labels and bitmaps,
// the surface swatch and the random colour buttons.
constexpr int kColorControls[] = {
    kIdRed, kIdGreen, kIdBlue, kIdRedLabel, kIdGreenLabel, kIdBlueLabel,
    kIdRedBitmap, kIdGreenBitmap, kIdBlueBitmap, kIdColorSwatch, kIdRandom, kIdRandomType,
};

const char* const kSwatchLabel = QT_TRANSLATE_NOOP("Tamerisk", "色選択");
constexpr int kSwatchFontHeight = 11;
constexpr int kHighlightSwatchFontHeight = 9;

// Paints a swatch of the colour, labelled "色選択", into the button, whose
// tooltip gives the colour's RGB values.
void DrawSwatch(const FZColor& color, int fontHeight, QWidget* button)
{
    CColorSwatch swatch;
    float r, g, b;
    color.GetFloats(r, g, b);
    swatch.SetColor(r, g, b);
    swatch.SetFontHeight(fontHeight);
    swatch.SetLabel(UiText(kSwatchLabel));
    swatch.Draw(button);
    button->setToolTip(ColorTipText(color));
}

} // namespace

FZAttributeEx WithSliderPosition(const FZAttributeEx& record, std::size_t slider, int position)
{
    double v = position / static_cast<double>(kSliderMax);
    v = v < 0.0 ? 0.0 : (v > 1.0 ? 1.0 : v);
    FZAttributeEx edited = record;
    kSliders[slider].store(edited, static_cast<float>(v));
    return edited;
}

QString SliderTip(const FZAttributeEx& record, std::size_t slider, int position)
{
    const SliderField& field = kSliders[slider];
    return ValueTipText(field.field, field.written(WithSliderPosition(record, slider, position)), field.decimals);
}

CAttributeControls::CAttributeControls(const DialogControls& built)
    : preview(built.Get<FZCanvas>(kIdPreview)),
      colorSwatch(built.Get<COwnerDrawButton>(kIdColorSwatch)),
      highlightSwatch(built.Get<COwnerDrawButton>(kIdHighlightSwatch)),
      random(built.Get<QPushButton>(kIdRandom)),
      randomType(built.Get<QPushButton>(kIdRandomType)),
      anisotropicParameter(built.Get<QPushButton>(kIdAnisotropicParameter)),
      rainbowParameter(built.Get<QPushButton>(kIdRainbowParameter)),
      transparencyParameter(built.Get<QPushButton>(kIdTransparencyParameter)),
      colorTransparency(built.Get<QCheckBox>(kIdColorTransparency)),
      smooth(built.Get<QCheckBox>(kIdSmooth)),
      anisotropic(built.Get<QCheckBox>(kIdAnisotropic)),
      rainbow(built.Get<QCheckBox>(kIdRainbow))
{
    for (std::size_t i = 0; i < kAttributeSliderCount; ++i)
        sliders[i] = built.Get<QScrollBar>(kSliders[i].id);
    for (int id : kColorControls)
        colorControls.push_back(built.Get<QWidget>(id));
}

void CAttributeControls::ShowRecord(const FZAttributeEx& record) const
{
    for (std::size_t i = 0; i < kAttributeSliderCount; ++i) {
        // The bar holds a position beyond its range at the nearer end.
        sliders[i]->setValue(kSliders[i].position(record));
    }
    SetButtonChecked(colorTransparency, record.colorTransparency != 0);
    SetButtonChecked(anisotropic, record.anisotropic != 0);
    SetButtonChecked(rainbow, record.rainbow != 0);
    SetButtonChecked(smooth, record.smoothHighlight != 0);
}

void CAttributeControls::EnableColorControls(int colorBind) const
{
    for (QWidget* control : colorControls)
        control->setEnabled(colorBind == 0);
}

void CAttributeControls::EnableParameterButtons(const FZAttributeEx& record) const
{
    anisotropicParameter->setEnabled(anisotropic->isChecked());
    rainbowParameter->setEnabled(rainbow->isChecked());
    transparencyParameter->setEnabled(record.transparency != 0.0f);
}

void CAttributeControls::DrawColorSwatch(const FZAttributeEx& record) const
{
    DrawSwatch(record.color, kSwatchFontHeight, colorSwatch);
}

void CAttributeControls::DrawHighlightSwatch(const FZAttributeEx& record) const
{
    DrawSwatch(record.highlightColor, kHighlightSwatchFontHeight, highlightSwatch);
}

bool CAttributeControls::SliderHeld() const
{
    return std::any_of(sliders.begin(), sliders.end(), [](const QScrollBar* bar) { return bar->isSliderDown(); });
}
