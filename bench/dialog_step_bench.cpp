// A slider step in the material dialog, timed from the scroll action to the
// repainted preview: the dialog writes the record, shades the sample,
// renders the frame, presents it and paints, all on the offscreen platform
// at the dialog's own preview size. Each material of the shared set runs
// with one thread and with several (every processor, or TAMERISK_THREADS
// threads), the same code either way; the "preview_px" counter
// is the side of the square preview.
//
// LargePreviewStep is the same step with the large preview open at 512 x 512:
// the step also renders the material at that size and paints it there.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <utility>

#include <QAbstractSlider>
#include <QApplication>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTemporaryDir>

#include "dialogs/dlg_attribute.h"

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

// Opens the large preview as a user does, with a double click on the
// dialog's preview, and gives its drawing area the side `side`.
bool OpenLargePreview(QWidget* preview, int side)
{
    const QPointF at(preview->width() / 2.0, preview->height() / 2.0);
    QMouseEvent click(QEvent::MouseButtonDblClick, at, preview->mapToGlobal(at), Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(preview, &click);
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->objectName() == "tamerisk-large-preview" && window->isVisible()) {
            window->resize(side, side);
            QApplication::processEvents();
            const QWidget* area = window->findChild<QWidget*>("4000");
            return area != nullptr && area->size() == QSize(side, side);
        }
    }
    return false;
}

void SliderStep(benchmark::State& state, const FZAttributeEx& material, int largeSide)
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
    if (largeSide > 0 && !OpenLargePreview(preview, largeSide)) {
        state.SkipWithError("the large preview did not open at its size");
        return;
    }
    bool up = diffuse->value() < diffuse->maximum();
    for (auto _ : state) {
        diffuse->triggerAction(up ? QAbstractSlider::SliderSingleStepAdd : QAbstractSlider::SliderSingleStepSub);
        QApplication::processEvents();
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
