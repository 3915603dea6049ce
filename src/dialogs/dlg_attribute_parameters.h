// Where the material dialog opens its three parameter dialogs ("異方性反射",
// "虹色光沢", "透明度"). Each function runs its dialog modally, without a
// parent, on the record, colour-bind flag and sample shape handed in:
//   * it returns kIdOk or kIdCancel;
//   * `record` is changed only when it returns kIdOk;
//   * `sampleShape` comes back as the dialog left it, whichever way it ended.
#ifndef TAMERISK_DIALOGS_DLG_ATTRIBUTE_PARAMETERS_H
#define TAMERISK_DIALOGS_DLG_ATTRIBUTE_PARAMETERS_H

#include <tamerisk/attribute.h>

int RunAnisotropicParameterDialog(FZAttributeEx& record, int colorBind, int& sampleShape);
int RunRainbowParameterDialog(FZAttributeEx& record, int colorBind, int& sampleShape);
int RunTransparencyParameterDialog(FZAttributeEx& record, int colorBind, int& sampleShape);

#endif
