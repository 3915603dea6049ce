// A seeded monkey: a host that opens the editor and then, step after step,
// clicks, types, turns the wheel, drags and resizes wherever a user could
// reach, and calls the host functions with odd records at any moment. It
// passes when nothing crashed (./test.sh runs it under AddressSanitizer).
//
//   monkey [--seed N] [--steps N] [--no-close-in-modal]
//
// TAMERISK_MONKEY_SEED=N (or --seed N) with the same step count replays a
// run's choices. The steps run from a zero-time timer, so they go on inside
// a modal window's nested loop, where the host also closes or reopens the
// editor unless --no-close-in-modal is given.
#include <array>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QFile>
#include <QFileDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPointer>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QWheelEvent>

#include <tamerisk/tamerisk.h>

#include "preview/record_maker.h"

namespace {

struct Options {
    std::uint64_t seed = 0;
    int steps = 3000;
    bool closeInModal = true;
};

// The host's window, which receives the editor's notify event and, as real
// hosts do, reads the material then and sometimes posts a close or a reopen.
class HostWindow : public QWidget {
public:
    explicit HostWindow(std::mt19937_64& random) : random(random) {}
    const QEvent::Type message = static_cast<QEvent::Type>(QEvent::registerEventType());
    bool closeInModal = false;
    int notifications = 0;

    bool event(QEvent* e) override
    {
        if (e->type() != message)
            return QWidget::event(e);
        ++notifications;
        FZAttributeEx record;
        Tamerisk_GetAttribute(&record);
        if (random() % 8 == 0) {
            // As the interface asks: never from inside the handler itself.
            const bool reopen = random() % 2 == 0;
            QMetaObject::invokeMethod(this, [this, reopen] {
                if (!closeInModal && QApplication::activeModalWidget() != nullptr)
                    return;
                reopen ? void(Tamerisk_Open(this, message)) : Tamerisk_Close();
            }, Qt::QueuedConnection);
        }
        return true;
    }

private:
    std::mt19937_64& random;
};

class Monkey : public QObject {
public:
    Monkey(const Options& options, const QString& scratch)
        : options(options), scratch(scratch), random(options.seed), records(static_cast<std::uint32_t>(options.seed)),
          host(random)
    {
        host.closeInModal = options.closeInModal;
    }

    void Start()
    {
        Tamerisk_Open(&host, host.message);
        Tamerisk_ShowWindow(TAMERISK_SW_SHOWNORMAL);
        QTimer::singleShot(0, this, [this] { Step(); });
    }

    void Report() const
    {
        std::printf("monkey: %d steps, %d host calls, %d modal windows answered, %d notifications\n", done, hostCalls,
                    answered, host.notifications);
        std::printf("monkey: steps per window:");
        for (const auto& [name, steps] : reached)
            std::printf(" %s %d", name.c_str(), steps);
        std::printf("\n");
    }

private:
    // The next step is queued before this one acts, so that it runs inside
    // any nested loop the action starts.
    void Step()
    {
        if (done == options.steps) {
            Finish();
            return;
        }
        ++done;
        QTimer::singleShot(0, this, [this] { Step(); });
        Act();
    }

    // Puts every modal window and menu away, innermost first, then closes.
    void Finish()
    {
        if (QWidget* top = TopBlocking()) {
            Dismiss(top);
            QTimer::singleShot(0, this, [this] { Finish(); });
            return;
        }
        Tamerisk_Close();
        QApplication::quit();
    }

