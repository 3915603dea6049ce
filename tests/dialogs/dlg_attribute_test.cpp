// The material dialog driven as a user and a host drive it, offscreen.
#include <cmath>
#include <limits>
#include <memory>

#include <QApplication>
#include <QCheckBox>
#include <QColorDialog>
#include <QFile>
#include <QMenu>
#include <QMessageBox>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

#include "dialogs/templates.h"
#include "engine/display/canvas.h"
#include "host/settings.h"
#include "support/dlg_attribute_access.h"

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
        notifications += e->type() == static_cast<QEvent::Type>(kNotifyMessage) ? 1 : 0;
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
    bool Checked(int id) { return DlgItem<QAbstractButton>(dialog.get(), id)->isChecked(); }
    void Click(int id) { DlgItem<QAbstractButton>(dialog.get(), id)->click(); }
    const FZAttributeEx& Record() { return Access::Record(*dialog); }
    void Show(const FZAttributeEx& a)
    {
        dialog->SetAttribute(a);
        dialog->UpdatePanelView();
    }
    QImage Frame() { return DlgItem<FZCanvas>(dialog.get(), kIdPreview)->Surface(); }
    void Activate()
    {
        dialog->show();
        QApplication::setActiveWindow(dialog.get());
        ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
    }

    HostWindow host;
    std::unique_ptr<CDlgAttribute> dialog;
};

// Answers the next modal window with `answer`, which gets it as a T.
template <typename T>
ModalAnswer Answer(std::function<void(T*)> answer)
{
    return ModalAnswer([answer](QWidget* w) {
        auto* typed = qobject_cast<T*>(w);
        ASSERT_NE(typed, nullptr);
        answer(typed);
    });
}

QString CheckedEntry(const QMenu* menu)
{
    for (QAction* action : menu->actions()) {
        if (action->isChecked())
            return action->text();
    }
    return {};
}

// One slider: a record value, the position it shows, and the value a drag
// to `dragTo` stores.
struct SliderCase {
    int id;
    float FZAttributeEx::*field;
    float shown;
    int position;
    int dragTo;
    float stored;
};

const SliderCase kSliderCases[] = {
    {kIdDiffuse, &FZAttributeEx::diffuse, 0.8f, 51, 16, 0.25f},
    {kIdAmbient, &FZAttributeEx::ambient, 0.3f, 19, 64, 1.0f},
    {kIdTransparency, &FZAttributeEx::transparency, 0.999f, 63, 0, 0.0f},
    {kIdRefractiveIndex, &FZAttributeEx::refractiveIndex, 1.0f, 32, 64, 2.0f},
    {kIdRefractiveIndex, &FZAttributeEx::refractiveIndex, 2.5f, 64, 16, 0.5f},
    {kIdSpread, &FZAttributeEx::highlightSharpness, 1.0f, 0, 16, 0.75f},
    {kIdEmission, &FZAttributeEx::emission, 7.0f, 64, 16, 0.25f},
    {kIdReflection, &FZAttributeEx::reflection, -0.5f, 0, 64, 1.0f},
    {kIdHighlightStrength, &FZAttributeEx::highlightStrength,
     std::numeric_limits<float>::quiet_NaN(), 0, 32, 0.5f},
    {kIdSpread, &FZAttributeEx::highlightSharpness, -std::numeric_limits<float>::infinity(), 64,
     32, 0.5f},
};

TEST_F(MaterialDialog, SlidersShowTheRecordTruncatedAndWriteItBack)
{
    for (const SliderCase& c : kSliderCases) {
        FZAttributeEx a;
        a.*c.field = c.shown;
        Show(a);
        EXPECT_EQ(Bar(c.id)->value(), c.position) << c.id << " " << c.shown;
        Bar(c.id)->setSliderPosition(c.dragTo);
        EXPECT_FLOAT_EQ(Record().*c.field, c.stored) << c.id;
    }
    FZAttributeEx a;
    a.color.SetBytes(255, 128, 127);
    Show(a);
    EXPECT_EQ(Bar(kIdRed)->value(), 64);
    EXPECT_EQ(Bar(kIdGreen)->value(), 32);  // 128 * 64 / 255 = 32.1
    EXPECT_EQ(Bar(kIdBlue)->value(), 31);
    const QImage before = Frame();
    Bar(kIdRed)->setSliderPosition(32);
    EXPECT_NE(Frame(), before);  // redrawn at once
    EXPECT_EQ(Record().color.r, 127);
    EXPECT_EQ(Record().color.g, 128);  // the other channels kept
    EXPECT_EQ(Bar(kIdRed)->value(), 32);  // the bar stays where it was put
}

