#include "dialogs/material_file_dialogs.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>

#include "dialogs/language.h"
#include "host/settings.h"

namespace {

QString Filter()
{
    return UiText(QT_TRANSLATE_NOOP("Tamerisk", "質感ﾌｧｲﾙ")) + QStringLiteral(" (*.qva);;")
           + UiText(QT_TRANSLATE_NOOP("Tamerisk", "すべてのﾌｧｲﾙ")) + QStringLiteral(" (*.*)");
}

} // namespace

void SetUpMaterialFileDialog(QFileDialog& dialog, MaterialFileAction action)
{
    const FileMemory memory = ReadFileMemory(SettingsFilePath());
    // A folder that is gone (a removed stick) is no place to start.
    const QString folder = !memory.folder.isEmpty() && QFileInfo(memory.folder).isDir() ? memory.folder
                                                                                        : QDir::currentPath();
    dialog.setDirectory(folder);
    dialog.setNameFilters(Filter().split(QStringLiteral(";;")));
    dialog.setDefaultSuffix(QStringLiteral("qva"));
    if (action == MaterialFileAction::Save) {
        dialog.setAcceptMode(QFileDialog::AcceptSave);
        dialog.setFileMode(QFileDialog::AnyFile);
        if (!memory.file.isEmpty())
            dialog.selectFile(QDir(folder).filePath(memory.file));
    } else {
        dialog.setAcceptMode(QFileDialog::AcceptOpen);
        dialog.setFileMode(QFileDialog::ExistingFile);
    }
}

QString ChosenMaterialFile(const QFileDialog& dialog)
{
    if (dialog.result() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return QString();
    const QString path = dialog.selectedFiles().front();
    RememberFile(SettingsFilePath(), path, false);
    return path;
}

void RememberMaterialFile(const QString& path)
{
    RememberFile(SettingsFilePath(), path, true);
}

QString ResultText(FZResult code)
{
    const char* message = ResultMessage(code);
    return message == nullptr ? QString() : UiText(message);
}

void SetUpFileErrorBox(QMessageBox& box, FZResult code, const QString& path, const QString& reason)
{
    box.setIcon(QMessageBox::NoIcon);
    box.setWindowTitle(QCoreApplication::applicationName());
    box.setTextFormat(Qt::PlainText);
    box.setText(ResultText(code));
    box.setInformativeText(reason.isEmpty() ? QDir::toNativeSeparators(path)
                                            : QDir::toNativeSeparators(path) + u'\n' + reason);
    box.setStandardButtons(QMessageBox::Ok);
}
