// The material dialog driven as a user and a host drive it, offscreen.
#include <limits>
#include <memory>
#include <optional>

#include <QCheckBox>
#include <QColorDialog>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

#include "dialogs/templates.h"
#include "engine/display/canvas.h"
#include "support/dlg_attribute_access.h"

namespace {

constexpr unsigned int kNotifyMessage = QEvent::User + 42;
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

class MaterialDialog : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(dialog->Create()); }

    QScrollBar* Bar(int id) { return DlgItem<QScrollBar>(dialog.get(), id); }
    QWidget* Item(int id) { return GetDlgItem(dialog.get(), id); }
    void Click(int id) { DlgItem<QAbstractButton>(dialog.get(), id)->click(); }
    FZAttributeEx Record() const { return RecordOf(*dialog); }
    // Answers the file dialog of "開く" or "保存" with the path.
    void ChooseFile(int button, const QString& path)
    {
        const ModalAnswer<QFileDialog> answer([&](QFileDialog* d) { AnswerFileDialog(d, path); });
        Click(button);
    }
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
    QString FamilyMenu(int choose)
    {
        QString checked;
        const ModalAnswer<QMenu> answer([&](QMenu* menu) {
            for (QAction* action : menu->actions())
                checked += action->isChecked() ? action->text() : QString();
            menu->setActiveAction(menu->actions().value(choose));
            QTest::keyClick(menu, choose < 0 ? Qt::Key_Escape : Qt::Key_Return);
        });
        Click(kIdRandomType);
        return checked;
    }

    NotifyCounter host{static_cast<QEvent::Type>(kNotifyMessage)};
    std::unique_ptr<CDlgAttribute> dialog = std::make_unique<CDlgAttribute>(&host, kNotifyMessage);
};

TEST_F(MaterialDialog, SlidersShowTheRecordTruncatedAndWriteItBack)
{
    using A = FZAttributeEx;
    using Slider = std::tuple<int, float A::*, float, int, int, float>;  // id, field, shown,
    for (auto [id, field, shown, position, dragTo, stored] :  // position, drag, stored
         {Slider{kIdDiffuse, &A::diffuse, 0.8f, 51, 16, 0.25f},
          Slider{kIdRefractiveIndex, &A::refractiveIndex, 2.5f, 64, 16, 0.5f},
          Slider{kIdSpread, &A::highlightSharpness, 1.0f, 0, 16, 0.75f},
          Slider{kIdEmission, &A::emission, 7.0f, 64, 16, 0.25f},
          Slider{kIdReflection, &A::reflection, -0.5f, 0, 64, 1.0f},
          Slider{kIdHighlightStrength, &A::highlightStrength, kNaN, 0, 32, 0.5f}}) {
        FZAttributeEx a;
        a.*field = shown;
        Show(a);
        EXPECT_EQ(Bar(id)->value(), position) << id;
        Bar(id)->setSliderPosition(dragTo);
        EXPECT_FLOAT_EQ(Record().*field, stored) << id;
    }
    FZAttributeEx a;
    a.color.SetBytes(255, 128, 127);
    Show(a);
    EXPECT_EQ(Bar(kIdGreen)->value(), 32);  // 128 * 64 / 255 = 32.1
    EXPECT_EQ(Bar(kIdBlue)->value(), 31);
    const QImage before = Frame();
    Bar(kIdRed)->setSliderPosition(32);
    EXPECT_NE(Frame(), before);  // redrawn at once
    EXPECT_EQ(Record().color.r, 127);
    EXPECT_EQ(Bar(kIdRed)->value(), 32);  // the bar stays where it was put
}

TEST_F(MaterialDialog, KeysMoveASliderByOneAndTwoHeldAtTheEnds)
{
    QScrollBar* diffuse = Bar(kIdDiffuse);
    int expected = diffuse->value();  // 51 for the default 0.8
    for (auto [key, moved] : {std::pair{Qt::Key_Right, 1}, std::pair{Qt::Key_PageDown, -2},
                              std::pair{Qt::Key_Left, -1}, std::pair{Qt::Key_PageUp, 2}}) {
        QTest::keyClick(diffuse, key);
        expected += moved;
        EXPECT_EQ(diffuse->value(), expected) << key;
    }
    EXPECT_FLOAT_EQ(Record().diffuse, static_cast<float>(expected / 64.0));
    Bar(kIdRed)->triggerAction(QAbstractSlider::SliderPageStepAdd);
    EXPECT_EQ(Bar(kIdRed)->value(), 64);
    EXPECT_EQ(Record().color.r, 255);
}

