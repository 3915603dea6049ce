// Editing in the material editor: the sliders, the check boxes, the colour
// pickers and random colours, the parameter dialogs, the sample shapes, undo
// and redo, and "更新", which tells the host.
#include <QAction>
#include <QCheckBox>
#include <QColorDialog>
#include <QCoreApplication>
#include <QMenu>
#include <QPushButton>
#include <QScrollBar>

#include "dialogs/color_choice.h"
#include "dialogs/dialog_template.h"
#include "dialogs/dlg_attribute_p.h"
#include "dialogs/dlg_attribute_parameters.h"
#include "dialogs/large_preview.h"
#include "dialogs/material_history.h"
#include "dialogs/modal_window.h"
#include "dialogs/random_color.h"
#include "engine/display/canvas.h"
#include "preview/preview_panel.h"

namespace {

constexpr int kShapeCount = 4;

} // namespace

void CDlgAttributePrivate::OnButtonUpdate()
{
    if (notifyWindow.isNull()) {
        ShowMessage(UiText(QT_TRANSLATE_NOOP("Tamerisk", "送信相手がいない。")));
        return;
    }
    QEvent notification(static_cast<QEvent::Type>(notifyMessage));
    QCoreApplication::sendEvent(notifyWindow.data(), &notification);
}

void CDlgAttributePrivate::OnHScroll(std::size_t slider, int position)
{
    Edit(WithSliderPosition(attribute, slider, position), ControlSync::Keep);
}

void CDlgAttributePrivate::Edit(const FZAttributeEx& edited, ControlSync sync)
{
    const FZAttributeEx before = attribute;
    attribute = edited;
    if (sync == ControlSync::FromRecord)
        UpdateControlsFromAttribute();
    ReDraw();
    history->Record(before, attribute);
}

void CDlgAttributePrivate::ShowRecord(const FZAttributeEx& record)
{
    attribute = record;
    UpdatePanelView();
}

void CDlgAttributePrivate::UpdatePanelView()
{
    if (!created)
        return;
    UpdateControlsFromAttribute();
    SetColorControlsOnOff();
    ReDraw();
}

void CDlgAttributePrivate::UpdateControlsFromAttribute()
{
    controls->ShowRecord(attribute);
}

void CDlgAttributePrivate::SetColorControlsOnOff()
{
    controls->EnableColorControls(colorBind);
}

void CDlgAttributePrivate::UpdateEnabling()
{
    controls->EnableParameterButtons(attribute);
}

void CDlgAttributePrivate::ReDraw()
{
    ShowMaterial(attribute);
    UpdateEnabling();
}

void CDlgAttributePrivate::ShowMaterial(const FZAttributeEx& shown)
{
    // A frame that could not be rendered is not shown; the last one stays.
    if (preview->ApplyMaterial(shown, colorBind) == FZResult::Ok)
        preview->Present(controls->preview);
    controls->DrawColorSwatch(shown);
    controls->DrawHighlightSwatch(shown);
    if (largePreview)
        largePreview->ShowMaterial(shown, colorBind, sampleShape, controls->SliderHeld());
}

void CDlgAttributePrivate::ShowSampleShape(int shape)
{
    sampleShape = shape;
    // The sample layer keeps its material: one render shows the new shape.
    if (preview->BuildSampleShape(sampleShape) == FZResult::Ok)
        preview->Present(controls->preview);
    if (largePreview)
        largePreview->ShowMaterial(attribute, colorBind, sampleShape);
}

void CDlgAttributePrivate::ChooseColor(FZColor FZAttributeEx::*field)
{
    CModalWindow<QColorDialog> picker(q, q);
    // While the picker is open the previews and swatches show each colour it
    // shows; the record stays as it is until OK.
    SetUpColorPicker(*picker, attribute.*field, [this, field](const FZColor& colour) {
        FZAttributeEx shown = attribute;
        shown.*field = colour;
        ShowMaterial(shown);
    });
    const std::optional<int> answer = picker.Exec();
    if (!answer)
        return;
    if (*answer != QDialog::Accepted) {
        ReDraw();  // Cancel: the record's colour again
        return;
    }
    // The whole choice is one edit.
    FZAttributeEx edited = attribute;
    edited.*field = ChosenColor(*picker);
    Edit(edited, ControlSync::FromRecord);
}

void CDlgAttributePrivate::OnButtonColor()
{
    ChooseColor(&FZAttributeEx::color);
}

void CDlgAttributePrivate::OnButtonHighlightColor()
{
    ChooseColor(&FZAttributeEx::highlightColor);
}

