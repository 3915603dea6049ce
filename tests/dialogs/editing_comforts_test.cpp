// The editing comforts of the material dialog, driven as a user drives them:
// undo and redo by key, a file dropped on the window, copy and paste through
// the clipboard, and the large preview opened by a double click.
//
// With TAMERISK_SCREENSHOT_DIR set the large preview test writes the user guide's
// picture of it there (see screenshot_test.cpp).
#include <chrono>
#include <functional>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QColorDialog>
#include <QDir>
#include <QMessageBox>
#include <QMimeData>
#include <QPainter>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>
#include <gtest/gtest.h>

#include "../../bench/bench_materials.h"
#include "dialogs/dialog_template.h"
#include "dialogs/material_history.h"
#include "dialogs/preview_renderer.h"
#include "dialogs/templates.h"
#include "engine/display/canvas.h"
#include "engine/display/image_display.h"
#include "host/settings.h"
#include "json/material_json.h"
#include "material/attribute_file.h"
#include "preview/preview_panel.h"
#include "support/dlg_attribute_access.h"

namespace {

constexpr auto kNotify = static_cast<QEvent::Type>(QEvent::User + 43);

// The picture tamerisk-render draws of the material at that size.
QImage Rendered(const FZAttributeEx& m, int shape, QSize size)
{
    CPreviewPanel panel;
    EXPECT_EQ(panel.SetUpFrame(size.width(), size.height()), FZResult::Ok);
    EXPECT_EQ(panel.BuildSampleShape(shape), FZResult::Ok);
    EXPECT_EQ(panel.ApplyMaterial(m, 0), FZResult::Ok);
    return MakeBitmap(*panel.Scene()->frame).convertToFormat(QImage::Format_RGB32);
}

class Comforts : public ::testing::Test {
public:
    void SetUp() override
    {
        dialog = std::make_unique<CDlgAttribute>(&host, kNotify);
        ASSERT_TRUE(dialog->Create());
        // An edit before the host hands its record over: undo never reaches it.
        Bar(kIdReflection)->triggerAction(QAbstractSlider::SliderPageStepAdd);
        start.color.SetBytes(200, 60, 40);
        start.reflection = 0.25f;
        start.smoothHighlight = 1;
        start.rainbow = 1;
        dialog->SetAttribute(start);  // as Tamerisk_SetAttribute does
        dialog->UpdatePanelView();
        dialog->showNormal();
        QApplication::setActiveWindow(dialog.get());
        ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
    }

    FZAttributeEx Record() const { return RecordOf(*dialog); }
    QScrollBar* Bar(int id) const { return DlgItem<QScrollBar>(dialog.get(), id); }
    void Click(int id) const { DlgItem<QAbstractButton>(dialog.get(), id)->click(); }
    // Keys go to a slider: the shortcuts work wherever the focus is.
    void Keys(const QKeySequence& keys) const { QTest::keySequence(Bar(kIdAmbient), keys); }
    // What the user sees: every slider and check box, and the preview.
    std::pair<std::vector<int>, QImage> Showing() const
    {
        std::vector<int> values;
        for (const auto* bar : dialog->findChildren<QScrollBar*>())
            values.push_back(bar->value());
        for (const auto* box : dialog->findChildren<QCheckBox*>())
            values.push_back(box->isChecked());
        return {values, DlgItem<FZCanvas>(dialog.get(), kIdPreview)->Surface()};
    }

