// The four dialog templates: the material dialog (4000) and the parameter
// dialogs for anisotropic reflection (4022), rainbow gloss (4026) and
// transparency (4027). Positions are dialog units; see dialog_template.h.
#ifndef TAMERISK_DIALOGS_TEMPLATES_H
#define TAMERISK_DIALOGS_TEMPLATES_H

#include "dialogs/dialog_template.h"

const DialogTemplate& AttributeDialogTemplate();     // 4000 "質感 ﾘﾓｺﾝ"
const DialogTemplate& AnisotropicDialogTemplate();   // 4022 "異方性反射"
const DialogTemplate& RainbowDialogTemplate();       // 4026 "虹色光沢"
const DialogTemplate& TransparencyDialogTemplate();  // 4027 "透明度"

// The control ids, named once: the tables below and the dialogs use these.
// The preview (4000) has the same id in every dialog.
inline constexpr int kIdPreview = 4000;

// The material dialog.
enum AttributeControlId : int {
    kIdColorSwatch = 4002,
    kIdHighlightSwatch = 4013,
    kIdRandom = 4014,
    kIdRandomType = 4021,
    kIdColorTransparency = 4034,
    kIdSmooth = 4020,
    kIdAnisotropic = 4016,
    kIdAnisotropicParameter = 4035,
    kIdRainbow = 4022,
    kIdRainbowParameter = 4036,
    kIdTransparencyParameter = 4037,
    kIdShapePrevious = 4024,
    kIdShapeNext = 4023,
    kIdLoad = 4017,
    kIdSave = 4015,
    kIdUpdate = 1017,
    kIdRed = 1020,
    kIdGreen = 1021,
    kIdBlue = 1022,
    kIdRedLabel = 1023,
    kIdGreenLabel = 1024,
    kIdBlueLabel = 1025,
    kIdAmbient = 1011,
    kIdDiffuse = 1010,
    kIdHighlightStrength = 1012,
    kIdSpread = 1013,
    kIdTransparency = 1014,
    kIdRefractiveIndex = 1015,
    kIdEmission = 1027,
    kIdReflection = 1026,
    kIdRedBitmap = 4010,
    kIdGreenBitmap = 4011,
    kIdBlueBitmap = 4012,
};

// The anisotropic reflection dialog.
namespace anisotropic_id {
enum : int {
    kConcentric = 4019,
    kWavyConcentric = 4021,
    kSpiral = 4022,
    kStraight = 4032,
    kWave = 4033,
    kWaveCountLabel = 4025,
    kWaveCount = 1028,
    kAmplitudeLabel = 4026,
    kAmplitude = 4024,
    kTwistLabel = 4028,
    kTwist = 4027,
    kDepth = 4031,
    kDiagram = 4038,
    kPreviousShape = 4030,
    kNextShape = 4029,
    kStraightAngleLabel = 4036,
    kStraightAngle = 4035,
    kWaveAmplitudeLabel = 4039,
    kWaveAmplitude = 4034,
    kWaveAngleLabel = 4040,
    kWaveAngle = 4037,
    kGrooveWidthLabel = 4042,
    kGrooveWidth = 1030,
};
} // namespace anisotropic_id

// The rainbow gloss dialog.
namespace rainbow_id {
enum : int {
    kSpacing = 4036,
    kPreviousShape = 4024,
    kNextShape = 4023,
};
} // namespace rainbow_id

// The transparency dialog.
namespace transparency_id {
enum : int {
    kIncidence = 4037,
    kAttenuation = 4038,
    kPreviousShape = 4024,
    kNextShape = 4023,
    kThinGlass = 4043,
    kThicknessLabel = 4044,
    kThickness = 4046,
};
} // namespace transparency_id

#endif
