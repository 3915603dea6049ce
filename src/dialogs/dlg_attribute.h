// CDlgAttribute: the material dialog "質感 ﾘﾓｺﾝ", a modeless window in which
// the user edits one material record. Every change shows at once on the
// dialog's preview; the host learns of the edits only when the user presses
// "更新" or the space bar, which sends the host's notify message.
//
// The exported functions (host/exports.cpp) drive one such object on the
// host's behalf; the class itself stays inside the library, so that hosts
// depend on nothing but the C interface. Used directly it goes:
//
//     auto* editor = new CDlgAttribute(hostWindow, kMyNotifyEvent);
//     editor->Create();                 // builds the window, places it
//     editor->SetAttribute(material);
//     editor->UpdatePanelView();
//     ...                               // on kMyNotifyEvent:
//     editor->GetAttribute(material);
//     delete editor;                    // remembers the window placement
//
// The notify message arrives as a QEvent whose type() is the message number,
// sent synchronously to the notify window.
#ifndef TAMERISK_DLG_ATTRIBUTE_H
#define TAMERISK_DLG_ATTRIBUTE_H

#include <cstddef>
#include <memory>

#include <QDialog>
#include <QPointer>

#include <tamerisk/attribute.h>

#include "material/result_codes.h"

class CEditHistory;
class CLargePreview;
class CPreviewPanel;
class DialogControls;

class CDlgAttribute : public QDialog {
    Q_OBJECT

public:
    // A dialog with `parent` as its parent window and no notify window.
    explicit CDlgAttribute(QWidget* parent);
    // A dialog without a parent that notifies `notifyWindow` with events of
    // type `notifyMessage`.
    CDlgAttribute(QWidget* notifyWindow, unsigned int notifyMessage);
    // Saves the window placement when the window exists, then releases the
    // preview and the window.
    ~CDlgAttribute() override;

    // Creates the window from its template and initialises it: slider
    // ranges, the record shown, the preview set up and drawn, the window
    // placed and shown or kept hidden as it was last time. False when the
    // window already exists.
    bool Create();

    // Copies the record in and starts the edit history at it: undo never goes
    // back past a record the host handed over. Changes no control and
    // redraws nothing.
    void SetAttribute(const FZAttributeEx& attribute);
    void GetAttribute(FZAttributeEx& attribute) const;
    // Colour bind: while it is not 0 the host owns the surface colour, the
    // colour controls are disabled and the preview shows the material white.
    // Stores the flag and enables or disables the colour controls; the
    // preview follows at the next UpdatePanelView.
    void SetColorBind(int bind);
    int GetColorBind() const;
    // Brings every control into line with the record, enables or disables
    // the colour controls by the colour-bind flag, and redraws the preview
    // and both swatches.
    void UpdatePanelView();

protected:
    void closeEvent(QCloseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    // A .qva file dragged onto the window loads as "開く" would.
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    // A double click on the preview opens the large preview.
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    // Putting the editor away (close box, Enter, Esc, the host) puts its
    // large preview away too; minimising the editor leaves it.
    void hideEvent(QHideEvent* event) override;
    // Enter on "OK" and Escape: both only put the dialog away.
    void accept() override;
    void reject() override;

private:
    struct Controls;  // the template's controls, typed, resolved once

    // Whether an edit also moves the controls to the new record: not when
    // the edit came from the control itself.
    enum class ControlSync { Keep, FromRecord };

    void ConnectHandlers(const DialogControls& built);
    bool OnInitDialog();
    void MakePreviewSquare();

    void OnButtonUpdate();
    void OnClose();
    void OnOK();
    void OnDestroy();
    void OnHScroll(std::size_t slider, int position);
    void OnButtonColor();
    void OnButtonHighlightColor();
    void OnButtonColorRandom();
    void OnButtonColorRandomType();
    void OnContextMenu(const QPoint& globalPos);
    void OnCheckAnisotropic();
    void OnButtonLoad();
    void OnButtonSave();
    void OnCheckColorTransparency();
    void OnCheckHighlightSmooth();
    void OnCheckRainbowHighlight();
    void OnButtonAnisotropicParameter();
    void OnButtonRainbowHighlightParameter();
    void OnButtonTransparencyParameter();
    void OpenParameterDialog(int (*run)(FZAttributeEx&, int, int&));
    void OnButtonSampleShapePrevious();
    void OnButtonSampleShapeNext();

    // Every change the user makes to the record passes here: it becomes the
    // record, and the preview, the swatches and the enabling follow; it is
    // one step of the edit history.
    void Edit(const FZAttributeEx& edited, ControlSync sync);
    // Undo and redo: the record and every control, the previews too, without
    // a word to the host.
    void ShowRecord(const FZAttributeEx& record);
    void ConnectEditActions();
    void OnEditCopy();
    void OnEditPaste();
    void OpenLargePreview();
    void UpdateControlsFromAttribute();
    void SetColorControlsOnOff();
    void UpdateEnabling();
    // The material changed: shade and render once, then show it.
    void ReDraw();
    void OnScreenChanged();
    void ShowSampleShape(int shape);
    void DrawColorPallete();
    void DrawHighlightColorPallete();
    bool PickColor(FZColor& color);
    void RandomButtonSubMenu(const QPoint& globalPos);
    FZResult LoadFile(const QString& path);
    // reason, when given, receives the system's reason for a failure.
    FZResult SaveFile(const QString& path, QString* reason = nullptr);
    void ShowResult(FZResult code);
    void ShowMessage(const QString& text);
    void LoadParameter();
    void SaveParameter();

    QPointer<QWidget> notifyWindow;
    unsigned int notifyMessage = 0;
    FZAttributeEx attribute;
    int colorBind = 0;
    int randomFamily = 0;
    std::unique_ptr<CPreviewPanel> preview;
    std::unique_ptr<Controls> controls;
    int sampleShape = 1;
    bool created = false;
    std::unique_ptr<CEditHistory> history;
    std::unique_ptr<CLargePreview> largePreview;  // made at the first double click
};

#endif
