// The dialog tables. Controls the tables of the dialogs' descriptions give
// without a size (most labels, the spin buttons and their edits, the slider
// bitmaps) are sized and placed here so that their texts fit at the dialog
// font's 7 x 13 pixel base units. A number edit and its spin button make
// one spin box over both their rectangles.
#include "dialogs/templates.h"

#include <QtGlobal>

namespace {

using K = ControlKind;

constexpr const char* kDialogFace = "ＭＳ Ｐゴシック";
constexpr int kDialogPoints = 9;

// Material dialog. Each slider has a 16 x 16 bitmap at its left and then its
// label; a bitmap stands one unit above its slider so both share a centre.
constexpr ControlTemplate kAttributeControls[] = {
    {K::GroupBox, kNoId, nullptr, 3, 1, 123, 77},
    {K::StaticBitmap, 4003, nullptr, 7, 9, 0, 0, kStyleNone, 4004},
    {K::Label, kNoId, QT_TRANSLATE_NOOP("Tamerisk", "環境光反射率"), 18, 10, 42, 8},
    {K::HScrollBar, kIdAmbient, nullptr, 61, 10, 48, 8},
    {K::StaticBitmap, 4004, nullptr, 7, 20, 0, 0, kStyleNone, 4005},
    {K::Label, kNoId, QT_TRANSLATE_NOOP("Tamerisk", "拡散反射率"), 18, 21, 42, 8},
    {K::HScrollBar, kIdDiffuse, nullptr, 61, 21, 48, 8},
    {K::StaticBitmap, 4007, nullptr, 7, 32, 0, 0, kStyleNone, 4010},
    {K::Label, kNoId, QT_TRANSLATE_NOOP("Tamerisk", "透明度"), 18, 33, 42, 8},
    {K::HScrollBar, kIdTransparency, nullptr, 61, 33, 48, 8},
    {K::PushButton, kIdTransparencyParameter, ",,,", 112, 32, 9, 11},
    {K::StaticBitmap, 4008, nullptr, 7, 42, 0, 0, kStyleNone, 4012},
    {K::Label, kNoId, QT_TRANSLATE_NOOP("Tamerisk", "屈折率"), 18, 43, 42, 8},
    {K::HScrollBar, kIdRefractiveIndex, nullptr, 61, 43, 48, 8},
    {K::StaticBitmap, 4019, nullptr, 7, 53, 0, 0, kStyleNone, 4025},
    {K::Label, kNoId, QT_TRANSLATE_NOOP("Tamerisk", "発光率"), 18, 54, 42, 8},
    {K::HScrollBar, kIdEmission, nullptr, 61, 54, 48, 8},
    {K::StaticBitmap, 4009, nullptr, 7, 64, 0, 0, kStyleNone, 4013},
    {K::Label, kNoId, QT_TRANSLATE_NOOP("Tamerisk", "映りこみ"), 18, 65, 42, 8},
    {K::HScrollBar, kIdReflection, nullptr, 61, 65, 48, 8},

    {K::GroupBox, kNoId, QT_TRANSLATE_NOOP("Tamerisk", "色"), 128, 1, 76, 77},
    {K::StaticBitmap, kIdRedBitmap, nullptr, 132, 11, 0, 0, kStyleNone, 4015},
    {K::Label, kIdRedLabel, QT_TRANSLATE_NOOP("Tamerisk", "赤"), 143, 12, 8, 8},
    {K::HScrollBar, kIdRed, nullptr, 152, 12, 48, 8},
    {K::StaticBitmap, kIdGreenBitmap, nullptr, 132, 22, 0, 0, kStyleNone, 4016},
    {K::Label, kIdGreenLabel, QT_TRANSLATE_NOOP("Tamerisk", "緑"), 143, 23, 8, 8},
    {K::HScrollBar, kIdGreen, nullptr, 152, 23, 48, 8},
    {K::StaticBitmap, kIdBlueBitmap, nullptr, 132, 33, 0, 0, kStyleNone, 4017},
    {K::Label, kIdBlueLabel, QT_TRANSLATE_NOOP("Tamerisk", "青"), 143, 34, 8, 8},
    {K::HScrollBar, kIdBlue, nullptr, 152, 34, 48, 8},
    {K::OwnerDrawnButton, kIdColorSwatch, nullptr, 138, 45, 28, 27},
    {K::PushButton, kIdRandom, QT_TRANSLATE_NOOP("Tamerisk", "ﾗﾝﾀﾞﾑ"), 170, 56, 21, 16},
    {K::PushButton, kIdRandomType, ">", 192, 56, 8, 16},
    {K::AutoCheckBox, kIdColorTransparency, QT_TRANSLATE_NOOP("Tamerisk", "透明色"), 159, 72, 37, 8, kStyleHidden},

    {K::GroupBox, kNoId, QT_TRANSLATE_NOOP("Tamerisk", "ﾊｲﾗｲﾄ"), 3, 81, 117, 63},
    {K::OwnerDrawnButton, kIdHighlightSwatch, QT_TRANSLATE_NOOP("Tamerisk", "色"), 7, 90, 25, 25},
    {K::StaticBitmap, 4005, nullptr, 34, 93, 0, 0, kStyleNone, 4007},
    {K::Label, kNoId, QT_TRANSLATE_NOOP("Tamerisk", "強度"), 44, 94, 21, 8},
    {K::HScrollBar, kIdHighlightStrength, nullptr, 66, 94, 48, 8},
    {K::StaticBitmap, 4006, nullptr, 34, 104, 0, 0, kStyleNone, 4009},
    {K::Label, kNoId, QT_TRANSLATE_NOOP("Tamerisk", "広がり"), 44, 105, 21, 8},
    {K::HScrollBar, kIdSpread, nullptr, 66, 105, 48, 8},
    {K::AutoCheckBox, kIdSmooth, QT_TRANSLATE_NOOP("Tamerisk", "ｽﾑｰｽﾞ"), 7, 120, 34, 8},
    {K::AutoCheckBox, kIdAnisotropic, QT_TRANSLATE_NOOP("Tamerisk", "異方性反射"), 58, 119, 45, 8},
    {K::PushButton, kIdAnisotropicParameter, ",,,", 105, 117, 9, 11},
    {K::AutoCheckBox, kIdRainbow, QT_TRANSLATE_NOOP("Tamerisk", "虹色光沢"), 58, 132, 45, 8},
    {K::PushButton, kIdRainbowParameter, ",,,", 105, 129, 9, 11},

    {K::StaticFrame, kIdPreview, nullptr, 124, 85, 35, 38},
    {K::PushButton, kIdShapePrevious, "<-", 128, 127, 12, 12},
    {K::PushButton, kIdShapeNext, "->", 142, 127, 12, 12},
    {K::PushButton, kIdLoad, QT_TRANSLATE_NOOP("Tamerisk", "開く"), 162, 86, 18, 15},
    {K::PushButton, kIdSave, QT_TRANSLATE_NOOP("Tamerisk", "保存"), 181, 86, 18, 15},
    {K::DefaultPushButton, kIdUpdate, QT_TRANSLATE_NOOP("Tamerisk", "更新"), 162, 120, 39, 22},
};

// Anisotropic reflection dialog.
namespace an = anisotropic_id;
constexpr ControlTemplate kAnisotropicControls[] = {
    {K::PushButton, kIdOk, "OK", 83, 150, 39, 18},
    {K::PushButton, kIdCancel, QT_TRANSLATE_NOOP("Tamerisk", "ｷｬﾝｾﾙ"), 127, 150, 39, 18},
    {K::GroupBox, kNoId, QT_TRANSLATE_NOOP("Tamerisk", "ﾀｲﾌﾟ"), 6, 6, 90, 111},
    {K::AutoRadioButton, an::kConcentric, QT_TRANSLATE_NOOP("Tamerisk", "同心円"), 17, 19, 37, 8},
    {K::AutoRadioButton, an::kWavyConcentric, QT_TRANSLATE_NOOP("Tamerisk", "波形同心円"), 17, 33, 50, 8},
    {K::Label, an::kWaveCountLabel, QT_TRANSLATE_NOOP("Tamerisk", "波の数"), 35, 47, 22, 8},
    {K::SpinBox, an::kWaveCount, nullptr, 59, 45, 28, 12},
    {K::Label, an::kAmplitudeLabel, QT_TRANSLATE_NOOP("Tamerisk", "振幅"), 35, 59, 20, 8},
    {K::HScrollBar, an::kAmplitude, nullptr, 35, 68, 48, 8},
    {K::AutoRadioButton, an::kSpiral, QT_TRANSLATE_NOOP("Tamerisk", "渦巻き"), 17, 81, 35, 8},
    {K::Label, an::kTwistLabel, QT_TRANSLATE_NOOP("Tamerisk", "渦巻きの回転角"), 35, 93, 50, 8},
    {K::HScrollBar, an::kTwist, nullptr, 35, 102, 48, 8},
    {K::Label, kNoId, QT_TRANSLATE_NOOP("Tamerisk", "溝の深さ"), 13, 126, 28, 8},
    {K::HScrollBar, an::kDepth, nullptr, 42, 126, 48, 8},
    {K::StaticFrame, an::kDiagram, nullptr, 102, 9, 96, 108},
    {K::StaticFrame, kIdPreview, nullptr, 207, 9, 34, 39},
    {K::PushButton, an::kPreviousShape, "<-", 211, 51, 12, 12},
    {K::PushButton, an::kNextShape, "->", 225, 51, 12, 12},
    {K::AutoRadioButton, an::kStraight, QT_TRANSLATE_NOOP("Tamerisk", "直線"), 178, 108, 30, 9, kStyleHidden},
    {K::AutoRadioButton, an::kWave, QT_TRANSLATE_NOOP("Tamerisk", "波型"), 111, 45, 30, 9, kStyleHidden},
    {K::Label, an::kStraightAngleLabel, QT_TRANSLATE_NOOP("Tamerisk", "角度"), 195, 119, 20, 8, kStyleHidden},
    {K::HScrollBar, an::kStraightAngle, nullptr, 196, 128, 48, 8, kStyleHidden},
    {K::Label, an::kWaveAmplitudeLabel, QT_TRANSLATE_NOOP("Tamerisk", "振幅"), 129, 56, 20, 8, kStyleHidden},
    {K::HScrollBar, an::kWaveAmplitude, nullptr, 129, 66, 48, 8, kStyleHidden},
    {K::Label, an::kWaveAngleLabel, QT_TRANSLATE_NOOP("Tamerisk", "角度"), 129, 78, 20, 8, kStyleHidden},
    {K::HScrollBar, an::kWaveAngle, nullptr, 129, 87, 48, 8, kStyleHidden},
    {K::Label, an::kGrooveWidthLabel, QT_TRANSLATE_NOOP("Tamerisk", "溝の幅"), 196, 86, 22, 8, kStyleHidden},
    {K::SpinBox, an::kGrooveWidth, nullptr, 219, 84, 28, 12, kStyleHidden},
};

// Rainbow gloss dialog.
constexpr ControlTemplate kRainbowControls[] = {
    {K::PushButton, kIdOk, "OK", 15, 47, 39, 18},
    {K::PushButton, kIdCancel, QT_TRANSLATE_NOOP("Tamerisk", "ｷｬﾝｾﾙ"), 57, 47, 39, 18},
    {K::Label, kNoId, QT_TRANSLATE_NOOP("Tamerisk", "縞模様の間隔"), 10, 8, 60, 8},
    {K::Label, kNoId, QT_TRANSLATE_NOOP("Tamerisk", "広い"), 10, 23, 16, 8},
    {K::HScrollBar, rainbow_id::kSpacing, nullptr, 27, 23, 47, 8},
    {K::Label, kNoId, QT_TRANSLATE_NOOP("Tamerisk", "狭い"), 78, 23, 16, 8},
    {K::StaticFrame, kIdPreview, nullptr, 110, 6, 34, 39},
    {K::PushButton, rainbow_id::kPreviousShape, "<-", 114, 48, 12, 12},
    {K::PushButton, rainbow_id::kNextShape, "->", 128, 48, 12, 12},
};

// Transparency dialog.
namespace tr = transparency_id;
constexpr ControlTemplate kTransparencyControls[] = {
    {K::PushButton, kIdOk, "OK", 38, 72, 39, 18},
    {K::PushButton, kIdCancel, QT_TRANSLATE_NOOP("Tamerisk", "ｷｬﾝｾﾙ"), 80, 72, 39, 18},
    {K::Label, kNoId, QT_TRANSLATE_NOOP("Tamerisk", "入射角依存率"), 9, 9, 44, 8},
    {K::HScrollBar, tr::kIncidence, nullptr, 55, 9, 47, 8},
    {K::Label, kNoId, QT_TRANSLATE_NOOP("Tamerisk", "減衰率"), 30, 24, 24, 8},
    {K::HScrollBar, tr::kAttenuation, nullptr, 55, 24, 47, 8},
    {K::StaticFrame, kIdPreview, nullptr, 117, 6, 34, 39},
    {K::PushButton, tr::kPreviousShape, "<-", 121, 48, 12, 12},
    {K::PushButton, tr::kNextShape, "->", 135, 48, 12, 12},
    {K::AutoCheckBox, tr::kThinGlass, QT_TRANSLATE_NOOP("Tamerisk", "薄板ｶﾞﾗｽ"), 112, 9, 44, 10, kStyleHidden},
    {K::Label, tr::kThicknessLabel, QT_TRANSLATE_NOOP("Tamerisk", "厚さ"), 113, 25, 16, 8, kStyleHidden},
    {K::SpinBox, tr::kThickness, nullptr, 130, 23, 27, 12, kStyleHidden},
};

} // namespace

const DialogTemplate& AttributeDialogTemplate()
{
    static const DialogTemplate t{4000, QT_TRANSLATE_NOOP("Tamerisk", "質感 ﾘﾓｺﾝ"), 207, 147, kDialogFace, kDialogPoints,
                                  kAttributeControls};
    return t;
}

const DialogTemplate& AnisotropicDialogTemplate()
{
    static const DialogTemplate t{4022, QT_TRANSLATE_NOOP("Tamerisk", "異方性反射"), 249, 177, kDialogFace, kDialogPoints,
                                  kAnisotropicControls};
    return t;
}

const DialogTemplate& RainbowDialogTemplate()
{
    static const DialogTemplate t{4026, QT_TRANSLATE_NOOP("Tamerisk", "虹色光沢"), 153, 73, kDialogFace, kDialogPoints,
                                  kRainbowControls};
    return t;
}

const DialogTemplate& TransparencyDialogTemplate()
{
    static const DialogTemplate t{4027, QT_TRANSLATE_NOOP("Tamerisk", "透明度"), 159, 97, kDialogFace, kDialogPoints,
                                  kTransparencyControls};
    return t;
}
