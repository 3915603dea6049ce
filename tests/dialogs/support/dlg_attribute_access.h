// Test access to the material dialog's internals, and helpers that answer
// the modal windows a handler opens.
#ifndef TAMERISK_TESTS_DIALOGS_DLG_ATTRIBUTE_ACCESS_H
#define TAMERISK_TESTS_DIALOGS_DLG_ATTRIBUTE_ACCESS_H

#include <functional>

#include <QPoint>
#include <QString>
#include <QTimer>

#include <tamerisk/dlg_attribute.h>

#include "preview/preview_panel.h"

class CDlgAttributeTestAccess {
public:
    static int& SampleShape(CDlgAttribute& d) { return d.sampleShape; }
    static int& RandomFamily(CDlgAttribute& d) { return d.randomFamily; }
    static FZAttributeEx& Record(CDlgAttribute& d) { return d.attribute; }
    static CPreviewPanel& Preview(CDlgAttribute& d) { return *d.preview; }
    static FZResult LoadFile(CDlgAttribute& d, const QString& path) { return d.LoadFile(path); }
    static FZResult SaveFile(CDlgAttribute& d, const QString& path) { return d.SaveFile(path); }
    static void ShowResult(CDlgAttribute& d, FZResult code) { d.ShowResult(code); }
    static void OnContextMenu(CDlgAttribute& d, const QPoint& p) { d.OnContextMenu(p); }
    static void OnButtonColorRandom(CDlgAttribute& d) { d.OnButtonColorRandom(); }
    static void ReDraw(CDlgAttribute& d) { d.ReDraw(); }
};

// Runs `answer` on the next modal dialog or pop-up menu that opens while it
// lives (polling every few milliseconds), so that a test can drive a handler
// that blocks in exec(). Seen() tells whether one came.
class ModalAnswer {
public:
    explicit ModalAnswer(std::function<void(QWidget*)> answer);
    ~ModalAnswer();
    ModalAnswer(const ModalAnswer&) = delete;
    ModalAnswer& operator=(const ModalAnswer&) = delete;

    bool Seen() const { return seen; }

private:
    QTimer* timer;
    bool seen = false;
};

#endif
