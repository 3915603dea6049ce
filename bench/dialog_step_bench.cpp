// A slider step in the material dialog, timed from the scroll action to the
// repainted preview: the dialog writes the record, shades the sample,
// renders the frame, presents it and paints, all on the offscreen platform
// at the dialog's own preview size. Each material of the shared set runs
// with one thread and with several (every processor, or TAMERISK_THREADS
// threads), the same code either way; the "preview_px" counter
// is the side of the square preview.
//
// LargePreviewStep is the same step with the large preview open at 512 x 512,
// timed until the large preview shows the full picture of the step (which
// it renders on a thread of its own).
//
// LargePreviewDrag drags the slider through 100 steps, one every 16 ms as
// a mouse moves it, with the large preview open at 3840 x 2160, and lets it
// go; its time is the longest the window's thread was busy at once (a step
// with the dialog's own preview, the events in between, the frames that
// come back painted) until the large preview shows the last step in full.
// The counters give the longest of those stretches in processor time of the
// window's thread, the mean time of a step and the time from the release to
// the full picture.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <ctime>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <string>
#include <thread>
#include <utility>

#include <QAbstractSlider>
#include <QApplication>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTemporaryDir>

#include <tamerisk/dlg_attribute.h>

#include "bench_materials.h"
#include "dialogs/dialog_template.h"
#include "dialogs/large_preview.h"
#include "dialogs/templates.h"
#include "engine/parallel.h"

namespace {

int ParallelThreads()
{
    const char* text = std::getenv("TAMERISK_THREADS");
    const int n = text == nullptr ? 0 : std::atoi(text);
    SetRenderThreads(n >= 2 ? n : 0);
    const int resolved = RenderThreads();
    SetRenderThreads(0);
    return resolved;
}

// Opens the large preview as a user does, with a double click on the
// dialog's preview, and gives its drawing area the size `size`.
bool OpenLargePreview(QWidget* preview, QSize size)
{
    const QPointF at(preview->width() / 2.0, preview->height() / 2.0);
    QMouseEvent click(QEvent::MouseButtonDblClick, at, preview->mapToGlobal(at), Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(preview, &click);
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->objectName() == "tamerisk-large-preview" && window->isVisible()) {
            window->resize(size);
            QApplication::processEvents();
            const QWidget* area = window->findChild<QWidget*>("4000");
            return area != nullptr && area->size() == size;
        }
    }
    return false;
}

CLargePreview* FindLargePreview()
{
    for (QWidget* window : QApplication::topLevelWidgets())
        if (auto* large = qobject_cast<CLargePreview*>(window); large != nullptr && large->isVisible())
            return large;
    return nullptr;
}

using Clock = std::chrono::steady_clock;