    void Act()
    {
        QWidget* top = TopBlocking();
        if (auto* files = qobject_cast<QFileDialog*>(top)) {
            AnswerFileDialog(files);
            return;
        }
        // Deep nesting goes nowhere new: bring it back up.
        if (top != nullptr && (ModalDepth() > 3 || Chance(8))) {
            Dismiss(top);
            return;
        }
        QWidget* window = top != nullptr ? top : VisibleWindow();
        if (window == nullptr && Chance(2)) {
            ++hostCalls;
            Tamerisk_GetShow() == TAMERISK_NO_EDITOR ? void(Tamerisk_Open(&host, host.message))
                                                     : Tamerisk_ShowWindow(TAMERISK_SW_SHOWNORMAL);
            return;
        }
        if (window == nullptr)
            return HostCall(false);
        ++reached[window->metaObject()->className()];
        // Each action with its weight out of 100.
        using Action = void (Monkey::*)(QWidget*);
        static constexpr std::pair<int, Action> kActions[] = {
            {20, &Monkey::HostCallOver}, {40, &Monkey::Press},  {18, &Monkey::Key},    {8, &Monkey::Wheel},
            {5, &Monkey::DoubleClick},   {5, &Monkey::Resize}, {4, &Monkey::PutOnClipboard}};
        int roll = Uniform(0, 99);
        for (const auto& [weight, action] : kActions) {
            if ((roll -= weight) < 0)
                return (this->*action)(window);
        }
    }

    // --- what a user does -------------------------------------------------

    // A click, or a drag (a slider's thumb follows it). Each event only to
    // a widget still there: the press may open a modal window in which the
    // host closes the editor.
    void Press(QWidget* window)
    {
        static constexpr std::array kButtons{Qt::LeftButton, Qt::LeftButton, Qt::LeftButton, Qt::RightButton,
                                             Qt::MiddleButton};
        QPointer<QWidget> target = Target(window);
        const Qt::MouseButton button = Pick(kButtons);
        const Qt::KeyboardModifiers modifiers = Modifiers();
        QPoint at = RandomPoint(target);
        QTest::mousePress(target, button, modifiers, at);
        for (int moves = Chance(4) ? Uniform(1, 6) : 0; moves > 0 && target != nullptr; --moves)
            QTest::mouseMove(target, at = RandomPoint(target));
        if (target != nullptr)
            QTest::mouseRelease(target, button, modifiers, at);
    }

    // On the editor's preview it opens the large preview.
    void DoubleClick(QWidget* window)
    {
        QWidget* preview = window->findChild<QWidget*>(QStringLiteral("4000"));
        QWidget* target = preview != nullptr && preview->isVisible() && Chance(2) ? preview : Target(window);
        QTest::mouseDClick(target, Qt::LeftButton, {}, RandomPoint(target));
    }

    void Key(QWidget* window)
    {
        static constexpr std::array kKeys{Qt::Key_Space, Qt::Key_Return, Qt::Key_Escape, Qt::Key_Tab,
                                          Qt::Key_Backtab, Qt::Key_Up, Qt::Key_Down, Qt::Key_Left,
                                          Qt::Key_Right, Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_Home,
                                          Qt::Key_End, Qt::Key_Backspace, Qt::Key_Z, Qt::Key_Y, Qt::Key_C,
                                          Qt::Key_V, Qt::Key_0, Qt::Key_5, Qt::Key_9, Qt::Key_Minus,
                                          Qt::Key_Period, Qt::Key_A, Qt::Key_F4};
        QWidget* focus = QApplication::focusWidget();
        QPointer<QWidget> target = focus != nullptr && focus->window() == window ? focus : Target(window);
        const Qt::Key key = Pick(kKeys);
        const Qt::KeyboardModifiers modifiers = Modifiers();
        SendKey(target, QEvent::KeyPress, key, modifiers);
        SendKey(target, QEvent::KeyRelease, key, modifiers);
    }

    // One event, and only to a widget still there. QTest's key functions
    // follow a key with its modifiers' own presses or releases, all to the
    // same pointer, which a key that closed its window has left dangling.
    static void SendKey(const QPointer<QWidget>& target, QEvent::Type type, Qt::Key key,
                        Qt::KeyboardModifiers modifiers)
    {
        if (target == nullptr)
            return;
        const char ascii = QTest::keyToAscii(key);
        QKeyEvent event(type, key, modifiers, ascii != 0 ? QString(QChar::fromLatin1(ascii)) : QString());
        QApplication::sendEvent(target, &event);
    }

