#include "dialogs/modal_window.h"

#include <dlfcn.h>

namespace {

// The loops still have to return through this library's code: a host that
// unloads it now must not take that code away.
void KeepLibraryLoaded()
{
    Dl_info self;
    if (dladdr(reinterpret_cast<void*>(&PutAwayModalWindows), &self) == 0 || self.dli_fname == nullptr)
        return;
    // The handle is never given back: with RTLD_NODELETE, unloading stops
    // being possible once, and for the rest of the process.
    static_cast<void>(dlopen(self.dli_fname, RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE));
}

} // namespace

void PutAwayModalWindows(QWidget* editor)
{
    bool running = false;
    for (QWidget* w : QApplication::topLevelWidgets()) {
        if (w->property(kModalWindowOf).value<QObject*>() != editor)
            continue;
        running = true;
        for (QDialog* question : w->findChildren<QDialog*>()) {
            if (question->isVisible())
                question->reject();
        }
        if (auto* dialog = qobject_cast<QDialog*>(w))
            dialog->reject();
        else
            w->close();
        if (w->parent() == editor)
            w->setParent(nullptr);
    }
    if (running)
        KeepLibraryLoaded();
}