void CDlgAttributePrivate::OnButtonColorRandom()
{
    FZAttributeEx edited = attribute;
    float rgb[3];
    DrawFamilyColor(randomFamily, edited.color, rgb);
    edited.color.SetFloats(rgb);
    Edit(edited, ControlSync::FromRecord);
}

void CDlgAttributePrivate::OnButtonColorRandomType()
{
    const QWidget* button = controls->randomType;
    const QPoint topLeft = button->mapToGlobal(QPoint(0, 0));
    const int left = topLeft.x();
    const int top = topLeft.y();
    const int right = left + button->width();
    const int bottom = top + button->height();
    RandomButtonSubMenu(QPoint((left + right) / 2, (top + bottom) / 2));
}

void CDlgAttributePrivate::OnContextMenu(const QPoint& globalPos)
{
    const QWidget* random = controls->random;
    // The button's window rectangle, its right and bottom edges included.
    const QPoint topLeft = random->mapToGlobal(QPoint(0, 0));
    if (globalPos.x() >= topLeft.x() && globalPos.x() <= topLeft.x() + random->width()
        && globalPos.y() >= topLeft.y() && globalPos.y() <= topLeft.y() + random->height())
        RandomButtonSubMenu(globalPos);
}

void CDlgAttributePrivate::RandomButtonSubMenu(const QPoint& globalPos)
{
    CModalWindow<QMenu> menu(q, q);
    for (const FamilyMenuItem& item : FamilyMenuItems()) {
        QAction* action = menu->addAction(UiText(item.text));
        action->setData(kFamilyCommandBase + item.family);
        action->setCheckable(true);
        action->setChecked(item.family == randomFamily);
        if (item.family == kFamilyAll)
            menu->addSeparator();
    }
    // Choosing a family draws no colour; the next "ﾗﾝﾀﾞﾑ" does.
    if (const std::optional<QAction*> chosen = menu.Exec(globalPos); chosen && *chosen)
        randomFamily = (*chosen)->data().toInt() - kFamilyCommandBase;
}

void CDlgAttributePrivate::OnCheckAnisotropic()
{
    FZAttributeEx edited = attribute;
    edited.anisotropic = controls->anisotropic->isChecked() ? 1 : 0;
    Edit(edited, ControlSync::Keep);
}

void CDlgAttributePrivate::OnCheckRainbowHighlight()
{
    FZAttributeEx edited = attribute;
    edited.rainbow = controls->rainbow->isChecked() ? 1 : 0;
    Edit(edited, ControlSync::Keep);
}

void CDlgAttributePrivate::OnCheckHighlightSmooth()
{
    FZAttributeEx edited = attribute;
    edited.smoothHighlight = controls->smooth->isChecked() ? 1 : 0;
    if (edited.smoothHighlight != 0)
        edited.smoothWidth = 2.0f;
    Edit(edited, ControlSync::Keep);
}

void CDlgAttributePrivate::OnCheckColorTransparency()
{
    // Stored for the host; nothing on the preview depends on it, but it is
    // an edit like any other.
    FZAttributeEx edited = attribute;
    edited.colorTransparency = controls->colorTransparency->isChecked() ? 1 : 0;
    Edit(edited, ControlSync::Keep);
}

void CDlgAttributePrivate::OpenParameterDialog(ParameterDialogRun run)
{
    FZAttributeEx copy = attribute;
    int shape = preview->ShapeNumber();
    const std::optional<int> answer = run(q, copy, colorBind, shape);
    if (!answer)
        return;  // the editor is gone
    if (shape != preview->ShapeNumber())
        ShowSampleShape(shape);
    else
        sampleShape = shape;
    if (*answer == kIdOk)
        Edit(copy, ControlSync::FromRecord);
}

void CDlgAttributePrivate::OnButtonAnisotropicParameter()
{
    OpenParameterDialog(RunAnisotropicParameterDialog);
}

void CDlgAttributePrivate::OnButtonRainbowHighlightParameter()
{
    OpenParameterDialog(RunRainbowParameterDialog);
}

void CDlgAttributePrivate::OnButtonTransparencyParameter()
{
    OpenParameterDialog(RunTransparencyParameterDialog);
}

void CDlgAttributePrivate::OnButtonSampleShapePrevious()
{
    ShowSampleShape(sampleShape - 1 < 1 ? kShapeCount : sampleShape - 1);
}

void CDlgAttributePrivate::OnButtonSampleShapeNext()
{
    ShowSampleShape(sampleShape + 1 > kShapeCount ? 1 : sampleShape + 1);
}
