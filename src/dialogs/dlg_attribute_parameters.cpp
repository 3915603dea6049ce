// Each function constructs its dialog without a parent, hands it the copies,
// runs it modally and reads them back: the record after OK only, the sample
// shape whichever way the dialog ended.
#include "dialogs/dlg_attribute_parameters.h"

#include "dialogs/dialog_template.h"
#include "dialogs/dlg_anisotropic.h"
#include "dialogs/dlg_rainbow_highlight.h"
#include "dialogs/dlg_transparency.h"

namespace {

template <typename Dialog>
int RunParameterDialog(FZAttributeEx& record, int colorBind, int& sampleShape)
{
    Dialog dialog;
    dialog.SetAttribute(record, colorBind);
    dialog.SetSampleShape(sampleShape);
    const bool ok = dialog.exec() == QDialog::Accepted;
    if (ok)
        dialog.GetAttribute(record);
    sampleShape = dialog.SampleShape();
    return ok ? kIdOk : kIdCancel;
}

} // namespace

int RunAnisotropicParameterDialog(FZAttributeEx& record, int colorBind, int& sampleShape)
{
    return RunParameterDialog<CDlgAnisotropic>(record, colorBind, sampleShape);
}

int RunRainbowParameterDialog(FZAttributeEx& record, int colorBind, int& sampleShape)
{
    return RunParameterDialog<CDlgRainbowHighlight>(record, colorBind, sampleShape);
}

int RunTransparencyParameterDialog(FZAttributeEx& record, int colorBind, int& sampleShape)
{
    return RunParameterDialog<CDlgTransparency>(record, colorBind, sampleShape);
}
