// What the three parameter dialogs ("異方性反射", "虹色光沢", "透明度") share:
// a modal dialog built from its template that edits its own copy of a
// material record and shows it on a preview panel of its own (control 4000),
// with "<-" and "->" stepping through the four sample shapes.
//
// The caller hands in the record with the colour-bind flag, then the sample
// shape, runs the dialog with exec(), and reads back the record (after OK
// only: Cancel discards it) and the sample shape (always):
//
//     CDlgRainbowHighlight dialog;
//     dialog.SetAttribute(record, colorBind);
//     dialog.SetSampleShape(shape);
//     if (dialog.exec() == QDialog::Accepted)
//         dialog.GetAttribute(record);
//     shape = dialog.SampleShape();
//
// The record is current after every change, so OK only ends the dialog;
// Esc and the close box cancel it. Initialisation (OnInitDialog) runs when
// the window is first shown, that is after the caller has handed everything
// in. The preview renders when the record or the shape changes; painting
// only shows the frame.
#ifndef TAMERISK_DIALOGS_DLG_PARAMETER_H
#define TAMERISK_DIALOGS_DLG_PARAMETER_H

#include <QDialog>

#include <tamerisk/attribute.h>

#include "dialogs/dialog_template.h"
#include "preview/preview_panel.h"

class FZCanvas;
class QScrollBar;

// The next and previous sample shape: "->" wraps from above 4 to 1, "<-"
// from below 1 to 4. Any number a caller handed in steps without overflow.
int NextSampleShape(int shape);
int PreviousSampleShape(int shape);

class CParameterDialog : public QDialog {
    Q_OBJECT

public:
    void SetAttribute(const FZAttributeEx& attribute, int colorBind);
    void SetSampleShape(int shape);
    void GetAttribute(FZAttributeEx& attribute) const;
    const FZAttributeEx& Attribute() const { return record; }
    int SampleShape() const { return sampleShape; }

protected:
    // Builds the template's controls and connects OK, Cancel and the two
    // sample shape buttons.
    CParameterDialog(const DialogTemplate& t, int previousShapeId, int nextShapeId,
                     QWidget* parent);

    // Record to controls, and the preview set up; runs once.
    virtual void OnInitDialog() = 0;
    // The record changed: the preview shows the material again. Dialogs
    // that draw more extend it.
    virtual void Refresh();

    // Builds the preview's scene and shows the record on the sample shape.
    void SetUpPreview();

    // Sets the bar's range and its position, held within that range.
    static void SetScrollBar(QScrollBar* bar, int maximum, int position);

    void showEvent(QShowEvent* event) override;

    DialogControls controls;  // what the template built, for typed look-ups
    int colorBind = 0;
    FZAttributeEx record;
    CPreviewPanel preview;
    int sampleShape = 1;

private:
    void OnButtonSampleShapePrevious();
    void OnButtonSampleShapeNext();
    void ShowSampleShape(int shape);

    FZCanvas* previewControl = nullptr;
    bool initialised = false;
};

#endif
