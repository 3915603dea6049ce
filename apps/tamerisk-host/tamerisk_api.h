// libtamerisk.so as this host uses it: loaded at run time with QLibrary and
// its functions resolved by name. The host links nothing of Tamerisk;
// it knows the library only through tamerisk/tamerisk.h.
#ifndef TAMERISK_HOST_APP_TAMERISK_API_H
#define TAMERISK_HOST_APP_TAMERISK_API_H

#include <QString>

#include <tamerisk/tamerisk.h>

// Loads the library at path and fills functions. False, with a message in
// error, when the library or any function is missing. The library stays
// loaded for the rest of the process: the editor's window code lives in it.
bool LoadTamerisk(const QString& path, TameriskFunctions& functions, QString& error);

#endif
