// The file dialogs of "開く" and "保存", and the error box of their results.
//
// Both dialogs open over the editor that owns them and start in the folder
// last used, which the settings file remembers ("Files", host/settings.h);
// without one, in the current directory. "保存" proposes the name of the
// file last loaded or saved.
#ifndef TAMERISK_DIALOGS_MATERIAL_FILE_DIALOGS_H
#define TAMERISK_DIALOGS_MATERIAL_FILE_DIALOGS_H

#include <QString>

#include "material/result_codes.h"

class QFileDialog;
class QMessageBox;
class QWidget;

enum class MaterialFileAction { Open, Save };

// The file dialog for the action, owned by `owner`, set up as above; run it
// with exec() and read the path with ChosenMaterialFile.
void SetUpMaterialFileDialog(QFileDialog& dialog, MaterialFileAction action);
// The path the user chose in an accepted dialog (empty when there is none);
// its folder is remembered as the one last used.
QString ChosenMaterialFile(const QFileDialog& dialog);
// Remembers the file as the one last loaded or saved.
void RememberMaterialFile(const QString& path);

// The error box of a file operation that failed with `code`: the result
// code's message as it stands in the table of messages, and below it, as
// informative text, the file's name and the system's reason when there is
// one. Set up for exec(); the caller checks that the code has a message.
void SetUpFileErrorBox(QMessageBox& box, FZResult code, const QString& path, const QString& reason);

// The result code's message in the editor's language; empty for Ok and for
// codes without a message.
QString ResultText(FZResult code);

#endif
