// A slider step in the material dialog, timed from the scroll action to the
// repainted preview: the dialog writes the record, shades the sample,
// renders the frame, presents it and paints, all on the offscreen platform
// at the dialog's own preview size. Each material of the shared set runs
// with one thread and with several (every processor, or TAMERISK_THREADS
// threads), the same code either way; the "preview_px" counter
// is the side of the square preview.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <memory>
#include <string>

#include <QAbstractSlider>
#include <QApplication>
#include <QScrollBar>
#include <QTemporaryDir>

#include <tamerisk/dlg_attribute.h>

#include "bench_materials.h"
#include "dialogs/dialog_template.h"
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

void SliderStep(benchmark::State& state, const FZAttributeEx& material)
{
    SetRenderThreads(static_cast<int>(state.range(0)));
    CDlgAttribute dialog(nullptr);
    if (!dialog.Create()) {
        state.SkipWithError("the dialog could not be created");
        return;
    }
    dialog.SetAttribute(material);
    dialog.UpdatePanelView();
    dialog.show();
    QApplication::processEvents();
    QScrollBar* diffuse = DlgItem<QScrollBar>(&dialog, kIdDiffuse);
    QWidget* preview = GetDlgItem(&dialog, kIdPreview);
    if (diffuse == nullptr || preview == nullptr) {
        state.SkipWithError("the dialog has no diffuse slider or preview");
        return;
    }
    bool up = diffuse->value() < diffuse->maximum();
    for (auto _ : state) {
        diffuse->triggerAction(up ? QAbstractSlider::SliderSingleStepAdd : QAbstractSlider::SliderSingleStepSub);
        QApplication::processEvents();
        up = !up;
    }
    state.counters["preview_px"] = preview->width();
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
    for (const BenchMaterial& m : BenchMaterials())
        benchmark::RegisterBenchmark(("DialogSliderStep/" + m.name).c_str(), SliderStep, m.material)
            ->ArgName("threads")
            ->Arg(1)
            ->Arg(parallel)
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime();

    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
