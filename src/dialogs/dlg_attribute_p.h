// The inside of CDlgAttribute (tamerisk/dlg_attribute.h): everything one
// editor holds and does. The public class only forwards to it, so that the
// class a host links against keeps its size and layout whatever changes here.
//
// Its work is spread over files by concept:
//   dlg_attribute.cpp           the public class, the window's life (creation,
//                               initialisation, events, putting it away)
//   dlg_attribute_edit.cpp      editing: sliders, check boxes, colours,
//                               random colours, parameter dialogs, sample
//                               shapes, undo and redo, "更新"
//   dlg_attribute_transfer.cpp  materials in and out: files, the clipboard,
//                               dropped files, messages, the large preview
#ifndef TAMERISK_DIALOGS_DLG_ATTRIBUTE_P_H
#define TAMERISK_DIALOGS_DLG_ATTRIBUTE_P_H

#include <cstddef>
#include <memory>

#include <QPointer>
#include <QString>

#include <tamerisk/attribute.h>
#include <tamerisk/dlg_attribute.h>

#include "dialogs/attribute_controls.h"
#include "dialogs/dlg_attribute_parameters.h"
#include "dialogs/language.h"
#include "material/result_codes.h"

class CEditHistory;
class CLargePreview;
class CPreviewPanel;
class DialogControls;
class QEvent;
class QPoint;

class CDlgAttributePrivate {
public:
    CDlgAttributePrivate(CDlgAttribute* q, QWidget* notifyWindow, unsigned int notifyMessage);
    ~CDlgAttributePrivate();

    // The inside of an editor; null while the editor is torn down.
    static CDlgAttributePrivate* Of(CDlgAttribute* editor) { return editor->d.get(); }

    // The window's life (dlg_attribute.cpp).
    bool Create();
    // An event of the window that the editor answers itself; true when it is
    // handled and goes no further.
    bool HandleEvent(QEvent* event);
    void OnClose();
    void OnOK();
    void OnDestroy();

    // Whether an edit also moves the controls to the new record: not when
    // the edit came from the control itself.
    enum class ControlSync { Keep, FromRecord };

    // Editing (dlg_attribute_edit.cpp). Every change the user makes to the
    // record passes through Edit: it becomes the record, and the preview, the
    // swatches and the enabling follow; it is one step of the edit history.
    void Edit(const FZAttributeEx& edited, ControlSync sync);
    // Undo and redo: the record and every control, the previews too, without
    // a word to the host.
    void ShowRecord(const FZAttributeEx& record);
    void UpdatePanelView();
    void UpdateControlsFromAttribute();
    void SetColorControlsOnOff();
    // The material changed: shade and render once, then show it.
    void ReDraw();
    // The previews and swatches show `shown`, which need not be the record
    // (the colour picker's colour while it is open).
    void ShowMaterial(const FZAttributeEx& shown);

    // First, so that the editor's language stays until everything of the
    // editor has gone.
    CLanguageUse language;
    CDlgAttribute* const q;
    QPointer<QWidget> notifyWindow;
    unsigned int notifyMessage = 0;
    FZAttributeEx attribute;
    int colorBind = 0;
    int randomFamily = 0;
    std::unique_ptr<CPreviewPanel> preview;
    std::unique_ptr<CAttributeControls> controls;
    int sampleShape = 1;
    bool created = false;
    // The settings file remembers one window. The C functions' editor claims
    // it, as it always has; any other editor takes it when no open editor
    // holds it. An editor without it opens a step below and to the right of
    // the remembered place for each editor open before it, so that none
    // hides another, and leaves the file alone when it goes.
    bool claimsPlacement = false;
    bool holdsPlacement = false;
    std::unique_ptr<CEditHistory> history;
    std::unique_ptr<CLargePreview> largePreview;  // made at the first double click

private:
    // dlg_attribute.cpp
    void ConnectHandlers(const DialogControls& built);
    bool OnInitDialog();
    void MakePreviewSquare();
    void OnScreenChanged();
    void LoadParameter();
    void SaveParameter();

    // dlg_attribute_edit.cpp
    void OnButtonUpdate();
    void OnHScroll(std::size_t slider, int position);
    void OnButtonColor();
    void OnButtonHighlightColor();
    // The colour picker for the record's colour `field`: live on the
    // previews while open, one edit when confirmed.
    void ChooseColor(FZColor FZAttributeEx::*field);
    void OnButtonColorRandom();
    void OnButtonColorRandomType();
    void OnContextMenu(const QPoint& globalPos);
    void RandomButtonSubMenu(const QPoint& globalPos);
    void OnCheckAnisotropic();
    void OnCheckColorTransparency();
    void OnCheckHighlightSmooth();
    void OnCheckRainbowHighlight();
    void OnButtonAnisotropicParameter();
    void OnButtonRainbowHighlightParameter();
    void OnButtonTransparencyParameter();
    void OpenParameterDialog(ParameterDialogRun run);
    void OnButtonSampleShapePrevious();
    void OnButtonSampleShapeNext();
    void ShowSampleShape(int shape);
    void UpdateEnabling();
    void ConnectEditActions();

    // dlg_attribute_transfer.cpp
    void OnButtonLoad();
    void OnButtonSave();
    // Both remember a file they loaded or saved as the one "保存" proposes;
    // reason, when given, receives the system's reason for a failure.
    FZResult LoadFile(const QString& path, QString* reason = nullptr);
    FZResult SaveFile(const QString& path, QString* reason = nullptr);
    // A message box is modal: the editor may be gone when these return, so
    // they come last in every handler.
    void LoadAndReport(const QString& path);
    void ShowFileResult(FZResult code, const QString& path, const QString& reason);
    void ShowMessage(const QString& text);
    void OnEditCopy();
    void OnEditPaste();
    bool OnDragEnter(QEvent* event);
    bool OnDrop(QEvent* event);
    void OpenLargePreview();
    void OnHide(QEvent* event);
};

#endif