TEST_F(MaterialDialog, KeysAndStepsMoveByOneAndTwoAndHoldAtTheEnds)
{
    QScrollBar* diffuse = Bar(kIdDiffuse);
    const int start = diffuse->value();  // 51 for the default 0.8
    const struct {
        Qt::Key key;
        int moved;
    } keys[] = {{Qt::Key_Right, 1}, {Qt::Key_PageDown, -2}, {Qt::Key_Left, -1},
                {Qt::Key_PageUp, 2}};
    int expected = start;
    for (const auto& k : keys) {
        QTest::keyClick(diffuse, k.key);
        expected += k.moved;
        EXPECT_EQ(diffuse->value(), expected) << k.key;
    }
    EXPECT_FLOAT_EQ(Record().diffuse, static_cast<float>(expected / 64.0));
    Bar(kIdRed)->triggerAction(QAbstractSlider::SliderPageStepAdd);
    EXPECT_EQ(Bar(kIdRed)->value(), 64);
    EXPECT_EQ(Record().color.r, 255);
}

TEST_F(MaterialDialog, TabReachesEveryEnabledControlInTableOrder)
{
    Activate();
    std::vector<int> expected;
    for (const ControlTemplate& c : AttributeDialogTemplate().controls) {
        const QWidget* w = c.id == kNoId ? nullptr : Item(c.id);
        if (w != nullptr && w->focusPolicy() & Qt::TabFocus && w->isEnabled() && w->isVisible())
            expected.push_back(c.id);
    }
    ASSERT_GT(expected.size(), 20u);
    Item(expected.front())->setFocus();
    std::vector<int> reached{QApplication::focusWidget()->objectName().toInt()};
    for (std::size_t i = 1; i < expected.size(); ++i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        reached.push_back(QApplication::focusWidget()->objectName().toInt());
    }
    EXPECT_EQ(reached, expected);
}

TEST_F(MaterialDialog, ShapeButtonsWrapAndPaintingOnlyShowsTheFrame)
{
    Click(kIdShapePrevious);
    EXPECT_EQ(Access::SampleShape(*dialog), 4);
    EXPECT_EQ(Access::Preview(*dialog).ShapeNumber(), 4);
    for (int expected : {1, 2, 3}) {
        Click(kIdShapeNext);
        EXPECT_EQ(Access::Preview(*dialog).ShapeNumber(), expected);
    }
    dialog->show();
    const qint64 frame = Frame().cacheKey();
    dialog->repaint();
    Item(kIdPreview)->repaint();
    EXPECT_EQ(Frame().cacheKey(), frame);  // no render, no redraw
}

TEST_F(MaterialDialog, SpaceBarNotifiesWhereverTheFocusIs)
{
    Activate();
    Item(kIdLoad)->setFocus();
    const ModalAnswer fileDialog([](QWidget* w) { w->close(); });
    QTest::keyClick(Item(kIdLoad), Qt::Key_Space);
    QTest::qWait(50);
    EXPECT_EQ(host.notifications, 1);
    EXPECT_FALSE(fileDialog.Seen());  // "開く" was not pressed
    QTest::keyClick(Bar(kIdDiffuse), Qt::Key_Space);
    Click(kIdUpdate);
    EXPECT_EQ(host.notifications, 3);
}

TEST(MaterialDialogAlone, UpdateWithoutANotifyWindowSaysSo)
{
    CDlgAttribute dialog(nullptr);
    ASSERT_TRUE(dialog.Create());
    QString text;
    QWidget* owner = nullptr;
    const ModalAnswer seen = Answer<QMessageBox>([&](QMessageBox* box) {
        text = box->text();
        owner = box->parentWidget();
        box->accept();
    });
    DlgItem<QAbstractButton>(&dialog, kIdUpdate)->click();
    EXPECT_EQ(text, QString::fromUtf8("送信相手がいない。"));
    EXPECT_EQ(owner, &dialog);
}