    NotifyCounter host{kNotify};
    FZAttributeEx start;
    std::unique_ptr<CDlgAttribute> dialog;
};

struct Edit {
    const char* name;
    std::function<void(Comforts&)> make;
};

class EveryEdit : public Comforts, public ::testing::WithParamInterface<Edit> {};

// Each kind of edit is one step: undo shows the record before it on every
// control and the preview, both redo keys the one after it, and the history
// never goes back past the host's record. The host hears nothing of it.
TEST_P(EveryEdit, IsOneStepOfUndoAndRedo)
{
    const auto before = Showing();
    GetParam().make(*this);
    QApplication::setActiveWindow(dialog.get());  // back from a picker
    const FZAttributeEx edited = Record();
    const auto after = Showing();
    ASSERT_FALSE(SameRecord(edited, start));

    Keys(QKeySequence::Undo);
    Keys(QKeySequence::Undo);
    EXPECT_TRUE(SameRecord(Record(), start));
    EXPECT_EQ(Showing(), before);
    for (const QKeySequence& redo : {QKeySequence("Ctrl+Shift+Z"), QKeySequence("Ctrl+Y")}) {
        Keys(redo);
        EXPECT_TRUE(SameRecord(Record(), edited));
        EXPECT_EQ(Showing(), after);
        Keys(QKeySequence::Undo);
    }
    EXPECT_EQ(host.notifications, 0);
}

INSTANTIATE_TEST_SUITE_P(Dialog, EveryEdit, ::testing::Values(
    Edit{"SliderStep", [](Comforts& t) {
        t.Bar(kIdDiffuse)->triggerAction(QAbstractSlider::SliderPageStepAdd);
    }},
    Edit{"WholeDrag", [](Comforts& t) {
        t.Bar(kIdEmission)->setSliderDown(true);
        for (int p : {5, 20, 40})
            t.Bar(kIdEmission)->setSliderPosition(p);
        t.Bar(kIdEmission)->setSliderDown(false);
    }},
    Edit{"CheckBox", [](Comforts& t) { t.Click(kIdColorTransparency); }},
    Edit{"ColourChosen", [](Comforts& t) {
        const ModalAnswer<QColorDialog> answer([](QColorDialog* picker) {
            picker->setCurrentColor(QColor(1, 2, 3));
            picker->accept();
        });
        t.Click(kIdHighlightSwatch);
    }},
    Edit{"ParameterDialogOk", [](Comforts& t) {
        const ModalAnswer<> answer([](QWidget* w) {
            DlgItem<QScrollBar>(w, 4036)->setSliderPosition(10);  // stripe spacing
            DlgItem<QAbstractButton>(w, kIdOk)->click();
        });
        t.Click(kIdRainbowParameter);
    }},
    Edit{"RandomColour", [](Comforts& t) {
        for (int i = 0; i < 4 && t.Record().color.r == 200; ++i)
            t.Click(kIdRandom);
    }},
    Edit{"Paste", [](Comforts& t) {
        // What a file may hold too: the editor takes it without harm.
        QApplication::clipboard()->setText(R"({"diffuse": "nan", "ambient": "inf", "emission": -1e30,
            "anisotropic": 1, "anisotropy": {"type": 2, "waveCount": 2147483647}})");
        t.Keys(QKeySequence::Paste);
    }}),
    [](const auto& info) { return std::string(info.param.name); });

// A shape change is no edit: it keeps the step undone before it.
TEST_F(Comforts, AShapeChangeKeepsTheRedoSteps)
{
    Bar(kIdDiffuse)->triggerAction(QAbstractSlider::SliderSingleStepAdd);
    const FZAttributeEx stepped = Record();
    Keys(QKeySequence::Undo);
    Click(kIdShapeNext);
    Keys(QKeySequence::Redo);
    EXPECT_TRUE(SameRecord(Record(), stepped));
    const auto* preview = DlgItem<FZCanvas>(dialog.get(), kIdPreview);
    EXPECT_EQ(preview->Surface().convertToFormat(QImage::Format_RGB32), Rendered(stepped, 2, preview->PixelSize()));
}

TEST_F(Comforts, CopyGivesTheDumpTextAndBadPastesChangeNothing)
{
    Keys(QKeySequence::Copy);
    EXPECT_EQ(QApplication::clipboard()->text().toUtf8(), MaterialToJson(start, 10));
    for (const QString& bad : {QString("a colour"), QString(R"({"diffuse": "x"})"),
                               QString(R"({"anisotropy": {"waveCount": 1.5}})"),
                               QString(2 << 20, u' ') + "{}"}) {
        QApplication::clipboard()->setText(bad);
        Keys(QKeySequence::Paste);
        EXPECT_TRUE(SameRecord(Record(), start)) << bad.left(40).toStdString();
    }
    Keys(QKeySequence::Undo);
    EXPECT_TRUE(SameRecord(Record(), start));
}