    void Wheel(QWidget* window)
    {
        QWidget* target = Target(window);
        const QPointF at = RandomPoint(target);
        const QPoint delta(0, 120 * Uniform(-3, 3) + (Chance(4) ? Uniform(-60, 60) : 0));
        QWheelEvent wheel(at, target->mapToGlobal(at), QPoint(), delta, Qt::NoButton, Modifiers(),
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(target, &wheel);
    }

    void Resize(QWidget* window)
    {
        if (Chance(3))
            window->move(Uniform(-300, 2500), Uniform(-300, 1500));
        else
            window->resize(Uniform(0, 1) == 0 ? Uniform(0, 60) : Uniform(0, 1600), Uniform(0, 1200));
    }

    // What "貼り付け" finds: junk, nothing, or a copied material bent a little.
    void PutOnClipboard(QWidget*)
    {
        QClipboard* clipboard = QApplication::clipboard();
        switch (Uniform(0, 3)) {
        case 0: clipboard->setText(RandomText(Uniform(0, 200))); break;
        case 1: clipboard->clear(); break;
        default: {
            QString text = clipboard->text();
            if (!text.isEmpty())
                text[Uniform(0, static_cast<int>(text.size()) - 1)] = QChar(Uniform(32, 126));
            clipboard->setText(text);
        }
        }
    }

    // Open: a file saved before, junk, a folder or nothing there; save: a
    // file in the scratch folder. Or cancel.
    void AnswerFileDialog(QFileDialog* dialog)
    {
        ++answered;
        if (Chance(3)) {
            dialog->reject();
            return;
        }
        QString path = scratch + QStringLiteral("/m%1.qva").arg(Uniform(0, 3));
        if (Uniform(0, 3) == 0) {
            QFile junk(path);
            if (junk.open(QIODevice::WriteOnly))
                junk.write(RandomText(Uniform(0, 300)).toUtf8());
        }
        if (Chance(8))
            path = scratch;
        dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(path);
        static_cast<QDialog*>(dialog)->accept();
        // An open dialog refuses a name that is not there: it stays up and
        // is cancelled next time.
    }

    // --- what the host does -----------------------------------------------

    void HostCallOver(QWidget*) { HostCall(TopBlocking() != nullptr); }

    void HostCall(bool modalUp)
    {
        ++hostCalls;
        static constexpr std::array kBinds{0, 1, 1, 2, -1, INT_MIN, INT_MAX};
        const int call = Uniform(0, 11);
        if (call <= 1 && modalUp && !options.closeInModal)
            return;
        FZAttributeEx record = records.Next();
        const std::string title = RandomBytes(Uniform(0, 80));
        switch (call) {
        case 0: Tamerisk_Close(); break;
        case 1: Tamerisk_Open(Chance(4) ? nullptr : &host, host.message); break;
        case 2:
        case 3: Tamerisk_SetAttribute(Chance(20) ? nullptr : &record); break;
        case 4: Tamerisk_GetAttribute(Chance(20) ? nullptr : &record); break;
        case 5: Tamerisk_SetColorBind(Pick(kBinds)); break;
        case 6:
        case 7: Tamerisk_ShowWindow(Chance(6) ? Uniform(-3, 14) : TAMERISK_SW_SHOWNORMAL); break;
        case 8: Tamerisk_SetTitle(Chance(10) ? nullptr : title.c_str()); break;
        default: static_cast<void>(Tamerisk_GetShow() + Tamerisk_GetColorBind() + Tamerisk_GetLastResult());
        }
    }

    // --- where ---------------------------------------------------------------

    // The innermost modal window or pop-up menu: only it takes input.
    static QWidget* TopBlocking()
    {
        if (QWidget* popup = QApplication::activePopupWidget())
            return popup;
        return QApplication::activeModalWidget();
    }

    static int ModalDepth()
    {
        int depth = 0;
        for (QWidget* w : QApplication::topLevelWidgets())
            depth += w->isVisible() && w->isModal();
        return depth;
    }

    void Dismiss(QWidget* top)
    {
        ++answered;
        if (qobject_cast<QFileDialog*>(top) != nullptr)
            static_cast<QDialog*>(top)->reject();
        else if (auto* dialog = qobject_cast<QDialog*>(top))
            Chance(3) ? dialog->accept() : dialog->reject();
        else
            top->close();
    }

    // One of the visible top-level windows (editor, large preview).
    QWidget* VisibleWindow()
    {
        std::vector<QWidget*> shown;
        for (QWidget* w : QApplication::topLevelWidgets()) {
            if (w->isVisible() && w != &host && !w->isMinimized())
                shown.push_back(w);
        }
        return shown.empty() ? nullptr : Pick(shown);
    }

    // The window or one of its visible, enabled widgets; a button half of
    // the time, as buttons are what opens the other windows.
    QWidget* Target(QWidget* window)
    {
        std::vector<QWidget*> reachable{window};
        std::vector<QWidget*> buttons;
        for (QWidget* w : window->findChildren<QWidget*>()) {
            if (w->isVisible() && w->isEnabled() && w->window() == window && !w->size().isEmpty()) {
                reachable.push_back(w);
                if (qobject_cast<QAbstractButton*>(w) != nullptr)
                    buttons.push_back(w);
            }
        }
        return Pick(buttons.empty() || Chance(2) ? reachable : buttons);
    }

    QPoint RandomPoint(const QWidget* widget)
    {
        return {Uniform(0, std::max(0, widget->width() - 1)), Uniform(0, std::max(0, widget->height() - 1))};
    }

    Qt::KeyboardModifiers Modifiers()
    {
        static constexpr std::array kModifiers{Qt::NoModifier, Qt::NoModifier, Qt::NoModifier, Qt::ControlModifier,
                                               Qt::ShiftModifier, Qt::AltModifier};
        return Pick(kModifiers);
    }

    // --- chance ---------------------------------------------------------------

    int Uniform(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); }
    bool Chance(int oneIn) { return Uniform(1, oneIn) == 1; }
    template <typename List>
    typename List::value_type Pick(const List& from)
    {
        return from[static_cast<std::size_t>(Uniform(0, static_cast<int>(std::size(from)) - 1))];
    }

