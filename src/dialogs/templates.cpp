// The dialog tables. Controls the tables of the dialogs' descriptions give
// without a size (most labels, the spin buttons and their edits, the slider
// bitmaps) are sized and placed here so that their texts fit at the dialog
// font's 7 x 13 pixel base units.
#include "dialogs/templates.h"

namespace {

using K = ControlKind;

constexpr const char* kDialogFace = "ＭＳ Ｐゴシック";
constexpr int kDialogPoints = 9;

// Material dialog. Each slider has a 16 x 16 bitmap at its left and then its
// label; a bitmap stands one unit above its slider so both share a centre.
constexpr ControlTemplate kAttributeControls[] = {
    {K::GroupBox, kNoId, nullptr, 3, 1, 123, 77},
    {K::StaticBitmap, 4003, nullptr, 7, 9, 0, 0, kStyleNone, 4004},
    {K::Label, kNoId, "環境光反射率", 18, 10, 42, 8},
    {K::HScrollBar, 1011, nullptr, 61, 10, 48, 8},
    {K::StaticBitmap, 4004, nullptr, 7, 20, 0, 0, kStyleNone, 4005},
    {K::Label, kNoId, "拡散反射率", 18, 21, 42, 8},
    {K::HScrollBar, 1010, nullptr, 61, 21, 48, 8},
    {K::StaticBitmap, 4007, nullptr, 7, 32, 0, 0, kStyleNone, 4010},
    {K::Label, kNoId, "透明度", 18, 33, 42, 8},
    {K::HScrollBar, 1014, nullptr, 61, 33, 48, 8},
    {K::PushButton, 4037, ",,,", 112, 32, 9, 11},
    {K::StaticBitmap, 4008, nullptr, 7, 42, 0, 0, kStyleNone, 4012},
    {K::Label, kNoId, "屈折率", 18, 43, 42, 8},
    {K::HScrollBar, 1015, nullptr, 61, 43, 48, 8},
    {K::StaticBitmap, 4019, nullptr, 7, 53, 0, 0, kStyleNone, 4025},
    {K::Label, kNoId, "発光率", 18, 54, 42, 8},
    {K::HScrollBar, 1027, nullptr, 61, 54, 48, 8},
    {K::StaticBitmap, 4009, nullptr, 7, 64, 0, 0, kStyleNone, 4013},
    {K::Label, kNoId, "映りこみ", 18, 65, 42, 8},
    {K::HScrollBar, 1026, nullptr, 61, 65, 48, 8},

    {K::GroupBox, kNoId, "色", 128, 1, 76, 77},
    {K::StaticBitmap, 4010, nullptr, 132, 11, 0, 0, kStyleNone, 4015},
    {K::Label, 1023, "赤", 143, 12, 8, 8},
    {K::HScrollBar, 1020, nullptr, 152, 12, 48, 8},
    {K::StaticBitmap, 4011, nullptr, 132, 22, 0, 0, kStyleNone, 4016},
    {K::Label, 1024, "緑", 143, 23, 8, 8},
    {K::HScrollBar, 1021, nullptr, 152, 23, 48, 8},
    {K::StaticBitmap, 4012, nullptr, 132, 33, 0, 0, kStyleNone, 4017},
    {K::Label, 1025, "青", 143, 34, 8, 8},
    {K::HScrollBar, 1022, nullptr, 152, 34, 48, 8},
    {K::OwnerDrawnButton, 4002, nullptr, 138, 45, 28, 27},
    {K::PushButton, 4014, "ﾗﾝﾀﾞﾑ", 170, 56, 21, 16},
    {K::PushButton, 4021, ">", 192, 56, 8, 16},
    {K::AutoCheckBox, 4034, "透明色", 159, 72, 37, 8, kStyleHidden},

    {K::GroupBox, kNoId, "ﾊｲﾗｲﾄ", 3, 81, 117, 63},
    {K::OwnerDrawnButton, 4013, "色", 7, 90, 25, 25},
    {K::StaticBitmap, 4005, nullptr, 34, 93, 0, 0, kStyleNone, 4007},
    {K::Label, kNoId, "強度", 44, 94, 21, 8},
    {K::HScrollBar, 1012, nullptr, 66, 94, 48, 8},
    {K::StaticBitmap, 4006, nullptr, 34, 104, 0, 0, kStyleNone, 4009},
    {K::Label, kNoId, "広がり", 44, 105, 21, 8},
    {K::HScrollBar, 1013, nullptr, 66, 105, 48, 8},
    {K::AutoCheckBox, 4020, "ｽﾑｰｽﾞ", 7, 120, 34, 8},
    {K::AutoCheckBox, 4016, "異方性反射", 58, 119, 45, 8},
    {K::PushButton, 4035, ",,,", 105, 117, 9, 11},
    {K::AutoCheckBox, 4022, "虹色光沢", 58, 132, 45, 8},
    {K::PushButton, 4036, ",,,", 105, 129, 9, 11},

    {K::StaticFrame, 4000, nullptr, 124, 85, 35, 38},
    {K::PushButton, 4024, "<-", 128, 127, 12, 12},
    {K::PushButton, 4023, "->", 142, 127, 12, 12},
    {K::PushButton, 4017, "開く", 162, 86, 18, 15},
    {K::PushButton, 4015, "保存", 181, 86, 18, 15},
    {K::DefaultPushButton, 1017, "更新", 162, 120, 39, 22},
};

// Anisotropic reflection dialog.
constexpr ControlTemplate kAnisotropicControls[] = {
    {K::PushButton, 1, "OK", 83, 150, 39, 18},
    {K::PushButton, 2, "ｷｬﾝｾﾙ", 127, 150, 39, 18},
    {K::GroupBox, kNoId, "ﾀｲﾌﾟ", 6, 6, 90, 111},
    {K::AutoRadioButton, 4019, "同心円", 17, 19, 37, 8},
    {K::AutoRadioButton, 4021, "波形同心円", 17, 33, 50, 8},
    {K::Label, 4025, "波の数", 35, 47, 22, 8},
    {K::NumberEdit, 1027, nullptr, 59, 45, 18, 12},
    {K::SpinButton, 1028, nullptr, 77, 45, 10, 12, kStyleNone, 1027},
    {K::Label, 4026, "振幅", 35, 59, 20, 8},
    {K::HScrollBar, 4024, nullptr, 35, 68, 48, 8},
    {K::AutoRadioButton, 4022, "渦巻き", 17, 81, 35, 8},
    {K::Label, 4028, "渦巻きの回転角", 35, 93, 50, 8},
    {K::HScrollBar, 4027, nullptr, 35, 102, 48, 8},
    {K::Label, kNoId, "溝の深さ", 13, 126, 28, 8},
    {K::HScrollBar, 4031, nullptr, 42, 126, 48, 8},
    {K::StaticFrame, 4038, nullptr, 102, 9, 96, 108},
    {K::StaticFrame, 4000, nullptr, 207, 9, 34, 39},
    {K::PushButton, 4030, "<-", 211, 51, 12, 12},
    {K::PushButton, 4029, "->", 225, 51, 12, 12},
    {K::AutoRadioButton, 4032, "直線", 178, 108, 30, 9, kStyleHidden},
    {K::AutoRadioButton, 4033, "波型", 111, 45, 30, 9, kStyleHidden},
    {K::Label, 4036, "角度", 195, 119, 20, 8, kStyleHidden},
    {K::HScrollBar, 4035, nullptr, 196, 128, 48, 8, kStyleHidden},
    {K::Label, 4039, "振幅", 129, 56, 20, 8, kStyleHidden},
    {K::HScrollBar, 4034, nullptr, 129, 66, 48, 8, kStyleHidden},
    {K::Label, 4040, "角度", 129, 78, 20, 8, kStyleHidden},
    {K::HScrollBar, 4037, nullptr, 129, 87, 48, 8, kStyleHidden},
    {K::Label, 4042, "溝の幅", 196, 86, 22, 8, kStyleHidden},
    {K::NumberEdit, 1029, nullptr, 219, 84, 18, 12, kStyleHidden},
    {K::SpinButton, 1030, nullptr, 237, 84, 10, 12, kStyleHidden, 1029},
};

// Rainbow gloss dialog.
constexpr ControlTemplate kRainbowControls[] = {
    {K::PushButton, 1, "OK", 15, 47, 39, 18},
    {K::PushButton, 2, "ｷｬﾝｾﾙ", 57, 47, 39, 18},
    {K::Label, kNoId, "縞模様の間隔", 10, 8, 60, 8},
    {K::Label, kNoId, "広い", 10, 23, 16, 8},
    {K::HScrollBar, 4036, nullptr, 27, 23, 47, 8},
    {K::Label, kNoId, "狭い", 78, 23, 16, 8},
    {K::StaticFrame, 4000, nullptr, 110, 6, 34, 39},
    {K::PushButton, 4024, "<-", 114, 48, 12, 12},
    {K::PushButton, 4023, "->", 128, 48, 12, 12},
};

// Transparency dialog.
constexpr ControlTemplate kTransparencyControls[] = {
    {K::PushButton, 1, "OK", 38, 72, 39, 18},
    {K::PushButton, 2, "ｷｬﾝｾﾙ", 80, 72, 39, 18},
    {K::Label, kNoId, "入射角依存率", 9, 9, 44, 8},
    {K::HScrollBar, 4037, nullptr, 55, 9, 47, 8},
    {K::Label, kNoId, "減衰率", 30, 24, 24, 8},
    {K::HScrollBar, 4038, nullptr, 55, 24, 47, 8},
    {K::StaticFrame, 4000, nullptr, 117, 6, 34, 39},
    {K::PushButton, 4024, "<-", 121, 48, 12, 12},
    {K::PushButton, 4023, "->", 135, 48, 12, 12},
    {K::AutoCheckBox, 4043, "薄板ｶﾞﾗｽ", 112, 9, 44, 10, kStyleHidden},
    {K::Label, 4044, "厚さ", 113, 25, 16, 8, kStyleHidden},
    {K::NumberEdit, 4045, nullptr, 130, 23, 18, 12, kStyleHidden},
    {K::SpinButton, 4046, nullptr, 148, 23, 9, 12, kStyleHidden, 4045},
};

} // namespace

const DialogTemplate& AttributeDialogTemplate()
{
    static const DialogTemplate t{4000, "質感 ﾘﾓｺﾝ", 207, 147, kDialogFace, kDialogPoints,
                                  kAttributeControls};
    return t;
}

const DialogTemplate& AnisotropicDialogTemplate()
{
    static const DialogTemplate t{4022, "異方性反射", 249, 177, kDialogFace, kDialogPoints,
                                  kAnisotropicControls};
    return t;
}

const DialogTemplate& RainbowDialogTemplate()
{
    static const DialogTemplate t{4026, "虹色光沢", 153, 73, kDialogFace, kDialogPoints,
                                  kRainbowControls};
    return t;
}

const DialogTemplate& TransparencyDialogTemplate()
{
    static const DialogTemplate t{4027, "透明度", 159, 97, kDialogFace, kDialogPoints,
                                  kTransparencyControls};
    return t;
}
