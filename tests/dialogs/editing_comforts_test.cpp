// The editing comforts of the material dialog, driven as a user drives them:
// undo and redo by key, a file dropped on the window, copy and paste through
// the clipboard, and the large preview opened by a double click.
//
// With TAMERISK_SCREENSHOT set to a file path the large preview test also
// writes the picture of the large preview window there.
#include <cstring>
#include <functional>
#include <memory>

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QColorDialog>
#include <QMessageBox>
#include <QMimeData>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>
#include <gtest/gtest.h>

#include "dialogs/dialog_template.h"
#include "dialogs/templates.h"
#include "engine/display/canvas.h"
#include "engine/display/image_display.h"
#include "host/settings.h"
#include "json/material_json.h"
#include "material/attribute_file.h"
#include "support/dlg_attribute_access.h"

namespace {

constexpr auto kNotify = static_cast<QEvent::Type>(QEvent::User + 43);

class Host : public QWidget {
public:
    int notifications = 0;

protected:
    bool event(QEvent* e) override
    {
        notifications += e->type() == kNotify ? 1 : 0;
        return QWidget::event(e);
    }
};

bool Same(const FZAttributeEx& a, const FZAttributeEx& b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

// The picture tamerisk-render draws of the material at that size.
QImage Rendered(const FZAttributeEx& m, int shape, QSize size)
{
    CPreviewPanel panel;
    EXPECT_EQ(panel.SetUpFrame(size.width(), size.height()), 0);
    EXPECT_EQ(panel.BuildSampleShape(shape), 0);
    panel.ApplyMaterial(m, 0);
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
        start.diffuse = 0.5f;
        start.color.SetBytes(10, 200, 30);
        dialog->SetAttribute(start);  // as Tamerisk_SetAttribute does
        dialog->UpdatePanelView();
        dialog->showNormal();
        QApplication::setActiveWindow(dialog.get());
        ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
    }

    FZAttributeEx Record() const
    {
        FZAttributeEx a;
        dialog->GetAttribute(a);
        return a;
    }
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

    Host host;
    FZAttributeEx start;
    std::unique_ptr<CDlgAttribute> dialog;
};

struct Edit {
    const char* name;
    std::function<void(Comforts&)> make;
};

void PrintTo(const Edit& edit, std::ostream* out)
{
    *out << edit.name;
}

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
    ASSERT_FALSE(Same(edited, start));

    Keys(QKeySequence::Undo);
    Keys(QKeySequence::Undo);
    EXPECT_TRUE(Same(Record(), start));
    EXPECT_EQ(Showing(), before);
    for (const QKeySequence& redo : {QKeySequence("Ctrl+Shift+Z"), QKeySequence("Ctrl+Y")}) {
        Keys(redo);
        EXPECT_TRUE(Same(Record(), edited));
        EXPECT_EQ(Showing(), after);
        Keys(QKeySequence::Undo);
    }
    EXPECT_EQ(host.notifications, 0);
}

