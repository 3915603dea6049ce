#include "dialogs/dlg_parameter.h"

#include <QPushButton>
#include <QScrollBar>

#include "dialogs/dialog_template.h"
#include "dialogs/templates.h"

namespace {

constexpr int kShapeCount = 4;

} // namespace

int NextSampleShape(int shape)
{
    return shape >= kShapeCount ? 1 : shape + 1;
}

int PreviousSampleShape(int shape)
{
    return shape <= 1 ? kShapeCount : shape - 1;
}

CParameterDialog::CParameterDialog(const DialogTemplate& t, int previousShapeId,
                                   int nextShapeId, QWidget* parent)
    : QDialog(parent)
{
    BuildDialog(*this, t);
    auto onClick = [this](int id, void (CParameterDialog::*handler)()) {
        if (auto* button = DlgItem<QPushButton>(this, id))
            connect(button, &QPushButton::clicked, this, handler);
    };
    onClick(kIdOk, &CParameterDialog::accept);
    onClick(kIdCancel, &CParameterDialog::reject);
    onClick(previousShapeId, &CParameterDialog::OnButtonSampleShapePrevious);
    onClick(nextShapeId, &CParameterDialog::OnButtonSampleShapeNext);
}

void CParameterDialog::SetAttribute(const FZAttributeEx& attribute, int bind)
{
    record = attribute;
    colorBind = bind;
}

void CParameterDialog::SetSampleShape(int shape)
{
    sampleShape = shape;
}

void CParameterDialog::GetAttribute(FZAttributeEx& attribute) const
{
    attribute = record;
}

void CParameterDialog::Refresh()
{
    // A frame that could not be rendered is not shown; the last one stays.
    if (preview.ApplyMaterial(record, colorBind) == FZResult::Ok
        && preview.BuildSampleShape(sampleShape) == FZResult::Ok)
        preview.Present(GetDlgItem(this, kIdPreview));
}

void CParameterDialog::SetUpPreview()
{
    // A failed set-up leaves the preview blank; the dialog works without it.
    static_cast<void>(preview.SetUp(GetDlgItem(this, kIdPreview)));
}

void CParameterDialog::SetScrollBar(QScrollBar* bar, int maximum, int position)
{
    if (bar == nullptr)
        return;
    bar->setRange(0, maximum);
    bar->setValue(position);
}

void CParameterDialog::showEvent(QShowEvent* event)
{
    if (!initialised) {
        initialised = true;
        OnInitDialog();
    }
    QDialog::showEvent(event);
}

void CParameterDialog::paintEvent(QPaintEvent*)
{
    Refresh();
}

void CParameterDialog::OnButtonSampleShapePrevious()
{
    sampleShape = PreviousSampleShape(sampleShape);
    Refresh();
}

void CParameterDialog::OnButtonSampleShapeNext()
{
    sampleShape = NextSampleShape(sampleShape);
    Refresh();
}
