// The material dialog driven as a user and a host drive it, offscreen.
#include <cmath>
#include <limits>
#include <memory>

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QColorDialog>
#include <QFile>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QScrollBar>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

#include "dialogs/dialog_template.h"
#include "dialogs/templates.h"
#include "engine/display/canvas.h"
#include "host/settings.h"
#include "support/dlg_attribute_access.h"
#include "support/paint_counter.h"

namespace {

using Access = CDlgAttributeTestAccess;

constexpr unsigned int kNotifyMessage = QEvent::User + 42;

// Counts the notify messages a host window receives.
class HostWindow : public QWidget {
public:
    int notifications = 0;

protected:
    bool event(QEvent* e) override
    {
        if (e->type() == static_cast<QEvent::Type>(kNotifyMessage)) {
            ++notifications;
            return true;
        }
        return QWidget::event(e);
    }
};

class MaterialDialog : public ::testing::Test {
protected:
    void SetUp() override
    {
        dialog = std::make_unique<CDlgAttribute>(&host, kNotifyMessage);
        ASSERT_TRUE(dialog->Create());
    }

    QScrollBar* Bar(int id) { return DlgItem<QScrollBar>(dialog.get(), id); }
    QWidget* Item(int id) { return GetDlgItem(dialog.get(), id); }
    void Click(int id) { DlgItem<QAbstractButton>(dialog.get(), id)->click(); }
    FZAttributeEx& Record() { return Access::Record(*dialog); }
    void Show(const FZAttributeEx& a)
    {
        dialog->SetAttribute(a);
        dialog->UpdatePanelView();
    }
    QImage Frame() { return DlgItem<FZCanvas>(dialog.get(), kIdPreview)->Surface(); }

