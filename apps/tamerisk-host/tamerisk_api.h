// libtamerisk.so as this host uses it: loaded at run time with QLibrary and
// its nine functions resolved by name. The host links nothing of Tamerisk;
// it knows the library only through tamerisk/tamerisk.h.
#ifndef TAMERISK_HOST_APP_TAMERISK_API_H
#define TAMERISK_HOST_APP_TAMERISK_API_H

#include <QLibrary>
#include <QString>

#include <tamerisk/tamerisk.h>

class TameriskApi {
public:
    // Loads the library and resolves every function. False, with a message
    // in error, when the library or any function is missing.
    bool Load(const QString& path, QString& error);

    Tamerisk_OpenFunction Open = nullptr;
    Tamerisk_CloseFunction Close = nullptr;
    Tamerisk_SetAttributeFunction SetAttribute = nullptr;
    Tamerisk_GetAttributeFunction GetAttribute = nullptr;
    Tamerisk_SetColorBindFunction SetColorBind = nullptr;
    Tamerisk_GetColorBindFunction GetColorBind = nullptr;
    Tamerisk_ShowWindowFunction ShowWindow = nullptr;
    Tamerisk_GetShowFunction GetShow = nullptr;
    Tamerisk_SetTitleFunction SetTitle = nullptr;

private:
    template <typename Function>
    bool Resolve(const char* name, Function& function, QString& error);

    // Never unloaded: the editor's window code lives in it.
    QLibrary library;
};

#endif