// Drags a file onto a slider, as a user aims at the window, and drops it
// there when the window takes it.
bool DropFile(QWidget* target, const QString& path)
{
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(path)});
    QDragEnterEvent enter(QPoint(2, 2), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &enter);
    QDropEvent drop(QPointF(2, 2), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    return enter.isAccepted() && QApplication::sendEvent(target, &drop);
}

TEST_F(Comforts, DroppedQvaLoadsAsOpenDoesAndOtherFilesAreRefused)
{
    QTemporaryDir dir;
    FZAttributeEx saved;
    saved.emission = 0.5f;
    ASSERT_EQ(SaveAttributeFile(dir.filePath("m.QVA").toLocal8Bit().constData(), saved), FZResult::Ok);
    EXPECT_FALSE(DropFile(Bar(kIdDiffuse), dir.filePath("m.txt")));
    ASSERT_TRUE(DropFile(Bar(kIdDiffuse), dir.filePath("m.QVA")));
    ASSERT_TRUE(QTest::qWaitFor([&] { return SameRecord(Record(), saved); }));
    Keys(QKeySequence::Undo);
    EXPECT_TRUE(SameRecord(Record(), start));

    QFile bad(dir.filePath("bad.qva"));
    ASSERT_TRUE(bad.open(QIODevice::WriteOnly) && bad.write("<Quorvantel Attribute>0099") > 0);
    bad.close();
    const ModalAnswer<QMessageBox> answer([](QMessageBox* box) {
        EXPECT_EQ(box->text(), QString::fromUtf8("ﾊﾞｰｼﾞｮﾝの異なるﾌｧｲﾙです。"));
        box->accept();
    });
    ASSERT_TRUE(DropFile(Bar(kIdDiffuse), dir.filePath("bad.qva")));
    ASSERT_TRUE(QTest::qWaitFor([&] { return answer.Seen(); }));
    EXPECT_TRUE(SameRecord(Record(), start));
    EXPECT_EQ(host.notifications, 0);
}

// How long a test waits for a large picture: under the sanitizers, on a
// busy machine, one takes many seconds.
constexpr int kFrameWait = 60000;  // ms

QImage Shown(const FZCanvas& area)
{
    return area.Surface().convertToFormat(QImage::Format_RGB32);
}

// Whether the area comes to show the material's picture. Rendered once, not
// at every look: under the sanitizers a render takes longer than a wait.
bool Shows(const FZCanvas& area, const FZAttributeEx& m, int shape)
{
    const QImage expected = Rendered(m, shape, area.PixelSize());
    return QTest::qWaitFor([&] { return Shown(area) == expected; }, kFrameWait);
}

QWidget* OpenLargePreview(const CDlgAttribute& dialog)
{
    QTest::mouseDClick(DlgItem<QWidget>(&dialog, kIdPreview), Qt::LeftButton);
    auto* window = dialog.findChild<QWidget*>("tamerisk-large-preview");
    return window != nullptr && QTest::qWaitForWindowExposed(window) ? window : nullptr;
}

// The large preview draws what tamerisk-render draws at the size of its area
// in device pixels (at QT_SCALE_FACTOR=2 a 400 x 400 window shows an 800 x
// 800 frame), follows edits, shapes and undo, and keeps its size and place.
TEST_F(Comforts, LargePreviewFollowsTheEditorAndKeepsItsSizeAndPlace)
{
    QWidget* window = OpenLargePreview(*dialog);
    ASSERT_NE(window, nullptr);
    auto* area = window->findChild<FZCanvas*>("4000");
    window->resize(400, 300);
    ASSERT_TRUE(QTest::qWaitFor([&] { return area->size() == QSize(400, 300); }));
    const auto shows = [&](const FZAttributeEx& m, int shape) { return Shows(*area, m, shape); };
    ASSERT_TRUE(shows(start, 1));
    const QString directory = qEnvironmentVariable("TAMERISK_SCREENSHOT_DIR");
    if (!directory.isEmpty() && QDir().mkpath(directory)) {
        EXPECT_TRUE(window->grab().save(QDir(directory).filePath("large-preview.png")));
    }

    Bar(kIdDiffuse)->triggerAction(QAbstractSlider::SliderPageStepAdd);
    Click(kIdShapeNext);
    EXPECT_TRUE(shows(Record(), 2));
    Keys(QKeySequence::Undo);
    EXPECT_TRUE(shows(start, 2));
    window->move(60, 70);
    dialog->close();  // puts the large preview away with it
    EXPECT_FALSE(window->isVisible());
    const LargePreviewPlace place = ReadLargePreviewPlace(SettingsFilePath());
    EXPECT_EQ(place.size, QSize(400, 300));
    EXPECT_EQ(place.corner, QPoint(60, 70));
    // A new editor's large preview opens where the last one was.
    CDlgAttribute next(nullptr);
    ASSERT_TRUE(next.Create());
    QWidget* again = OpenLargePreview(next);
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(again->pos(), QPoint(60, 70));
}

