#include "progress.h"

#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdio>

namespace {

// Lock-free, so the signal handler may set it.
std::atomic<bool> interrupted{false};
static_assert(std::atomic<bool>::is_always_lock_free);

extern "C" void OnInterrupt(int)
{
    interrupted.store(true);
}

void InstallInterruptHandler()
{
    struct sigaction action = {};
    action.sa_handler = OnInterrupt;
    sigemptyset(&action.sa_mask);
    // A second Ctrl+C ends the program at once; writes in progress go on.
    action.sa_flags = SA_RESETHAND | SA_RESTART;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

// Quick renders never show a bar.
constexpr auto kQuiet = std::chrono::milliseconds(300);
constexpr auto kRedraw = std::chrono::milliseconds(100);
constexpr int kBarWidth = 30;

}  // namespace

Progress::Progress(int count) : terminal(isatty(STDERR_FILENO) == 1), pictures(count)
{
    InstallInterruptHandler();
    started = std::chrono::steady_clock::now();
    watch.stop = &interrupted;
    if (terminal) {
        watch.rowsDone = RowsDone;
        watch.context = this;
    }
    SetRenderWatch(&watch);
}

Progress::~Progress()
{
    SetRenderWatch(nullptr);
    Clear();
}

bool Progress::Interrupted()
{
    return interrupted.load();
}

void Progress::Start(int picture, const QString& file)
{
    index = picture;
    target = file;
    if (shown)
        Draw(0.0);
}

void Progress::Say(const QString& line)
{
    Clear();
    std::fprintf(stderr, "tamerisk-render: %s\n", qPrintable(line));
}

void Progress::RowsDone(void* context, std::int32_t done, std::int32_t total)
{
    auto& self = *static_cast<Progress*>(context);
    const auto now = std::chrono::steady_clock::now();
    if (now - self.started < kQuiet || (self.shown && now - self.lastDraw < kRedraw))
        return;
    self.Draw(total > 0 ? static_cast<double>(done) / total : 0.0);
}

void Progress::Draw(double passFraction)
{
    if (!terminal)
        return;
    // The bar counts pictures; a single picture fills it pass by pass.
    const double fraction = pictures > 1 ? static_cast<double>(index) / pictures : passFraction;
    const int filled = static_cast<int>(fraction * kBarWidth);
    const QString bar = QString(filled, QLatin1Char('#')) + QString(kBarWidth - filled, QLatin1Char('-'));
    const QString count = pictures > 1 ? QStringLiteral(" %1/%2").arg(index + 1).arg(pictures) : QString();
    const QString line = QStringLiteral("\r[%1]%2 %3 (pass %4%)\x1b[K")
                             .arg(bar, count, target)
                             .arg(static_cast<int>(passFraction * 100.0));
    std::fputs(qPrintable(line), stderr);
    std::fflush(stderr);
    shown = true;
    lastDraw = std::chrono::steady_clock::now();
}

void Progress::Clear()
{
    if (!shown)
        return;
    std::fputs("\r\x1b[K", stderr);
    std::fflush(stderr);
    shown = false;
}