TEST_F(MaterialDialog, ShapeButtonsWrapAndPaintingOnlyShowsTheFrame)
{
    const QImage first = Frame();
    Click(kIdShapePrevious);  // from the first shape to the last
    EXPECT_NE(Frame(), first);
    Click(kIdShapeNext);  // and on from the last to the first
    EXPECT_EQ(Frame(), first);
    dialog->show();
    const qint64 frame = Frame().cacheKey();
    dialog->repaint();
    Item(kIdPreview)->repaint();
    EXPECT_EQ(Frame().cacheKey(), frame);  // no render, no redraw
}

TEST_F(MaterialDialog, SpaceBarAndUpdateNotifyTheHost)
{
    Activate();
    Item(kIdLoad)->setFocus();
    const ModalAnswer<> fileDialog([](QWidget* w) { w->close(); });
    QTest::keyClick(Item(kIdLoad), Qt::Key_Space);
    QTest::keyClick(Bar(kIdDiffuse), Qt::Key_Space);
    Click(kIdUpdate);
    EXPECT_TRUE(QTest::qWaitFor([this] { return host.notifications == 3; }));
    EXPECT_FALSE(fileDialog.Seen());  // "開く" was not pressed
}

TEST_F(MaterialDialog, ColorBindDisablesExactlyTheColorControlsAndWhitensThePreview)
{
    FZAttributeEx a;
    a.color.SetBytes(200, 0, 0);
    Show(a);
    const QImage red = Frame();
    dialog->SetColorBind(1);
    EXPECT_EQ(dialog->GetColorBind(), 1);
    EXPECT_TRUE(Item(kIdRed)->isEnabled());  // only stored until the view is brought up to date
    EXPECT_EQ(Frame(), red);
    dialog->UpdatePanelView();
    EXPECT_NE(Frame(), red);
    QSet<int> disabled;
    for (QWidget* w : dialog->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
        if (!w->objectName().isEmpty() && !w->isEnabled())
            disabled.insert(w->objectName().toInt());
    }
    // The colour controls, and the parameter buttons of the unset effects.
    EXPECT_EQ(disabled, QSet<int>({1020, 1021, 1022, 1023, 1024, 1025, 4010, 4011, 4012, 4002,
                                   4014, 4021, 4035, 4036, 4037}));
    dialog->SetColorBind(0);
    dialog->UpdatePanelView();
    EXPECT_EQ(Frame(), red);
    EXPECT_TRUE(Item(kIdRed)->isEnabled());
}

TEST_F(MaterialDialog, ChecksWriteTheRecordAndEnableTheirParameterButtons)
{
    Bar(kIdTransparency)->triggerAction(QAbstractSlider::SliderSingleStepAdd);
    for (int check : {kIdAnisotropic, kIdRainbow, kIdSmooth, kIdColorTransparency})
        Click(check);
    for (int button : {kIdTransparencyParameter, kIdAnisotropicParameter, kIdRainbowParameter})
        EXPECT_TRUE(Item(button)->isEnabled()) << button;
    FZAttributeEx r = Record();
    EXPECT_EQ(r.anisotropic + r.rainbow + r.smoothHighlight + r.colorTransparency, 4);
    EXPECT_FLOAT_EQ(r.smoothWidth, 2.0f);  // checking resets the width

    FZAttributeEx a;
    a.rainbow = -1;  // any non-zero value checks
    a.smoothHighlight = 99;
    a.smoothWidth = 5.0f;
    a.stripeSpacing = kNaN;
    Show(a);
    EXPECT_TRUE(DlgItem<QCheckBox>(dialog.get(), kIdRainbow)->isChecked());
    EXPECT_FALSE(DlgItem<QCheckBox>(dialog.get(), kIdAnisotropic)->isChecked());
    Click(kIdSmooth);
    r = Record();
    EXPECT_EQ(r.smoothHighlight, 0);
    EXPECT_FLOAT_EQ(r.smoothWidth, 5.0f);  // clearing leaves the width
}

TEST_F(MaterialDialog, FilesSaveLoadAndReportFailures)
{
    QTemporaryDir dir;
    FZAttributeEx a;
    a.reflection = 0.5f;
    a.thickness = 9.0f;  // never stored
    Show(a);
    ChooseFile(kIdSave, dir.filePath("m"));  // the suffix comes with it
    Show(FZAttributeEx());
    ChooseFile(kIdLoad, dir.filePath("m.qva"));
    EXPECT_EQ(Record().reflection, 0.5f);
    EXPECT_FLOAT_EQ(Record().thickness, 4.0f);
    EXPECT_EQ(Bar(kIdReflection)->value(), 32);  // the controls follow

    QFile bad(dir.filePath("bad.qva"));
    ASSERT_TRUE(bad.open(QIODevice::WriteOnly) && bad.write("<Not an attribute file>") > 0);
    bad.close();
    QString shown;
    std::optional<ModalAnswer<QMessageBox>> box;
    const ModalAnswer<QFileDialog> answer([&](QFileDialog* d) {
        AnswerFileDialog(d, bad.fileName());
        box.emplace([&](QMessageBox* b) {
            shown = b->windowTitle() + ": " + b->text();
            EXPECT_EQ(b->informativeText(), bad.fileName());  // which file, below the message
            b->accept();
        });
    });
    Click(kIdLoad);
    EXPECT_EQ(Record().reflection, 0.5f);  // kept
    EXPECT_EQ(shown, QCoreApplication::applicationName() + QString::fromUtf8(": 未対応のﾃﾞｰﾀ形式です。"));
}