// The large preview's renderer, driven directly: what it sends back and in
// which order.
class Renderer : public ::testing::Test {
protected:
    Renderer()
    {
        QObject::connect(&renderer, &CPreviewRenderer::FrameReady, &receiver, [this](const CPreviewFrame& frame) {
            // Outside its changed rectangle a frame is the frame before it.
            if (frame.base != 0 && frame.base == sequences.back()) {
                QImage outside = last;
                QPainter(&outside).drawImage(frame.changed.topLeft(), frame.image, frame.changed);
                EXPECT_EQ(outside, frame.image) << frame.sequence;
            }
            sequences.push_back(frame.sequence);
            last = frame.image;
            last.setDevicePixelRatio(1.0);
        });
    }

    CPreviewRequest Request(float diffuse, QSize pixels)
    {
        CPreviewRequest r;
        r.material.diffuse = diffuse;
        r.shape = 3;
        r.pixels = pixels;
        r.sequence = ++posted;
        return r;
    }

    CPreviewRenderer renderer;
    QObject receiver;
    std::vector<quint64> sequences;
    QImage last;
    quint64 posted = 0;
};

} // namespace

// A render stopped at any point of building a shape or shading leaves
// nothing behind: the render that follows, of the same shape, is exact.
TEST_F(Renderer, StoppedRendersLeaveTheNextOneExact)
{
    const std::vector<BenchMaterial> materials = BenchMaterials();
    const auto settled = [&] { return !sequences.empty() && sequences.back() == posted; };
    for (int round = 0; round < 12; ++round) {
        renderer.Post(Request(0.5f, QSize(640, 480)));
        ASSERT_TRUE(QTest::qWaitFor(settled, kFrameWait));
        // A new shape, stopped after `round` ms by a new material on it.
        CPreviewRequest request = Request(0.5f, QSize(640, 480));
        request.shape = round % 2 + 1;
        renderer.Post(request);
        std::this_thread::sleep_for(std::chrono::milliseconds(round));
        request.material = materials[static_cast<std::size_t>(round) % materials.size()].material;
        request.sequence = ++posted;
        renderer.Post(request);
        ASSERT_TRUE(QTest::qWaitFor(settled, kFrameWait));
        EXPECT_EQ(last, Rendered(request.material, request.shape, request.pixels)) << round;
    }
}

// While a slider is held the large preview may show drafts; once the drag is
// over it shows exactly the full picture of the last step, and no older
// frame replaces it.
TEST_F(Comforts, LargePreviewEndsADragAtItsLastStep)
{
    QWidget* window = OpenLargePreview(*dialog);
    ASSERT_NE(window, nullptr);
    auto* area = window->findChild<FZCanvas*>("4000");
    window->resize(800, 600);  // large enough for drafts
    ASSERT_TRUE(QTest::qWaitFor([&] { return area->PixelSize() == QSize(800, 600); }));
    ASSERT_TRUE(Shows(*area, start, 1));

    QScrollBar* bar = Bar(kIdDiffuse);
    bar->setSliderDown(true);
    for (int i = 0; i < 12; ++i) {
        bar->triggerAction(QAbstractSlider::SliderSingleStepAdd);
        QApplication::processEvents();
    }
    bar->setSliderDown(false);
    const QImage last = Rendered(Record(), 1, area->PixelSize());
    EXPECT_TRUE(QTest::qWaitFor([&] { return Shown(*area) == last; }, kFrameWait));
    QTest::qWait(300);  // longer than a drag takes to come to rest
    EXPECT_EQ(Shown(*area), last);
}
