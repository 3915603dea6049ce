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
        if (const char* missing = TameriskResolveFunctions(
                functions, [handle](const char* name) { return dlsym(handle, name); }))
            error = std::string("missing ") + missing;
    }
};

const LoadedLibrary& Library()
{
    static const LoadedLibrary library;
    return library;
}

} // namespace

const TameriskFunctions& Tamerisk()
{
    return Library().functions;
}

const char* TameriskLoadError()
{
    return Library().error.c_str();
}
