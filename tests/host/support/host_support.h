// libtamerisk.so as a host sees it, the editor's window, the settings file.
#pragma once

#include <dlfcn.h>

#include <string>

#include <QApplication>
#include <QFile>
#include <QWidget>

#include <tamerisk/tamerisk.h>

#include "host/settings.h"

struct LoadedLibrary {
    TameriskFunctions api;
    std::string error;  // empty when the library and every function were found
};

// dlopen, then the functions by name; kept loaded, as hosts keep it.
inline const LoadedLibrary& Tamerisk()
{
    static const LoadedLibrary library = [] {
        LoadedLibrary loaded;
        void* handle = dlopen(TAMERISK_LIBRARY_PATH, RTLD_NOW | RTLD_LOCAL);
        if (handle == nullptr)
            loaded.error = dlerror();
        else if (const char* missing = TameriskResolveFunctions(loaded.api, [handle](const char* name) { return dlsym(handle, name); }))
            loaded.error = std::string("missing ") + missing;
        return loaded;
    }();
    return library;
}

// Found as a host finds it: among the top-level widgets, by class name.
inline QWidget* EditorWindow()
{
    for (QWidget* w : QApplication::topLevelWidgets()) {
        if (w->inherits("CDlgAttribute"))
            return w;
    }
    return nullptr;
}

// The settings file lies in a directory of this process's own
// (tests/qt_main.cpp). Empty text removes it.
inline void WriteSettings(const QByteArray& text)
{
    QFile file(SettingsFilePath());
    text.isEmpty() ? void(file.remove()) : void(file.open(QIODevice::WriteOnly) && file.write(text));
}

inline QByteArray ReadSettings()
{
    QFile file(SettingsFilePath());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
