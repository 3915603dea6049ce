// Where the material dialog opens its three parameter dialogs ("異方性反射",
// "虹色光沢", "透明度"). Each function runs its dialog modally over the
// editor (its parent, on the editor's screen), on the record, colour-bind flag and sample shape handed in:
//   * it returns kIdOk or kIdCancel;
//   * `record` is changed only when it returns kIdOk;
//   * `sampleShape` comes back as the dialog left it, whichever way it ended.
// When `editor` is destroyed while the dialog runs, the dialog goes with it
// and the function returns nothing, leaving both untouched.
#ifndef TAMERISK_DIALOGS_DLG_ATTRIBUTE_PARAMETERS_H
#define TAMERISK_DIALOGS_DLG_ATTRIBUTE_PARAMETERS_H

#include <optional>

#include <tamerisk/attribute.h>

class QWidget;

using ParameterDialogRun = std::optional<int> (*)(QWidget* editor, FZAttributeEx& record, int colorBind,
                                                  int& sampleShape);

std::optional<int> RunAnisotropicParameterDialog(QWidget* editor, FZAttributeEx& record, int colorBind,
                                                 int& sampleShape);
std::optional<int> RunRainbowParameterDialog(QWidget* editor, FZAttributeEx& record, int colorBind,
                                             int& sampleShape);
std::optional<int> RunTransparencyParameterDialog(QWidget* editor, FZAttributeEx& record, int colorBind,
                                                  int& sampleShape);

#endif
