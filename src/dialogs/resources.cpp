#include "dialogs/resources.h"

#include <QtGlobal>

void TameriskRegisterResources()
{
    // The resource initialiser lives in the same static library; naming it
    // here keeps the linker from dropping it.
    static const bool registered = [] {
        Q_INIT_RESOURCE(bitmaps);
        return true;
    }();
    (void)registered;
}

namespace {

// Registered as soon as the library is loaded, before any dialog exists.
const bool kRegisteredAtLoad = (TameriskRegisterResources(), true);

} // namespace
