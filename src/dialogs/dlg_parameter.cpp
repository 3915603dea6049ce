#include "dialogs/dlg_parameter.h"

#include <QPushButton>
#include <QScrollBar>
#include <QScreen>
#include <QWindow>

#include "dialogs/templates.h"
#include "engine/display/canvas.h"

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
    : QDialog(parent), controls(BuildDialog(*this, t)),
      previewControl(controls.Get<FZCanvas>(kIdPreview))
{
    auto onClick = [this](int id, void (CParameterDialog::*handler)()) {
        connect(controls.Get<QPushButton>(id), &QPushButton::clicked, this, handler);
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
    if (preview.ApplyMaterial(record, colorBind) == FZResult::Ok)
        preview.Present(previewControl);
}

void CParameterDialog::SetUpPreview()
{
    // A failed set-up leaves the preview blank; the dialog works without it.
    if (preview.SetUp(previewControl, sampleShape) == FZResult::Ok)
        Refresh();
}

void CParameterDialog::SetScrollBar(QScrollBar* bar, int maximum, int position)
{
    bar->setRange(0, maximum);
    bar->setValue(position);
}

void CParameterDialog::showEvent(QShowEvent* event)
{
    if (!initialised) {
        initialised = true;
        OnInitDialog();
        // Moved to a screen of another density, the preview is made again
        // at the new resolution.
        if (QWindow* window = windowHandle())
            connect(window, &QWindow::screenChanged, this, [this] {
                if (!preview.FitsControl(previewControl))
                    SetUpPreview();
            });
    }
    QDialog::showEvent(event);
}

void CParameterDialog::ShowSampleShape(int shape)
{
    sampleShape = shape;
    if (preview.BuildSampleShape(sampleShape) == FZResult::Ok)
        preview.Present(previewControl);
}

void CParameterDialog::OnButtonSampleShapePrevious()
{
    ShowSampleShape(PreviousSampleShape(sampleShape));
}

void CParameterDialog::OnButtonSampleShapeNext()
{
    ShowSampleShape(NextSampleShape(sampleShape));
}
