#include "tamerisk_api.h"

template <typename Function>
bool TameriskApi::Resolve(const char* name, Function& function, QString& error)
{
    function = reinterpret_cast<Function>(library.resolve(name));
    if (!function)
        error = QStringLiteral("%1 does not export %2").arg(library.fileName(), name);
    return function != nullptr;
}

bool TameriskApi::Load(const QString& path, QString& error)
{
    library.setFileName(path);
    if (!library.load()) {
        error = library.errorString();
        return false;
    }
    return Resolve("Tamerisk_Open", Open, error) && Resolve("Tamerisk_Close", Close, error)
           && Resolve("Tamerisk_SetAttribute", SetAttribute, error)
           && Resolve("Tamerisk_GetAttribute", GetAttribute, error)
           && Resolve("Tamerisk_SetColorBind", SetColorBind, error)
           && Resolve("Tamerisk_GetColorBind", GetColorBind, error)
           && Resolve("Tamerisk_ShowWindow", ShowWindow, error)
           && Resolve("Tamerisk_GetShow", GetShow, error)
           && Resolve("Tamerisk_SetTitle", SetTitle, error);
}
