// libtamerisk.so loaded the way a host loads it: dlopen, then the nine
// functions looked up by name. Nothing of the library is linked in.
#ifndef TAMERISK_TESTS_HOST_TAMERISK_LIBRARY_H
#define TAMERISK_TESTS_HOST_TAMERISK_LIBRARY_H

#include <tamerisk/tamerisk.h>

struct TameriskFunctions {
    Tamerisk_OpenFunction Open = nullptr;
    Tamerisk_CloseFunction Close = nullptr;
    Tamerisk_SetAttributeFunction SetAttribute = nullptr;
    Tamerisk_GetAttributeFunction GetAttribute = nullptr;
    Tamerisk_SetColorBindFunction SetColorBind = nullptr;
    Tamerisk_GetColorBindFunction GetColorBind = nullptr;
    Tamerisk_ShowWindowFunction ShowWindow = nullptr;
    Tamerisk_GetShowFunction GetShow = nullptr;
    Tamerisk_SetTitleFunction SetTitle = nullptr;

    bool Complete() const;
};

// The library at TAMERISK_LIBRARY_PATH, loaded on first use and kept for the
// rest of the process, as hosts keep it. The error text is empty on success.
const TameriskFunctions& Tamerisk();
const char* TameriskLoadError();

#endif
