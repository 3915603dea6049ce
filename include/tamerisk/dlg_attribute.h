// CDlgAttribute: the material dialog "質感 ﾘﾓｺﾝ", a modeless window in which
// the user edits one material record. Every change shows at once on the
// dialog's preview; the host learns of the edits only when the user presses
// "更新" or the space bar, which sends the host's notify message.
//
// A host that owns editor objects itself:
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

#include <memory>

#include <QDialog>
#include <QPointer>

#include "attribute.h"
#include "export.h"

#include "material/result_codes.h"

class CPreviewPanel;
class QScrollBar;

class TAMERISK_API CDlgAttribute : public QDialog {
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

    // Copies the record in; changes no control and redraws nothing.
    void SetAttribute(const FZAttributeEx& attribute);
    void GetAttribute(FZAttributeEx& attribute) const;
    // Colour bind: while it is not 0 the host owns the surface colour, the
    // colour controls are disabled and the preview shows the material white.
    // Stores the flag only.
    void SetColorBind(int bind);
    int GetColorBind() const;
    // Brings every control into line with the record, enables or disables
    // the colour controls by the colour-bind flag, and redraws the preview
    // and both swatches.
    void UpdatePanelView();

protected:
    // Sees every event of the dialog and its controls first: the space bar
    // notifies the host wherever the focus is and goes no further; all other
    // events keep the enabling of the controls in line with the state.
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    // Enter on "OK" and Escape: both only put the dialog away.
    void accept() override;
    void reject() override;

private:
    friend class CDlgAttributeTestAccess;

    void ConnectHandlers();
    bool OnInitDialog();
    bool PreTranslateMessage(QEvent* event);
    void SyncEnabling();
    void MakePreviewSquare();

    void OnButtonUpdate();
    void OnClose();
    void OnOK();
    void OnDestroy();
    void OnHScroll(QScrollBar* bar, int position);
    void OnPaint(const QRegion& region);
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

    void GetAttributeFromControl(int control, float value);
    void UpdateControlsFromAttribute();
    void SetColorControlsOnOff();
    void ReDraw();
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
    int sampleShape = 1;
    bool created = false;
};

#endif