// "保存" remembers the folder and the name; the next file dialogs, of this
// editor or of one opened later, start there.
TEST_F(MaterialDialog, FileDialogsStartInTheFolderLastUsed)
{
    const QTemporaryDir dir;
    ChooseFile(kIdSave, dir.filePath("red.qva"));
    ASSERT_TRUE(QFile::exists(dir.filePath("red.qva")));
    const auto shown = [](CDlgAttribute& editor, int button) {
        QString folder, name;
        const ModalAnswer<QFileDialog> look([&](QFileDialog* d) {
            folder = d->directory().absolutePath();
            name = d->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->text();
            d->reject();
        });
        DlgItem<QAbstractButton>(&editor, button)->click();
        return std::pair(folder, name);
    };
    EXPECT_EQ(shown(*dialog, kIdSave), std::pair(dir.path(), QStringLiteral("red.qva")));
    dialog.reset();
    CDlgAttribute next(nullptr);
    ASSERT_TRUE(next.Create());
    EXPECT_EQ(shown(next, kIdLoad).first, dir.path());
}

// The presets of the build tree, as an installed library finds its own.
TEST_F(MaterialDialog, OpenOffersThePresetsBesideTheHomeFolder)
{
    const QString presets = QStringLiteral(TAMERISK_PRESET_DIR);
    QList<QUrl> sidebar;
    const ModalAnswer<QFileDialog> answer([&](QFileDialog* d) {
        EXPECT_EQ(d->parentWidget(), dialog.get());
        sidebar = d->sidebarUrls();
        AnswerFileDialog(d, presets + QStringLiteral("/gold.qva"));
    });
    Click(kIdLoad);
    EXPECT_TRUE(sidebar.contains(QUrl::fromLocalFile(presets)));
    EXPECT_TRUE(sidebar.contains(QUrl::fromLocalFile(QDir::homePath())));
    EXPECT_EQ(Record().color.g, 170);  // the gold preset loaded
}

TEST_F(MaterialDialog, ColourPickerRandomColoursAndTheFamilyMenu)
{
    for (bool accept : {true, false}) {
        const ModalAnswer<QColorDialog> picker([=, this](QColorDialog* p) {
            EXPECT_EQ(p->parentWidget(), dialog.get());
            p->setCurrentColor(QColor(255, 0, 128));
            // The swatch follows the picker while it is open; the record
            // waits for OK.
            EXPECT_EQ(Item(accept ? kIdColorSwatch : kIdHighlightSwatch)->toolTip(),
                      QStringLiteral("RGB 255, 0, 128"));
            EXPECT_NE((accept ? Record().color : Record().highlightColor).b, 128);
            accept ? p->accept() : p->reject();
        });
        Click(accept ? kIdColorSwatch : kIdHighlightSwatch);
    }
    EXPECT_EQ(Record().color.b, 128);
    EXPECT_EQ(Bar(kIdBlue)->value(), 32);
    EXPECT_EQ(Record().highlightColor.g, 255);  // cancelled: the old colour is back

    EXPECT_EQ(FamilyMenu(4), QString::fromUtf8("全色"));  // chooses "灰色"
    EXPECT_EQ(Record().color.b, 128);  // choosing draws no colour
    Click(kIdRandom);
    const FZColor c = Record().color;
    EXPECT_TRUE(c.r == c.g && c.g == c.b);
    EXPECT_EQ(Bar(kIdRed)->value(), c.r * 64 / 255);  // the sliders follow
    EXPECT_EQ(FamilyMenu(-1), QString::fromUtf8("灰色"));  // dismissed: kept

    // A right click on "ﾗﾝﾀﾞﾑ", up to its bottom-right edge, opens the menu.
    QWidget* random = Item(kIdRandom);
    const QPoint corner = random->mapToGlobal(QPoint(random->width(), random->height()));
    for (QPoint at : {corner, corner + QPoint(1, 0)}) {
        const ModalAnswer<> menu([](QWidget* w) { w->close(); });
        QContextMenuEvent click(QContextMenuEvent::Mouse, dialog->mapFromGlobal(at), at);
        QApplication::sendEvent(dialog.get(), &click);  // returns once the menu is closed
        EXPECT_EQ(menu.Seen(), at == corner);
    }
}

} // namespace