// Times every stretch of work the window's thread does at once, by the
// clock and by the thread's own processor time (the clock also counts the
// time the system gave the core to other programs).
class BusyWatch {
public:
    template <typename Work>
    void Time(Work&& work)
    {
        const double cpu = ThreadSeconds();
        const auto from = Clock::now();
        work();
        longest = std::max(longest, std::chrono::duration<double>(Clock::now() - from).count());
        longestCpu = std::max(longestCpu, ThreadSeconds() - cpu);
    }
    // Handles the events that come in until `until`, each round timed.
    void HandleEventsUntil(Clock::time_point until)
    {
        while (Clock::now() < until) {
            Time([] { QApplication::processEvents(); });
            std::this_thread::sleep_for(std::chrono::microseconds(500));
        }
    }
    double longest = 0.0;     // seconds
    double longestCpu = 0.0;  // seconds

private:
    static double ThreadSeconds()
    {
        timespec t{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
        return static_cast<double>(t.tv_sec) + 1e-9 * static_cast<double>(t.tv_nsec);
    }
};

constexpr int kDragSteps = 100;
constexpr auto kMouseInterval = std::chrono::milliseconds(16);
constexpr auto kSettleLimit = std::chrono::seconds(60);

// The material dialog showing the material, with the benchmark's thread
// count; null (the benchmark skipped) when it cannot be made.
std::unique_ptr<CDlgAttribute> ShownDialog(benchmark::State& state, const FZAttributeEx& material)
{
    SetRenderThreads(static_cast<int>(state.range(0)));
    auto dialog = std::make_unique<CDlgAttribute>(nullptr);
    if (!dialog->Create() || DlgItem<QScrollBar>(dialog.get(), kIdDiffuse) == nullptr
        || GetDlgItem(dialog.get(), kIdPreview) == nullptr) {
        state.SkipWithError("the dialog, its diffuse slider or its preview could not be made");
        return nullptr;
    }
    dialog->SetAttribute(material);
    dialog->UpdatePanelView();
    dialog->show();
    QApplication::processEvents();
    return dialog;
}

void LargePreviewDrag(benchmark::State& state, const FZAttributeEx& material)
{
    const std::unique_ptr<CDlgAttribute> dialog = ShownDialog(state, material);
    if (dialog == nullptr)
        return;
    QScrollBar* diffuse = DlgItem<QScrollBar>(dialog.get(), kIdDiffuse);
    if (!OpenLargePreview(GetDlgItem(dialog.get(), kIdPreview), QSize(3840, 2160))) {
        state.SkipWithError("the large preview did not open at 3840 x 2160");
        return;
    }
    CLargePreview* large = FindLargePreview();
    const auto settle = [&](BusyWatch& busy) {
        const auto limit = Clock::now() + kSettleLimit;
        while (!large->Settled() && Clock::now() < limit)
            busy.HandleEventsUntil(Clock::now() + std::chrono::milliseconds(1));
        return large->Settled();
    };
    BusyWatch warmUp;
    if (!settle(warmUp)) {
        state.SkipWithError("the large preview never showed its first picture");
        return;
    }
    double stepTime = 0.0;
    double settleTime = 0.0;
    double longestCpu = 0.0;
    for (auto _ : state) {
        BusyWatch busy;
        diffuse->setSliderDown(true);
        int direction = 1;
        for (int step = 0; step < kDragSteps; ++step) {
            const auto next = Clock::now() + kMouseInterval;
            if (diffuse->value() == (direction > 0 ? diffuse->maximum() : diffuse->minimum()))
                direction = -direction;
            const auto from = Clock::now();
            busy.Time([&] {
                diffuse->triggerAction(direction > 0 ? QAbstractSlider::SliderSingleStepAdd
                                                     : QAbstractSlider::SliderSingleStepSub);
                QApplication::processEvents();
            });
            stepTime += std::chrono::duration<double>(Clock::now() - from).count();
            busy.HandleEventsUntil(next);
        }
        const auto released = Clock::now();
        busy.Time([&] {
            diffuse->setSliderDown(false);
            QApplication::processEvents();
        });
        if (!settle(busy)) {
            state.SkipWithError("the large preview did not show the last step");
            return;
        }
        settleTime += std::chrono::duration<double>(Clock::now() - released).count();
        state.SetIterationTime(busy.longest);
        longestCpu = std::max(longestCpu, busy.longestCpu);
    }
    const double n = static_cast<double>(state.iterations());
    state.counters["step_ms"] = 1e3 * stepTime / (n * kDragSteps);
    state.counters["settle_ms"] = 1e3 * settleTime / n;
    state.counters["longest_cpu_ms"] = 1e3 * longestCpu;
}

void SliderStep(benchmark::State& state, const FZAttributeEx& material, int largeSide)
{
    const std::unique_ptr<CDlgAttribute> dialog = ShownDialog(state, material);
    if (dialog == nullptr)
        return;
    QScrollBar* diffuse = DlgItem<QScrollBar>(dialog.get(), kIdDiffuse);
    QWidget* preview = GetDlgItem(dialog.get(), kIdPreview);
    if (largeSide > 0 && !OpenLargePreview(preview, QSize(largeSide, largeSide))) {
        state.SkipWithError("the large preview did not open at its size");
        return;
    }
    CLargePreview* large = FindLargePreview();
    bool up = diffuse->value() < diffuse->maximum();
    for (auto _ : state) {
        diffuse->triggerAction(up ? QAbstractSlider::SliderSingleStepAdd : QAbstractSlider::SliderSingleStepSub);
        QApplication::processEvents();
        while (large != nullptr && !large->Settled())
            QApplication::processEvents(QEventLoop::WaitForMoreEvents);
        up = !up;
    }
    state.counters["preview_px"] = largeSide > 0 ? largeSide : preview->width();
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // The dialog remembers its placement in a settings file; the benchmark
    // keeps its own, in a directory removed at exit.
    const QTemporaryDir settings;
    if (qEnvironmentVariableIsEmpty("TAMERISK_SETTINGS_DIR"))
        qputenv("TAMERISK_SETTINGS_DIR", settings.path().toLocal8Bit());
    QApplication app(argc, argv);

    const int parallel = ParallelThreads();
    for (const BenchMaterial& m : BenchMaterials()) {
        benchmark::RegisterBenchmark(("LargePreviewDrag/" + m.name).c_str(), LargePreviewDrag, m.material)
            ->ArgName("threads")
            ->Arg(parallel)
            ->Iterations(1)
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
        for (const auto& [name, largeSide] : {std::pair{"DialogSliderStep/", 0},
                                              std::pair{"LargePreviewStep/", 512}})
            benchmark::RegisterBenchmark((name + m.name).c_str(), SliderStep, m.material, largeSide)
                ->ArgName("threads")
                ->Arg(1)
                ->Arg(parallel)
                ->Unit(benchmark::kMillisecond)
                ->UseRealTime();
    }

    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
