// CDlgAttribute: the material editor "質感 ﾘﾓｺﾝ" as a class that a host
// creates and owns itself, as many at once as it likes. The C functions of
// tamerisk/tamerisk.h manage one such editor on the host's behalf; a host that
// wants more (one per material slot, say) owns CDlgAttribute objects:
//
//     auto* editor = new CDlgAttribute(hostWindow, kMyNotifyEvent);
//     editor->Create();                 // builds the window and places it
//     editor->SetAttribute(material);
//     editor->UpdatePanelView();
//     editor->show();
//     ...                               // on kMyNotifyEvent:
//     editor->GetAttribute(material);
//     delete editor;                    // remembers the window placement
//
// Each editor has its own material, colour bind, preview, undo history, large
// preview and notify window, and works beside the others and beside the C
// functions' editor; deleting one leaves the rest alone. The notify message
// arrives as a QEvent whose type() is the message number, sent synchronously
// to the notify window (pick it with QEvent::registerEventType()).
//
// A host may delete an editor at any moment, also while one of the editor's
// modal windows (a parameter dialog, a colour picker, a file dialog, the
// colour-family menu, a message box) is open: that window goes with it, as if
// cancelled.
//
// Requirements are those of the C functions: a QApplication, and every call
// on its thread. Link libtamerisk.so (find_package(Tamerisk 1.1) gives
// Tamerisk::tamerisk); this header needs Qt 6 Widgets and nothing else.
#ifndef TAMERISK_DLG_ATTRIBUTE_H
#define TAMERISK_DLG_ATTRIBUTE_H

#include <memory>

#include <QDialog>

#include "attribute.h"
#include "export.h"

class CDlgAttributePrivate;

class TAMERISK_API CDlgAttribute : public QDialog {
    Q_OBJECT

public:
    // An editor whose window has `parent` as its parent window. It has no
    // notify window: "更新" tells the user that nobody is notified.
    explicit CDlgAttribute(QWidget* parent);
    // An editor without a parent window that notifies `notifyWindow` (may be
    // null) with events of type `notifyMessage`.
    CDlgAttribute(QWidget* notifyWindow, unsigned int notifyMessage);
    // Remembers the window placement when the window exists, then releases
    // the preview and the window. A modal window of the editor that is open
    // goes with it, as if cancelled.
    ~CDlgAttribute() override;

    // Creates the window and initialises it: the record shown, colour bind
    // off, the preview set up and drawn, the window placed and shown or kept
    // hidden as it was last time. False when the window already exists.
    bool Create();

    // Copies the record in and starts the undo history at it. Changes no
    // control and redraws nothing: UpdatePanelView does.
    void SetAttribute(const FZAttributeEx& attribute);
    void GetAttribute(FZAttributeEx& attribute) const;
    // Colour bind: while it is not 0 the host owns the surface colour and the
    // colour controls are disabled; while it is 1 the preview shows the
    // material white. Only stores the flag: UpdatePanelView shows it.
    void SetColorBind(int bind);
    int GetColorBind() const;
    // Brings every control into line with the record, enables or disables
    // the colour controls by the colour-bind flag, and redraws the preview
    // and both swatches.
    void UpdatePanelView();

    // Putting the editor away (Esc, accept(), reject()) minimises and hides
    // it; the window stays, and the host may show it again.
    void done(int result) override;

protected:
    bool event(QEvent* event) override;

private:
    friend class CDlgAttributePrivate;
    std::unique_ptr<CDlgAttributePrivate> d;
};

#endif
