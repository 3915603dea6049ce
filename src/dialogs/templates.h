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

// Control ids of the material dialog.
enum AttributeControlId : int {
    kIdPreview = 4000,
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

#endif
