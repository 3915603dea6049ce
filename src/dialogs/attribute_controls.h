// The material editor's controls, typed, and how they show a record: the
// eleven sliders with the field each one writes, the four check boxes, the
// colour controls that colour bind disables, and the two colour swatches.
#ifndef TAMERISK_DIALOGS_ATTRIBUTE_CONTROLS_H
#define TAMERISK_DIALOGS_ATTRIBUTE_CONTROLS_H

#include <array>
#include <cstddef>
#include <vector>

#include <QString>

#include <tamerisk/attribute.h>

class COwnerDrawButton;
class DialogControls;
class FZCanvas;
class QCheckBox;
class QPushButton;
class QScrollBar;
class QWidget;

inline constexpr int kAttributeSliderMax = 64;
inline constexpr std::size_t kAttributeSliderCount = 11;

// Slider `slider` (in the order red, green, blue, ambient, diffuse, highlight
// strength, spread, transparency, refractive index, emission, reflection)
// moved to `position`: the record with the field it writes, from the
// position over 64 held within 0 to 1.
FZAttributeEx WithSliderPosition(const FZAttributeEx& record, std::size_t slider, int position);
// The tooltip of slider `slider` at `position` over the record: the field
// it writes and the value written there, "拡散反射率 0.80".
QString SliderTip(const FZAttributeEx& record, std::size_t slider, int position);

// The controls of one editor window, resolved once from what its template
// built. The widgets belong to the window.
struct CAttributeControls {
    explicit CAttributeControls(const DialogControls& built);

    // Every slider and check box shows the record (UpdateControlsFromAttribute).
    void ShowRecord(const FZAttributeEx& record) const;
    // Colour bind 0 enables the colour controls, any other value disables them.
    void EnableColorControls(int colorBind) const;
    // Each parameter button is usable while its effect is on (",,," of
    // transparency while the material is transparent at all).
    void EnableParameterButtons(const FZAttributeEx& record) const;
    // The surface and highlight swatches, labelled "色選択", with their RGB
    // values in their tooltips.
    void DrawColorSwatch(const FZAttributeEx& record) const;
    void DrawHighlightSwatch(const FZAttributeEx& record) const;
    // Whether the user holds a slider's thumb: a drag is in progress.
    bool SliderHeld() const;

    std::array<QScrollBar*, kAttributeSliderCount> sliders{};  // in the order above
    FZCanvas* preview;
    COwnerDrawButton* colorSwatch;
    COwnerDrawButton* highlightSwatch;
    QPushButton* random;
    QPushButton* randomType;
    QPushButton* anisotropicParameter;
    QPushButton* rainbowParameter;
    QPushButton* transparencyParameter;
    QCheckBox* colorTransparency;
    QCheckBox* smooth;
    QCheckBox* anisotropic;
    QCheckBox* rainbow;
    std::vector<QWidget*> colorControls;
};

#endif
