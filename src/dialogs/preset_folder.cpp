#include "dialogs/preset_folder.h"

#include <dlfcn.h>

#include <QDir>
#include <QFileInfo>

QString PresetFolder()
{
    Dl_info self;
    if (dladdr(reinterpret_cast<void*>(&PresetFolder), &self) == 0 || self.dli_fname == nullptr)
        return QString();
    // The library's own directory: lib/ of the prefix, or of the build tree.
    const QDir here = QFileInfo(QFile::decodeName(self.dli_fname)).absoluteDir();
    for (const char* relative : {TAMERISK_INSTALLED_PRESETS, TAMERISK_BUILT_PRESETS}) {
        const QString folder = QDir::cleanPath(here.filePath(QLatin1String(relative)));
        if (QFileInfo(folder).isDir())
            return folder;
    }
    return QString();
}

QList<QUrl> SidebarWithPresets(QList<QUrl> places)
{
    for (const QString& folder : {QDir::homePath(), PresetFolder()}) {
        const QUrl url = QUrl::fromLocalFile(folder);
        if (!folder.isEmpty() && !places.contains(url))
            places.append(url);
    }
    return places;
}