    QString RandomText(int length)
    {
        QString text;
        for (int i = 0; i < length; ++i)
            text += Chance(10) ? QChar(Uniform(0x3000, 0x30ff)) : QChar(Uniform(9, 126));
        return text;
    }

    // Bytes that need not be UTF-8, without a zero.
    std::string RandomBytes(int length)
    {
        std::string bytes;
        for (int i = 0; i < length; ++i)
            bytes += static_cast<char>(Uniform(1, 255));
        return bytes;
    }

    const Options options;
    const QString scratch;
    std::mt19937_64 random;
    RecordMaker records;
    HostWindow host;
    int done = 0;
    int hostCalls = 0;
    int answered = 0;
    std::map<std::string, int> reached;  // steps by the class of the window
};

Options ReadOptions(int argc, char** argv)
{
    Options options;
    if (const char* seed = std::getenv("TAMERISK_MONKEY_SEED"); seed != nullptr && *seed != '\0')
        options.seed = std::strtoull(seed, nullptr, 10);
    else
        options.seed = (std::uint64_t{std::random_device{}()} << 32) | std::random_device{}();
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--seed" && i + 1 < argc)
            options.seed = std::strtoull(argv[++i], nullptr, 10);
        else if (arg == "--steps" && i + 1 < argc)
            options.steps = std::max(0, std::atoi(argv[++i]));
        else if (arg == "--no-close-in-modal")
            options.closeInModal = false;
    }
    return options;
}

// The offscreen platform says so at every raise and resize; nothing else
// is dropped.
QtMessageHandler standardMessages = nullptr;

void QuietPlatform(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (!message.startsWith(QLatin1String("This plugin does not support")))
        standardMessages(type, context, message);
}

} // namespace

int main(int argc, char** argv)
{
    const Options options = ReadOptions(argc, argv);
    const auto seed = static_cast<unsigned long long>(options.seed);
    std::printf("monkey: seed %llu, %d steps (rerun: TAMERISK_MONKEY_SEED=%llu or --seed %llu)\n", seed,
                options.steps, seed, seed);
    std::fflush(stdout);

    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // The settings file and every file the monkey saves stay in here.
    const QTemporaryDir scratch;
    qputenv("TAMERISK_SETTINGS_DIR", scratch.path().toLocal8Bit());
    standardMessages = qInstallMessageHandler(QuietPlatform);
    QApplication app(argc, argv);
    Monkey monkey(options, scratch.path());
    monkey.Start();
    const int status = QApplication::exec();
    monkey.Report();
    return status;
}