TEST_F(MaterialDialog, ColorBindDisablesExactlyTheColorControlsAndWhitensThePreview)
{
    FZAttributeEx a;
    a.color.SetBytes(200, 0, 0);
    Show(a);
    const QImage red = Frame();
    dialog->SetColorBind(1);
    EXPECT_EQ(dialog->GetColorBind(), 1);
    const QSet<int> colour = {1020, 1021, 1022, 1023, 1024, 1025, 4010, 4011, 4012,
                              4002, 4014, 4021};
    QSet<int> disabled;
    for (QWidget* w : dialog->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
        if (!w->objectName().isEmpty() && !w->isEnabled())
            disabled.insert(w->objectName().toInt());
    }
    // The parameter buttons follow their own state: all off here.
    EXPECT_EQ(disabled, colour + QSet<int>({4035, 4036, 4037}));
    dialog->UpdatePanelView();
    EXPECT_NE(Frame(), red);
    dialog->SetColorBind(0);
    dialog->UpdatePanelView();
    EXPECT_EQ(Frame(), red);
    for (int id : colour)
        EXPECT_TRUE(Item(id)->isEnabled()) << id;
}

TEST_F(MaterialDialog, ChecksWriteTheRecordAndEnableTheirParameterButtons)
{
    EXPECT_FALSE(Item(kIdTransparencyParameter)->isEnabled());
    Bar(kIdTransparency)->triggerAction(QAbstractSlider::SliderSingleStepAdd);
    EXPECT_TRUE(Item(kIdTransparencyParameter)->isEnabled());
    for (auto [check, button] : {std::pair{kIdAnisotropic, kIdAnisotropicParameter},
                                 std::pair{kIdRainbow, kIdRainbowParameter}}) {
        Click(check);
        EXPECT_TRUE(Item(button)->isEnabled()) << check;
    }
    EXPECT_EQ(Record().anisotropic, 1);
    EXPECT_EQ(Record().rainbow, 1);

    FZAttributeEx a = Record();
    a.smoothWidth = 5.0f;
    Show(a);
    Click(kIdSmooth);
    EXPECT_EQ(Record().smoothHighlight, 1);
    EXPECT_FLOAT_EQ(Record().smoothWidth, 2.0f);
    Click(kIdSmooth);
    EXPECT_EQ(Record().smoothHighlight, 0);
    EXPECT_FLOAT_EQ(Record().smoothWidth, 2.0f);  // clearing leaves the width
    Click(kIdColorTransparency);
    EXPECT_EQ(Record().colorTransparency, 1);

    a.rainbow = -1;  // any non-zero value checks
    a.smoothHighlight = 99;
    a.anisotropy.type = 77;
    a.stripeSpacing = std::numeric_limits<float>::quiet_NaN();
    Show(a);
    EXPECT_TRUE(Checked(kIdRainbow));
    EXPECT_TRUE(Checked(kIdSmooth));
    for (int shape = 0; shape < 4; ++shape)
        Click(kIdShapeNext);
    EXPECT_FALSE(Frame().isNull());
}

