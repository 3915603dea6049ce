// The materials that come with Tamerisk, for the file dialog of "開く".
#ifndef TAMERISK_DIALOGS_PRESET_FOLDER_H
#define TAMERISK_DIALOGS_PRESET_FOLDER_H

#include <QList>
#include <QString>
#include <QUrl>

// The folder that holds them: share/tamerisk/materials under the prefix the
// library is installed in, or the same place in the build tree it was built
// in. Empty when there is none.
QString PresetFolder();

// A file dialog's sidebar with the user's home folder and the presets
// beside the places it already offers.
QList<QUrl> SidebarWithPresets(QList<QUrl> places);

#endif