INSTANTIATE_TEST_SUITE_P(Dialog, EveryEdit, ::testing::Values(
    Edit{"SliderStep", [](Comforts& t) { t.Bar(kIdDiffuse)->triggerAction(QAbstractSlider::SliderPageStepAdd); }},
    Edit{"WholeDrag", [](Comforts& t) {
        t.Bar(kIdEmission)->setSliderDown(true);
        for (int p : {5, 20, 40})
            t.Bar(kIdEmission)->setSliderPosition(p);
        t.Bar(kIdEmission)->setSliderDown(false);
    }},
    Edit{"CheckBox", [](Comforts& t) { t.Click(kIdColorTransparency); }},
    Edit{"ColourChosen", [](Comforts& t) {
        const ModalAnswer answer([](QWidget* w) {
            qobject_cast<QColorDialog*>(w)->setCurrentColor(QColor(1, 2, 3));
            qobject_cast<QColorDialog*>(w)->accept();
        });
        t.Click(kIdHighlightSwatch);
    }},
    Edit{"RandomColour", [](Comforts& t) {
        for (int i = 0; i < 4 && t.Record().color.g == 200; ++i)
            t.Click(kIdRandom);
    }},
    Edit{"Paste", [](Comforts& t) {
        // What a file may hold too: the editor takes it without harm.
        QApplication::clipboard()->setText(R"({"diffuse": "nan", "ambient": "inf", "emission": -1e30,
            "anisotropic": 1, "anisotropy": {"type": 2, "waveCount": 2147483647}})");
        t.Keys(QKeySequence::Paste);
    }}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(Comforts, ADragMergesAndANewEditDropsTheRedoSteps)
{
    Bar(kIdDiffuse)->triggerAction(QAbstractSlider::SliderSingleStepAdd);
    const FZAttributeEx stepped = Record();
    Bar(kIdDiffuse)->setSliderDown(true);
    Bar(kIdDiffuse)->setSliderPosition(60);
    Bar(kIdDiffuse)->setSliderPosition(10);
    Bar(kIdDiffuse)->setSliderDown(false);
    Keys(QKeySequence::Undo);
    EXPECT_TRUE(Same(Record(), stepped));  // the whole drag at once
    Keys(QKeySequence::Undo);
    Click(kIdShapeNext);  // not an edit
    Keys(QKeySequence::Redo);
    EXPECT_TRUE(Same(Record(), stepped));
    Click(kIdSmooth);
    const FZAttributeEx smooth = Record();
    Keys(QKeySequence::Redo);  // the drag is gone
    EXPECT_TRUE(Same(Record(), smooth));
    EXPECT_EQ(CDlgAttributeTestAccess::SampleShape(*dialog), 2);
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
        EXPECT_TRUE(Same(Record(), start)) << bad.left(40).toStdString();
    }
    Keys(QKeySequence::Undo);
    EXPECT_TRUE(Same(Record(), start));
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
    ASSERT_EQ(SaveAttributeFile(dir.filePath("m.QVA").toLocal8Bit().constData(), saved), 0);
    EXPECT_FALSE(DropFile(Bar(kIdDiffuse), dir.filePath("m.txt")));
    ASSERT_TRUE(DropFile(Bar(kIdDiffuse), dir.filePath("m.QVA")));
    ASSERT_TRUE(QTest::qWaitFor([&] { return Same(Record(), saved); }));
    Keys(QKeySequence::Undo);
    EXPECT_TRUE(Same(Record(), start));

    QFile bad(dir.filePath("bad.qva"));
    ASSERT_TRUE(bad.open(QIODevice::WriteOnly) && bad.write("<Quorvantel Attribute>0099") > 0);
    bad.close();
    QString shown;
    const ModalAnswer answer([&shown](QWidget* w) {
        shown = qobject_cast<QMessageBox*>(w)->text();
        qobject_cast<QMessageBox*>(w)->accept();
    });
    ASSERT_TRUE(DropFile(Bar(kIdDiffuse), dir.filePath("bad.qva")));
    ASSERT_TRUE(QTest::qWaitFor([&] { return answer.Seen(); }));
    EXPECT_EQ(shown, QString::fromUtf8("ﾊﾞｰｼﾞｮﾝの異なるﾌｧｲﾙです。"));
    EXPECT_TRUE(Same(Record(), start));
    EXPECT_EQ(host.notifications, 0);
}

QWidget* OpenLargePreview(const CDlgAttribute& dialog)
{
    QTest::mouseDClick(DlgItem<QWidget>(&dialog, kIdPreview), Qt::LeftButton);
    auto* window = dialog.findChild<QWidget*>("tamerisk-large-preview");
    return window != nullptr && QTest::qWaitForWindowExposed(window) ? window : nullptr;
}

TEST_F(Comforts, LargePreviewFollowsTheEditorAndKeepsItsSize)
{
    QWidget* window = OpenLargePreview(*dialog);
    ASSERT_NE(window, nullptr);
    auto* area = window->findChild<FZCanvas*>("4000");
    window->resize(300, 200);
    ASSERT_TRUE(QTest::qWaitFor([&] { return area->size() == QSize(300, 200); }));
    const auto shows = [&](const FZAttributeEx& m, int shape) {
        return area->Surface().convertToFormat(QImage::Format_RGB32) == Rendered(m, shape, {300, 200});
    };
    EXPECT_TRUE(shows(start, 1));
    Bar(kIdDiffuse)->triggerAction(QAbstractSlider::SliderPageStepAdd);
    Click(kIdShapeNext);
    EXPECT_TRUE(shows(Record(), 2));
    Keys(QKeySequence::Undo);
    EXPECT_TRUE(shows(start, 2));
    window->close();
    EXPECT_EQ(ReadLargePreviewSize(SettingsFilePath()), QSize(300, 200));

    const QString path = qEnvironmentVariable("TAMERISK_SCREENSHOT");
    if (path.isEmpty())
        return;
    QApplication::clipboard()->setText(R"({"color": [200, 60, 40], "highlightColor": [255, 240, 200],
                                           "reflection": 0.25, "smoothHighlight": 1})");
    QApplication::setActiveWindow(dialog.get());
    Keys(QKeySequence::Paste);
    window = OpenLargePreview(*dialog);
    window->resize(400, 400);
    EXPECT_TRUE(window->grab().save(path));
}

} // namespace