TEST_F(MaterialDialog, FilesSaveLoadAndReportFailures)
{
    QTemporaryDir dir;
    FZAttributeEx a;
    a.color.SetBytes(10, 200, 30);
    a.reflection = 0.5f;
    a.thickness = 9.0f;  // never stored
    Show(a);
    ASSERT_EQ(Access::SaveFile(*dialog, dir.filePath("m.qva")), 0);
    Show(FZAttributeEx());
    ASSERT_EQ(Access::LoadFile(*dialog, dir.filePath("m.qva")), 0);
    EXPECT_EQ(Record().color.g, 200);
    EXPECT_FLOAT_EQ(Record().thickness, 4.0f);
    EXPECT_EQ(Bar(kIdReflection)->value(), 32);  // the controls follow

    QFile bad(dir.filePath("bad.qva"));
    ASSERT_TRUE(bad.open(QIODevice::WriteOnly));
    bad.write("<Not an attribute file> at all");
    bad.close();
    EXPECT_EQ(Access::LoadFile(*dialog, bad.fileName()), -8);
    EXPECT_EQ(Access::LoadFile(*dialog, dir.filePath("missing.qva")), -5);
    EXPECT_EQ(Record().color.g, 200);  // kept

    QString caption, text;
    const ModalAnswer seen = Answer<QMessageBox>([&](QMessageBox* box) {
        caption = box->windowTitle();
        text = box->text();
        box->accept();
    });
    Access::ShowResult(*dialog, -8);
    EXPECT_EQ(caption, QCoreApplication::applicationName());
    EXPECT_EQ(text, QString::fromUtf8("未対応のﾃﾞｰﾀ形式です。"));
    const ModalAnswer none([](QWidget* w) { w->close(); });
    Access::ShowResult(*dialog, 0);
    Access::ShowResult(*dialog, -12);
    QTest::qWait(30);
    EXPECT_FALSE(none.Seen());  // 0 and unknown codes show nothing
}

TEST_F(MaterialDialog, ColourPickerRandomColoursAndTheFamilyMenu)
{
    auto pick = [](QColor colour, bool accept) {
        return Answer<QColorDialog>([=](QColorDialog* picker) {
            EXPECT_EQ(picker->parentWidget(), nullptr);
            picker->setCurrentColor(colour);
            accept ? picker->accept() : picker->reject();
        });
    };
    {
        const ModalAnswer picked = pick(QColor(255, 0, 128), true);
        Click(kIdColorSwatch);
    }
    EXPECT_EQ(Record().color.b, 128);
    EXPECT_EQ(Bar(kIdBlue)->value(), 32);
    {
        const ModalAnswer cancelled = pick(QColor(1, 2, 3), false);
        Click(kIdHighlightSwatch);
    }
    EXPECT_EQ(Record().highlightColor.r, 255);  // cancelled: unchanged

    QStringList texts;
    QString checked;
    {
        const ModalAnswer chosen = Answer<QMenu>([&](QMenu* menu) {
            for (QAction* action : menu->actions())
                texts << (action->isSeparator() ? QStringLiteral("-") : action->text());
            checked = CheckedEntry(menu);
            menu->setActiveAction(menu->actions().at(4));  // "灰色"
            QTest::keyClick(menu, Qt::Key_Return);
        });
        Click(kIdRandomType);
    }
    EXPECT_EQ(texts.join(' '),
              QString::fromUtf8("全色 - 原色 ﾊﾟｽﾃﾙｶﾗｰ 灰色 明色 暗色 暖色 寒色 近い色"));
    EXPECT_EQ(checked, QString::fromUtf8("全色"));
    EXPECT_EQ(Record().color.r, 255);  // choosing draws no colour
    Click(kIdRandom);
    const FZColor c = Record().color;
    EXPECT_TRUE(c.r == c.g && c.g == c.b);
    EXPECT_EQ(Bar(kIdRed)->value(), c.r * 64 / 255);  // the sliders follow

    // A right click on "ﾗﾝﾀﾞﾑ", on its bottom-right edge, opens the menu.
    QWidget* random = Item(kIdRandom);
    const QPoint corner = random->mapToGlobal(QPoint(random->width(), random->height()));
    {
        const ModalAnswer dismissed = Answer<QMenu>([&](QMenu* menu) {
            checked = CheckedEntry(menu);
            menu->close();
        });
        Access::OnContextMenu(*dialog, corner);
    }
    EXPECT_EQ(checked, QString::fromUtf8("灰色"));
    const ModalAnswer outside([](QWidget* w) { w->close(); });
    Access::OnContextMenu(*dialog, corner + QPoint(1, 0));
    QTest::qWait(30);
    EXPECT_FALSE(outside.Seen());
}

TEST_F(MaterialDialog, CloseMinimisesAndHidesAndDestroyingSavesThePlacement)
{
    dialog->show();
    dialog->close();
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_TRUE(dialog->isMinimized());
    dialog.reset();  // destroying the window writes the settings
    EXPECT_EQ(ReadWindowSettings(SettingsFilePath()).display, 0);
}

} // namespace
