#include "host/support/tamerisk_library.h"

#include <dlfcn.h>

#include <string>

namespace {

struct LoadedLibrary {
    TameriskFunctions functions;
    std::string error;

    LoadedLibrary()
    {
        void* handle = dlopen(TAMERISK_LIBRARY_PATH, RTLD_NOW | RTLD_LOCAL);
        if (!handle) {
            error = dlerror();
            return;
        }
        Resolve(handle, "Tamerisk_Open", functions.Open);
        Resolve(handle, "Tamerisk_Close", functions.Close);
        Resolve(handle, "Tamerisk_SetAttribute", functions.SetAttribute);
        Resolve(handle, "Tamerisk_GetAttribute", functions.GetAttribute);
        Resolve(handle, "Tamerisk_SetColorBind", functions.SetColorBind);
        Resolve(handle, "Tamerisk_GetColorBind", functions.GetColorBind);
        Resolve(handle, "Tamerisk_ShowWindow", functions.ShowWindow);
        Resolve(handle, "Tamerisk_GetShow", functions.GetShow);
        Resolve(handle, "Tamerisk_SetTitle", functions.SetTitle);
    }

    template <typename Function>
    void Resolve(void* handle, const char* name, Function& function)
    {
        function = reinterpret_cast<Function>(dlsym(handle, name));
        if (!function)
            error += std::string("missing ") + name + "; ";
    }
};

const LoadedLibrary& Library()
{
    static const LoadedLibrary library;
    return library;
}

} // namespace

bool TameriskFunctions::Complete() const
{
    return Open && Close && SetAttribute && GetAttribute && SetColorBind && GetColorBind
           && ShowWindow && GetShow && SetTitle;
}

const TameriskFunctions& Tamerisk()
{
    return Library().functions;
}

const char* TameriskLoadError()
{
    return Library().error.c_str();
}
