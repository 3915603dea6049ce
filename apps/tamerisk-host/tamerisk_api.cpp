#include "tamerisk_api.h"

#include <QLibrary>

bool LoadTamerisk(const QString& path, TameriskFunctions& functions, QString& error)
{
    // Deliberately never unloaded (a QLibrary does not unload when destroyed).
    QLibrary library(path);
    if (!library.load()) {
        error = library.errorString();
        return false;
    }
    const char* missing = TameriskResolveFunctions(
        functions, [&library](const char* name) { return library.resolve(name); });
    if (missing)
        error = QStringLiteral("%1 does not export %2").arg(path, QLatin1String(missing));
    return missing == nullptr;
}
