// Materials in and out of the material editor: attribute files ("開く",
// "保存" and files dropped on the window), the clipboard, the messages that
// tell the user what failed, and the large preview.
#include <string>

#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFile>
#include <QFileDialog>
#include <QHideEvent>
#include <QMessageBox>
#include <QMimeData>

#include "dialogs/dlg_attribute_p.h"
#include "dialogs/large_preview.h"
#include "dialogs/material_file_dialogs.h"
#include "dialogs/material_transfer.h"
#include "dialogs/modal_window.h"
#include "dialogs/preset_folder.h"
#include "material/attribute_file.h"

namespace {

// The file dialog of "開く" or "保存" over the editor, "開く" with the presets
// in its sidebar: an empty path when the user cancels, and when the editor
// is destroyed while the dialog is open.
QString AskFilePath(QWidget* editor, MaterialFileAction action)
{
    CModalWindow<QFileDialog> dialog(editor, editor);
    SetUpMaterialFileDialog(*dialog, action);
    if (action == MaterialFileAction::Open)
        dialog->setSidebarUrls(SidebarWithPresets(dialog->sidebarUrls()));
    if (!dialog.Exec())
        return QString();
    return ChosenMaterialFile(*dialog);
}

} // namespace

void CDlgAttributePrivate::OnButtonLoad()
{
    const QString path = AskFilePath(q, MaterialFileAction::Open);
    if (!path.isEmpty())
        LoadAndReport(path);
}

void CDlgAttributePrivate::OnButtonSave()
{
    const QString path = AskFilePath(q, MaterialFileAction::Save);
    if (path.isEmpty())
        return;
    // Below the message, which file and why: a full disk and a write-protected
    // file call for different remedies.
    QString reason;
    const FZResult code = SaveFile(path, &reason);
    ShowFileResult(code, path, reason);
}

void CDlgAttributePrivate::LoadAndReport(const QString& path)
{
    QString reason;
    const FZResult code = LoadFile(path, &reason);
    ShowFileResult(code, path, reason);
}

FZResult CDlgAttributePrivate::LoadFile(const QString& path, QString* reason)
{
    FZAttributeEx loaded = attribute;
    std::string why;
    const FZResult code = LoadAttributeFile(QFile::encodeName(path).constData(), loaded, nullptr, &why);
    if (reason != nullptr)
        *reason = QString::fromLocal8Bit(why);
    if (code != FZResult::Ok)
        return code;
    RememberMaterialFile(path);
    Edit(loaded, ControlSync::FromRecord);
    return code;
}

FZResult CDlgAttributePrivate::SaveFile(const QString& path, QString* reason)
{
    std::string why;
    const FZResult code = SaveAttributeFile(QFile::encodeName(path).constData(), attribute, &why);
    if (reason != nullptr)
        *reason = QString::fromLocal8Bit(why);
    if (code == FZResult::Ok)
        RememberMaterialFile(path);
    return code;
}

void CDlgAttributePrivate::ShowFileResult(FZResult code, const QString& path, const QString& reason)
{
    if (ResultText(code).isEmpty())
        return;
    CModalWindow<QMessageBox> box(q, q);
    SetUpFileErrorBox(*box, code, path, reason);
    static_cast<void>(box.Exec());
}

void CDlgAttributePrivate::ShowMessage(const QString& text)
{
    // Owned by the dialog, captioned with the application's name.
    CModalWindow<QMessageBox> box(q, QMessageBox::NoIcon, QCoreApplication::applicationName(), text,
                                  QMessageBox::Ok, q);
    static_cast<void>(box.Exec());
}

void CDlgAttributePrivate::OnEditCopy()
{
    QApplication::clipboard()->setText(MaterialToClipboardText(attribute));
}

void CDlgAttributePrivate::OnEditPaste()
{
    FZAttributeEx pasted = attribute;
    if (MaterialFromClipboardText(QApplication::clipboard()->text(), pasted) != FZResult::Ok) {
        QApplication::beep();
        return;
    }
    Edit(pasted, ControlSync::FromRecord);
}

// A .qva file dragged onto the window loads as "開く" would.
bool CDlgAttributePrivate::OnDragEnter(QEvent* event)
{
    auto* drag = static_cast<QDragEnterEvent*>(event);
    if (!DraggedAttributeFile(drag->mimeData()).isEmpty())
        drag->acceptProposedAction();
    return true;
}

bool CDlgAttributePrivate::OnDrop(QEvent* event)
{
    auto* drop = static_cast<QDropEvent*>(event);
    const QString path = DraggedAttributeFile(drop->mimeData());
    if (path.isEmpty())
        return true;
    drop->acceptProposedAction();
    // Loaded once the drop is over: an error box must not open while the
    // file manager still waits for the drop to finish.
    QMetaObject::invokeMethod(q, [this, path] { LoadAndReport(path); }, Qt::QueuedConnection);
    return true;
}

// Putting the editor away (close box, Enter, Esc, the host) puts its large
// preview away too; minimising the editor leaves it.
void CDlgAttributePrivate::OnHide(QEvent* event)
{
    if (largePreview && !event->spontaneous())
        largePreview->hide();
}

void CDlgAttributePrivate::OpenLargePreview()
{
    if (!largePreview) {
        largePreview = std::make_unique<CLargePreview>(q);
        // Undo, redo, copy and paste work in the large preview as well.
        largePreview->addActions(q->actions());
    }
    largePreview->ShowMaterial(attribute, colorBind, sampleShape);
    largePreview->show();
    largePreview->raise();
    largePreview->activateWindow();
}
