// Each function constructs its dialog over the editor (its parent), hands it the copies,
// runs it modally and reads them back: the record after OK only, the sample
// shape whichever way the dialog ended.
#include "dialogs/dlg_attribute_parameters.h"

#include "dialogs/dialog_template.h"
#include "dialogs/dlg_anisotropic.h"
#include "dialogs/dlg_rainbow_highlight.h"
#include "dialogs/dlg_transparency.h"
#include "dialogs/modal_window.h"

namespace {

template <typename Dialog>
std::optional<int> RunParameterDialog(QWidget* editor, FZAttributeEx& record, int colorBind, int& sampleShape)
{
    CModalWindow<Dialog> dialog(editor, editor);
    dialog->SetAttribute(record, colorBind);
    dialog->SetSampleShape(sampleShape);
    const std::optional<int> answer = dialog.Exec();
    if (!answer)
        return std::nullopt;
    const bool ok = *answer == QDialog::Accepted;
    if (ok)
        dialog->GetAttribute(record);
    sampleShape = dialog->SampleShape();
    return ok ? kIdOk : kIdCancel;
}

} // namespace

std::optional<int> RunAnisotropicParameterDialog(QWidget* editor, FZAttributeEx& record, int colorBind,
                                                 int& sampleShape)
{
    return RunParameterDialog<CDlgAnisotropic>(editor, record, colorBind, sampleShape);
}

std::optional<int> RunRainbowParameterDialog(QWidget* editor, FZAttributeEx& record, int colorBind,
                                             int& sampleShape)
{
    return RunParameterDialog<CDlgRainbowHighlight>(editor, record, colorBind, sampleShape);
}

std::optional<int> RunTransparencyParameterDialog(QWidget* editor, FZAttributeEx& record, int colorBind,
                                                  int& sampleShape)
{
    return RunParameterDialog<CDlgTransparency>(editor, record, colorBind, sampleShape);
}
