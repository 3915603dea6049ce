// A host's life with the library, each scenario in a process of its own, as
// only a whole process can show it: loading, opening, closing and unloading
// in every order a host may choose, then the host's exit. Run under
// AddressSanitizer by ./test.sh, where a window or an object outliving the
// library's code shows as a crash.
//
//   unload_check SCENARIO     exit status 0 when the scenario held
#include <dlfcn.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <thread>

#include <QApplication>
#include <QMouseEvent>
#include <QTemporaryDir>
#include <QTimer>
#include <QWidget>

#include <tamerisk/tamerisk.h>

namespace {

struct Library {
    void* handle = nullptr;
    TameriskFunctions api;
};

bool Load(Library& library)
{
    library.handle = dlopen(TAMERISK_LIBRARY_PATH, RTLD_NOW | RTLD_LOCAL);
    if (library.handle == nullptr) {
        std::fprintf(stderr, "unload_check: %s\n", dlerror());
        return false;
    }
    const char* missing = TameriskResolveFunctions(
        library.api, [&library](const char* name) { return dlsym(library.handle, name); });
    if (missing != nullptr)
        std::fprintf(stderr, "unload_check: %s is missing\n", missing);
    return missing == nullptr;
}

bool Unload(Library& library)
{
    if (dlclose(library.handle) != 0) {
        std::fprintf(stderr, "unload_check: %s\n", dlerror());
        return false;
    }
    library.handle = nullptr;
    return true;
}

bool IsLoaded()
{
    void* handle = dlopen(TAMERISK_LIBRARY_PATH, RTLD_NOW | RTLD_NOLOAD);
    if (handle != nullptr)
        dlclose(handle);
    return handle != nullptr;
}

bool Check(bool held, const char* what)
{
    if (!held)
        std::fprintf(stderr, "unload_check: failed: %s\n", what);
    return held;
}

// What the library writes on stderr while call runs.
std::string StderrOf(const std::function<void()>& call)
{
    int pipeEnds[2];
    if (pipe(pipeEnds) != 0)
        return "(no pipe)";
    std::fflush(stderr);
    const int saved = dup(STDERR_FILENO);
    dup2(pipeEnds[1], STDERR_FILENO);
    close(pipeEnds[1]);
    call();
    std::fflush(stderr);
    dup2(saved, STDERR_FILENO);
    close(saved);
    std::string text;
    char buffer[512];
    for (ssize_t n; (n = read(pipeEnds[0], buffer, sizeof buffer)) > 0;)
        text.append(buffer, static_cast<std::size_t>(n));
    close(pipeEnds[0]);
    return text;
}

bool OneLineNaming(const std::string& text, const char* function)
{
    const bool one = !text.empty() && text.find('\n') == text.size() - 1;
    if (!one || text.find(function) == std::string::npos)
        std::fprintf(stderr, "unload_check: expected one line naming %s, got \"%s\"\n", function,
                     text.c_str());
    return one && text.find(function) != std::string::npos;
}

bool OpenEditor(const TameriskFunctions& api, QWidget& host)
{
    FZAttributeEx material;
    material.diffuse = 0.25f;
    if (!Check(api.Open(&host, 1000) == 1, "Open gives 1"))
        return false;
    api.SetAttribute(&material);
    api.ShowWindow(TAMERISK_SW_SHOWNORMAL);
    QApplication::processEvents();
    return true;
}

int argcForQt = 1;
char programName[] = "unload_check";
char* argvForQt[] = {programName, nullptr};

// A host with its application, the library loaded and the editor open.
struct RunningHost {
    QApplication app{argcForQt, argvForQt};
    Library library;
    QWidget window;
    const bool ready = Load(library) && OpenEditor(library.api, window);
};

// Open, Close, dlclose, then the host's exit.
bool CloseThenUnload()
{
    RunningHost host;
    if (!host.ready)
        return false;
    host.library.api.Close();
    const bool closed = Check(host.library.api.GetShow() == TAMERISK_NO_EDITOR, "Close closes");
    return Unload(host.library) && closed && Check(!IsLoaded(), "the library is unloaded");
}

// dlclose with the editor still open: the editor keeps the library loaded
// and goes with the application.
bool UnloadWithTheEditorOpen()
{
    RunningHost host;
    if (!host.ready || !Unload(host.library))
        return false;
    int shown = 0;
    for (QWidget* w : QApplication::topLevelWidgets())
        shown += w != &host.window && w->isVisible();
    QApplication::processEvents();
    return Check(shown == 1, "the editor is still there") && Check(IsLoaded(), "its library is still there");
}

// exit() while the QApplication and the editor are still there, as from a
// menu handler: the process ends without touching a window.
bool ExitWithTheEditorOpen()
{
    RunningHost host;
    if (host.ready)
        std::exit(0);
    return false;
}

// The application goes before Tamerisk_Close: the editor went with it, and
// the late Close does nothing, says nothing, and leaves the library
// unloadable.
bool CloseAfterTheApplication()
{
    Library library;
    if (!Load(library))
        return false;
    {
        QApplication app(argcForQt, argvForQt);
        QWidget host;
        if (!OpenEditor(library.api, host))
            return false;
    }
    const std::string said = StderrOf([&] { library.api.Close(); });
    return Check(said.empty(), "a late Close is silent")
           && Check(library.api.GetLastResult() == TAMERISK_OK, "a late Close reports nothing wrong")
           && Check(library.api.GetShow() == TAMERISK_NO_EDITOR, "no editor is left") && Unload(library)
           && Check(!IsLoaded(), "the library is unloaded");
}

// No QApplication at all: Open refuses, says why once, and nothing else
// breaks.
bool NoApplication()
{
    Library library;
    if (!Load(library))
        return false;
    int opened = -1;
    const std::string said = StderrOf([&] { opened = library.api.Open(nullptr, 0); });
    return Check(opened == 0, "Open gives 0") && OneLineNaming(said, "Tamerisk_Open")
           && Check(library.api.GetLastResult() == TAMERISK_ERROR_NO_APPLICATION, "the reason is the application")
           && Check(library.api.GetVersion() == TAMERISK_VERSION, "the version is the header's") && Unload(library);
}

// Calls from another thread leave the open editor as it was.
bool AnotherThread()
{
    RunningHost host;
    if (!host.ready)
        return false;
    const TameriskFunctions& api = host.library.api;
    int result = -1;
    std::string said;
    std::thread([&] {
        FZAttributeEx other;
        other.diffuse = 0.75f;
        said = StderrOf([&] { api.SetAttribute(&other); });
        result = api.GetLastResult();
        StderrOf([&] { api.Close(); });
    }).join();
    FZAttributeEx held;
    api.GetAttribute(&held);
    const bool kept = OneLineNaming(said, "Tamerisk_SetAttribute")
                      && Check(result == TAMERISK_ERROR_WRONG_THREAD, "the reason is the thread")
                      && Check(api.GetLastResult() == TAMERISK_OK, "the GUI thread's result is its own")
                      && Check(held.diffuse == 0.25f, "the material is kept")
                      && Check(api.GetShow() == TAMERISK_SW_SHOWNORMAL, "the editor is still open");
    api.Close();
    return Unload(host.library) && kept;
}

// A double click on the editor's preview opens the large preview.
QWidget* OpenLargePreview()
{
    QWidget* preview = nullptr;
    for (QWidget* w : QApplication::topLevelWidgets()) {
        if (w->inherits("CDlgAttribute"))
            preview = w->findChild<QWidget*>(QStringLiteral("4000"));
    }
    if (preview == nullptr)
        return nullptr;
    const QPointF at = preview->rect().center();
    QMouseEvent click(QEvent::MouseButtonDblClick, at, preview->mapToGlobal(at), Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    QApplication::sendEvent(preview, &click);
    return preview->window()->findChild<QWidget*>(QStringLiteral("tamerisk-large-preview"));
}

// Close and unload while the large preview's thread is deep in a slow
// render: the thread is stopped and joined before the library's code goes.
bool CloseWhileTheLargePreviewRenders()
{
    RunningHost host;
    if (!host.ready)
        return false;
    QWidget* large = OpenLargePreview();
    if (!Check(large != nullptr && large->isVisible(), "a double click opens the large preview"))
        return false;
    large->resize(1600, 1200);
    FZAttributeEx glowing;
    glowing.emission = 0.7f;
    host.library.api.SetAttribute(&glowing);
    for (int i = 0; i < 3; ++i)
        QApplication::processEvents();
    host.library.api.Close();
    return Unload(host.library) && Check(!IsLoaded(), "the library is unloaded");
}

// The host closes the editor and unloads the library from inside one of the
// editor's modal windows (a timer fires while the user picks a colour): the
// window's loop ends and returns into the editor's code, still there.
bool CloseAndUnloadInAModalWindow()
{
    RunningHost host;
    if (!host.ready)
        return false;
    QWidget* swatch = nullptr;
    for (QWidget* w : QApplication::topLevelWidgets()) {
        if (w->inherits("CDlgAttribute"))
            swatch = w->findChild<QWidget*>(QStringLiteral("4002"));
    }
    if (!Check(swatch != nullptr, "the editor has its colour swatch"))
        return false;
    bool unloaded = false;
    QTimer::singleShot(0, [&] {
        host.library.api.Close();
        unloaded = Unload(host.library);
    });
    const QPointF at = swatch->rect().center();
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        QMouseEvent click(type, at, swatch->mapToGlobal(at), Qt::LeftButton,
                          type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(swatch, &click);
    }
    return Check(unloaded, "the host unloaded the library in the colour picker's loop");
}

struct Scenario {
    const char* name;
    bool (*run)();
};

constexpr Scenario kScenarios[] = {
    {"close-then-unload", CloseThenUnload},
    {"unload-with-editor-open", UnloadWithTheEditorOpen},
    {"exit-with-editor-open", ExitWithTheEditorOpen},
    {"close-after-application", CloseAfterTheApplication},
    {"no-application", NoApplication},
    {"another-thread", AnotherThread},
    {"close-while-the-large-preview-renders", CloseWhileTheLargePreviewRenders},
    {"close-and-unload-in-a-modal-window", CloseAndUnloadInAModalWindow},
};

} // namespace

int main(int argc, char** argv)
{
    // The editor remembers its place in a file; not beside this program.
    const QTemporaryDir settings;
    qputenv("TAMERISK_SETTINGS_DIR", settings.path().toLocal8Bit());
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    for (const Scenario& scenario : kScenarios) {
        if (argc == 2 && std::strcmp(argv[1], scenario.name) == 0)
            return scenario.run() ? 0 : 1;
    }
    std::fprintf(stderr, "usage: unload_check SCENARIO\n");
    return 2;
}