    HostWindow host;
    std::unique_ptr<CDlgAttribute> dialog;
};

QString CheckedEntry(const QMenu* menu)
{
    for (QAction* action : menu->actions()) {
        if (action->isChecked())
            return action->text();
    }
    return {};
}

// Answers the colour picker with `colour`, accepting or cancelling it.
ModalAnswer AnswerPicker(QColor colour, bool accept)
{
    return ModalAnswer([=](QWidget* w) {
        auto* picker = qobject_cast<QColorDialog*>(w);
        ASSERT_NE(picker, nullptr);
        EXPECT_EQ(picker->parentWidget(), nullptr);
        picker->setCurrentColor(colour);
        accept ? picker->accept() : picker->reject();
    });
}

TEST_F(MaterialDialog, RecordShowsOnTheSlidersTruncated)
{
    FZAttributeEx a;
    a.color.SetBytes(255, 128, 127);
    a.refractiveIndex = 1.0f;
    a.highlightSharpness = 1.0f;
    a.diffuse = 0.8f;      // 51.2
    a.ambient = 0.3f;      // 19.2
    a.transparency = 0.999f;
    Show(a);
    EXPECT_EQ(Bar(kIdRed)->value(), 64);
    EXPECT_EQ(Bar(kIdGreen)->value(), 32);  // 128 * 64 / 255 = 32.1
    EXPECT_EQ(Bar(kIdBlue)->value(), 31);
    EXPECT_EQ(Bar(kIdRefractiveIndex)->value(), 32);
    EXPECT_EQ(Bar(kIdSpread)->value(), 0);  // a sharp highlight: spread at the left
    EXPECT_EQ(Bar(kIdDiffuse)->value(), 51);
    EXPECT_EQ(Bar(kIdAmbient)->value(), 19);
    EXPECT_EQ(Bar(kIdTransparency)->value(), 63);

    a.refractiveIndex = 2.5f;  // position 80, held at the end
    Show(a);
    EXPECT_EQ(Bar(kIdRefractiveIndex)->value(), 64);
}

TEST_F(MaterialDialog, SlidersWriteTheRecordAndRedrawThePreview)
{
    const QImage before = Frame();
    ASSERT_FALSE(before.isNull());
    EXPECT_EQ(before.width(), before.height());  // the preview is square
    EXPECT_EQ(before.width() % 2, 0);
    Bar(kIdRed)->setSliderPosition(32);
    EXPECT_NE(Frame(), before);
    EXPECT_EQ(Record().color.r, 127);
    EXPECT_EQ(Record().color.g, 255);  // the other channels kept
    Bar(kIdRefractiveIndex)->setSliderPosition(64);
    EXPECT_FLOAT_EQ(Record().refractiveIndex, 2.0f);
    Bar(kIdSpread)->setSliderPosition(64);
    EXPECT_FLOAT_EQ(Record().highlightSharpness, 0.0f);
    Bar(kIdSpread)->setSliderPosition(16);
    EXPECT_FLOAT_EQ(Record().highlightSharpness, 0.75f);
    Bar(kIdEmission)->setSliderPosition(16);
    EXPECT_FLOAT_EQ(Record().emission, 0.25f);
    Bar(kIdReflection)->setSliderPosition(64);
    EXPECT_FLOAT_EQ(Record().reflection, 1.0f);
}

TEST_F(MaterialDialog, LineAndPageStepsMoveByOneAndTwo)
{
    QScrollBar* diffuse = Bar(kIdDiffuse);
    const int start = diffuse->value();  // 51 for the default 0.8
    diffuse->triggerAction(QAbstractSlider::SliderSingleStepAdd);
    EXPECT_EQ(diffuse->value(), start + 1);
    diffuse->triggerAction(QAbstractSlider::SliderPageStepSub);
    EXPECT_EQ(diffuse->value(), start - 1);
    EXPECT_FLOAT_EQ(Record().diffuse, static_cast<float>((start - 1) / 64.0));

    // Keys reach the bar as the same actions.
    QTest::keyClick(diffuse, Qt::Key_Right);
    EXPECT_EQ(diffuse->value(), start);
    QTest::keyClick(diffuse, Qt::Key_Left);
    EXPECT_EQ(diffuse->value(), start - 1);

    // A step past the end is held there and stores the end value.
    QScrollBar* red = Bar(kIdRed);
    red->triggerAction(QAbstractSlider::SliderPageStepAdd);
    EXPECT_EQ(red->value(), 64);
    EXPECT_EQ(Record().color.r, 255);
}

TEST_F(MaterialDialog, ShapeButtonsWrapBetweenOneAndFour)
{
    EXPECT_EQ(Access::SampleShape(*dialog), 1);
    Click(kIdShapePrevious);
    EXPECT_EQ(Access::SampleShape(*dialog), 4);
    EXPECT_EQ(Access::Preview(*dialog).ShapeNumber(), 4);
    for (int expected : {1, 2, 3}) {
        Click(kIdShapeNext);
        EXPECT_EQ(Access::SampleShape(*dialog), expected);
    }
}

TEST_F(MaterialDialog, SpaceBarNotifiesWhereverTheFocusIs)
{
    dialog->show();
    QWidget* open = Item(kIdLoad);
    open->setFocus();
    const ModalAnswer fileDialog([](QWidget* w) { w->close(); });
    QTest::keyClick(open, Qt::Key_Space);
    QTest::qWait(50);
    EXPECT_EQ(host.notifications, 1);
    EXPECT_FALSE(fileDialog.Seen());  // "開く" was not pressed

    QTest::keyClick(Bar(kIdDiffuse), Qt::Key_Space);
    EXPECT_EQ(host.notifications, 2);
    Click(kIdUpdate);
    EXPECT_EQ(host.notifications, 3);
}

TEST(MaterialDialogAlone, UpdateWithoutANotifyWindowSaysSo)
{
    CDlgAttribute dialog(nullptr);
    ASSERT_TRUE(dialog.Create());
    QString text;
    QWidget* owner = nullptr;
    const ModalAnswer seen([&](QWidget* w) {
        if (auto* box = qobject_cast<QMessageBox*>(w)) {
            text = box->text();
            owner = box->parentWidget();
            box->accept();
        }
    });
    DlgItem<QAbstractButton>(&dialog, kIdUpdate)->click();
    EXPECT_TRUE(seen.Seen());
    EXPECT_EQ(text, QString::fromUtf8("送信相手がいない。"));
    EXPECT_EQ(owner, &dialog);
}

TEST_F(MaterialDialog, ColorBindDisablesExactlyTheColorControls)
{
    dialog->SetColorBind(1);
    EXPECT_EQ(dialog->GetColorBind(), 1);
    dialog->UpdatePanelView();
    const QSet<int> expected = {1020, 1021, 1022, 1023, 1024, 1025, 4010, 4011, 4012,
                                4002, 4014, 4021};
    QSet<int> disabled;
    for (QWidget* w : dialog->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
        if (!w->objectName().isEmpty() && !w->isEnabled())
            disabled.insert(w->objectName().toInt());
    }
    // The parameter buttons follow their own state: 4035 and 4036 with their
    // check boxes, 4037 with a non-zero transparency; all off here.
    EXPECT_EQ(disabled, (expected + QSet<int>{4035, 4036, 4037}));
    EXPECT_TRUE(Item(kIdHighlightSwatch)->isEnabled());
    EXPECT_TRUE(Item(kIdColorTransparency)->isEnabled());

    dialog->SetColorBind(0);
    dialog->UpdatePanelView();
    for (int id : expected)
        EXPECT_TRUE(Item(id)->isEnabled()) << id;
}

TEST_F(MaterialDialog, ParameterButtonsFollowTheirState)
{
    EXPECT_FALSE(Item(kIdTransparencyParameter)->isEnabled());
    Bar(kIdTransparency)->triggerAction(QAbstractSlider::SliderSingleStepAdd);
    EXPECT_TRUE(Item(kIdTransparencyParameter)->isEnabled());

    EXPECT_FALSE(Item(kIdAnisotropicParameter)->isEnabled());
    Click(kIdAnisotropic);
    EXPECT_EQ(Record().anisotropic, 1);
    // Any event through the dialog brings the enabling in line.
    QTest::mouseMove(dialog.get());
    EXPECT_TRUE(Item(kIdAnisotropicParameter)->isEnabled());

    Click(kIdRainbow);
    EXPECT_EQ(Record().rainbow, 1);
    EXPECT_TRUE(Item(kIdRainbowParameter)->isEnabled());
}

TEST_F(MaterialDialog, SmoothResetsItsWidthAndColorTransparencyIsKept)
{
    FZAttributeEx a;
    a.smoothWidth = 5.0f;
    Show(a);
    Click(kIdSmooth);
    EXPECT_EQ(Record().smoothHighlight, 1);
    EXPECT_FLOAT_EQ(Record().smoothWidth, 2.0f);
    Record().smoothWidth = 3.0f;
    Click(kIdSmooth);
    EXPECT_EQ(Record().smoothHighlight, 0);
    EXPECT_FLOAT_EQ(Record().smoothWidth, 3.0f);  // clearing leaves the width

    Click(kIdColorTransparency);
    EXPECT_EQ(Record().colorTransparency, 1);
}

TEST_F(MaterialDialog, OutOfRangeHostValuesShowAtTheEnds)
{
    FZAttributeEx a;
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float inf = std::numeric_limits<float>::infinity();
    a.ambient = 1e30f;
    a.diffuse = -1e30f;
    a.highlightStrength = nan;
    a.highlightSharpness = -inf;
    a.transparency = inf;
    a.refractiveIndex = -3.0f;
    a.emission = 7.0f;
    a.reflection = -0.5f;
    a.anisotropic = 1;
    a.anisotropy.type = 77;
    a.anisotropy.waveCount = -5;
    a.rainbow = -1;
    a.stripeSpacing = nan;
    a.smoothHighlight = 99;
    a.smoothWidth = inf;
    Show(a);
    EXPECT_EQ(Bar(kIdAmbient)->value(), 64);
    EXPECT_EQ(Bar(kIdDiffuse)->value(), 0);
    EXPECT_EQ(Bar(kIdHighlightStrength)->value(), 0);
    EXPECT_EQ(Bar(kIdSpread)->value(), 64);
    EXPECT_EQ(Bar(kIdTransparency)->value(), 64);
    EXPECT_EQ(Bar(kIdRefractiveIndex)->value(), 0);
    EXPECT_EQ(Bar(kIdEmission)->value(), 64);
    EXPECT_EQ(Bar(kIdReflection)->value(), 0);
    EXPECT_TRUE(IsDlgButtonChecked(dialog.get(), kIdRainbow));
    EXPECT_TRUE(IsDlgButtonChecked(dialog.get(), kIdSmooth));
    for (int shape = 0; shape < 4; ++shape)
        Click(kIdShapeNext);
    EXPECT_FALSE(Frame().isNull());
}

TEST_F(MaterialDialog, FailedLoadKeepsTheRecordAndShowsItsMessage)
{
    QTemporaryDir dir;
    const QString bad = dir.filePath("bad.qva");
    QFile file(bad);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("<Not an attribute file> at all");
    file.close();

    FZAttributeEx a;
    a.diffuse = 0.25f;
    Show(a);
    EXPECT_EQ(Access::LoadFile(*dialog, bad), FZResult::BadFormat);
    EXPECT_FLOAT_EQ(Record().diffuse, 0.25f);
    EXPECT_EQ(Access::LoadFile(*dialog, dir.filePath("missing.qva")), FZResult::OpenFailed);
    EXPECT_FLOAT_EQ(Record().diffuse, 0.25f);

    QString caption, text;
    const ModalAnswer seen([&](QWidget* w) {
        auto* box = qobject_cast<QMessageBox*>(w);
        ASSERT_NE(box, nullptr);
        caption = box->windowTitle();
        text = box->text();
        box->accept();
    });
    Access::ShowResult(*dialog, FZResult::BadFormat);
    EXPECT_TRUE(seen.Seen());
    EXPECT_EQ(caption, QCoreApplication::applicationName());
    EXPECT_EQ(text, QString::fromUtf8("未対応のﾃﾞｰﾀ形式です。"));

    const ModalAnswer none([](QWidget* w) { w->close(); });
    Access::ShowResult(*dialog, FZResult::Ok);
    Access::ShowResult(*dialog, static_cast<FZResult>(-12));
    QTest::qWait(30);
    EXPECT_FALSE(none.Seen());  // 0 and unknown codes show nothing
}

TEST_F(MaterialDialog, SavedMaterialLoadsBackIntoTheControls)
{
    QTemporaryDir dir;
    const QString path = dir.filePath("material.qva");
    FZAttributeEx a;
    a.color.SetBytes(10, 200, 30);
    a.reflection = 0.5f;
    a.thickness = 9.0f;  // never stored
    Show(a);
    ASSERT_EQ(Access::SaveFile(*dialog, path), FZResult::Ok);
    Show(FZAttributeEx());
    ASSERT_EQ(Access::LoadFile(*dialog, path), FZResult::Ok);
    EXPECT_EQ(Record().color.g, 200);
    EXPECT_FLOAT_EQ(Record().thickness, 4.0f);
    EXPECT_EQ(Bar(kIdReflection)->value(), 32);
    EXPECT_EQ(Bar(kIdGreen)->value(), 200 * 64 / 255);
}

TEST_F(MaterialDialog, ColorPickerSetsTheSurfaceColour)
{
    const ModalAnswer picked = AnswerPicker(QColor(255, 0, 128), true);
    Click(kIdColorSwatch);
    EXPECT_EQ(Record().color.r, 255);
    EXPECT_EQ(Record().color.b, 128);
    EXPECT_EQ(Bar(kIdRed)->value(), 64);
    EXPECT_EQ(Bar(kIdBlue)->value(), 32);

    const ModalAnswer cancelled = AnswerPicker(QColor(1, 2, 3), false);
    Click(kIdHighlightSwatch);
    EXPECT_EQ(Record().highlightColor.r, 255);  // cancelled: unchanged
}

TEST_F(MaterialDialog, FamilyMenuChecksTheFamilyAndKeepsItWhenDismissed)
{
    QStringList texts;
    QString checked;
    const ModalAnswer chosen([&](QWidget* w) {
        auto* menu = qobject_cast<QMenu*>(w);
        ASSERT_NE(menu, nullptr);
        for (QAction* action : menu->actions())
            texts << (action->isSeparator() ? QStringLiteral("-") : action->text());
        checked = CheckedEntry(menu);
        menu->setActiveAction(menu->actions().back());  // "近い色"
        QTest::keyClick(menu, Qt::Key_Return);
    });
    Click(kIdRandomType);
    EXPECT_EQ(texts.join(' '),
              QString::fromUtf8("全色 - 原色 ﾊﾟｽﾃﾙｶﾗｰ 灰色 明色 暗色 暖色 寒色 近い色"));
    EXPECT_EQ(checked, QString::fromUtf8("全色"));
    EXPECT_EQ(Access::RandomFamily(*dialog), 100);
    EXPECT_EQ(Record().color.r, 255);  // choosing draws no colour

    // A right click on "ﾗﾝﾀﾞﾑ", on its bottom-right edge, opens the menu;
    // dismissing it keeps the family.
    QWidget* random = Item(kIdRandom);
    const QPoint corner = random->mapToGlobal(QPoint(random->width(), random->height()));
    const ModalAnswer dismissed([&](QWidget* w) {
        auto* menu = qobject_cast<QMenu*>(w);
        ASSERT_NE(menu, nullptr);
        checked = CheckedEntry(menu);
        menu->close();
    });
    Access::OnContextMenu(*dialog, corner);
    EXPECT_EQ(checked, QString::fromUtf8("近い色"));
    EXPECT_EQ(Access::RandomFamily(*dialog), 100);

    const ModalAnswer outside([](QWidget* w) { w->close(); });
    Access::OnContextMenu(*dialog, corner + QPoint(1, 0));
    QTest::qWait(30);
    EXPECT_FALSE(outside.Seen());
}

TEST_F(MaterialDialog, RandomButtonDrawsFromTheFamily)
{
    Access::RandomFamily(*dialog) = 3;  // grey
    Click(kIdRandom);
    const FZColor c = Record().color;
    EXPECT_EQ(c.r, c.g);
    EXPECT_EQ(c.g, c.b);
    EXPECT_EQ(Bar(kIdRed)->value(), c.r * 64 / 255);  // the sliders follow
}

TEST_F(MaterialDialog, PaintingSettles)
{
    // The dialog redraws its preview and swatches when it paints; that must
    // not make it paint again.
    PaintCounter counter;
    dialog->installEventFilter(&counter);
    dialog->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(dialog.get()));
    QTest::qWait(50);
    const int settled = counter.paints;
    EXPECT_GE(settled, 1);
    QTest::mouseMove(Item(kIdUpdate));  // a button repainting under the mouse
    QTest::qWait(150);
    EXPECT_LE(counter.paints, settled + 2);
    const int after = counter.paints;
    QTest::qWait(100);
    EXPECT_EQ(counter.paints, after);
}

TEST_F(MaterialDialog, CloseMinimisesAndHidesAndDestroyingSavesThePlacement)
{
    dialog->show();
    dialog->close();
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_TRUE(dialog->isMinimized());
    dialog.reset();  // destroying the window writes the settings
    const WindowSettings saved = ReadWindowSettings(SettingsFilePath());
    EXPECT_EQ(saved.display, 0);
}

} // namespace
