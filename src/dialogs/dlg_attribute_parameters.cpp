// The parameter dialogs do not exist yet: until they do, their buttons change
// nothing (the functions end as Cancel would, leaving record and shape).
// Each function is the one place to construct its dialog, hand it the copies,
// run it and read them back.
#include "dialogs/dlg_attribute_parameters.h"

#include "dialogs/dialog_template.h"

int RunAnisotropicParameterDialog(FZAttributeEx&, int, int&)
{
    return kIdCancel;
}

int RunRainbowParameterDialog(FZAttributeEx&, int, int&)
{
    return kIdCancel;
}

int RunTransparencyParameterDialog(FZAttributeEx&, int, int&)
{
    return kIdCancel;
}
