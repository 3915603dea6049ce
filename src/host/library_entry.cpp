// What belongs to libtamerisk.so alone: the module's start-up when the
// library is loaded and its shut-down when it is unloaded.
//
// Start-up registers the dialogs' pictures (a Qt resource compiled into the
// library), so that they are found before any dialog exists. The random-colour
// generator needs nothing here: it is a static object of the dialogs, and the
// whole dialog library is linked in, so it is constructed, and seeds the
// module's random state, while the library loads.
#include <QtGlobal>

#include "dialogs/resources.h"
#include "host/editor_instance.h"

// Outside any namespace, as Qt's resource macros require.
static void ReleaseDialogResources()
{
    Q_CLEANUP_RESOURCE(bitmaps);
}

// A destructor function, not a static object's destructor: the loader runs
// it before any static object of the library is destroyed, among them the
// editor's owner, which must not delete a window at process exit.
__attribute__((destructor)) static void FinaliseLibrary()
{
    ForgetEditorAtUnload();
}

namespace {

struct ModuleLifetime {
    ModuleLifetime() { TameriskRegisterResources(); }
    ~ModuleLifetime() { ReleaseDialogResources(); }
};

const ModuleLifetime module;

} // namespace
