// The editor on a desktop: its windows open over it, its file dialogs start
// where the user last was, its sliders and swatches show their values, and
// it speaks Japanese or English.
#include <QColorDialog>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QScrollBar>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "dialogs/templates.h"
#include "support/dlg_attribute_access.h"
#include "support/ui_texts.h"

namespace {

class Desktop : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(editor->Create());
        editor->showNormal();
        editor->move(300, 200);
    }
    void Click(int id) { DlgItem<QAbstractButton>(editor.get(), id)->click(); }
    QScrollBar* Bar(int id) { return DlgItem<QScrollBar>(editor.get(), id); }

    std::unique_ptr<CDlgAttribute> editor = std::make_unique<CDlgAttribute>(nullptr);
};

// A parameter dialog, the colour picker, a file dialog and a message box:
// each is owned by the editor and centred on it, on its screen.
TEST_F(Desktop, WindowsOpenOverTheEditor)
{
    FZAttributeEx a;
    a.rainbow = 1;
    editor->SetAttribute(a);
    editor->UpdatePanelView();
    for (const int button : {kIdRainbowParameter, kIdColorSwatch, kIdLoad, kIdUpdate}) {
        const ModalAnswer<QDialog> answer([&](QDialog* window) {
            EXPECT_EQ(window->parentWidget(), editor.get()) << button;
            EXPECT_TRUE(editor->frameGeometry().contains(window->frameGeometry().center())) << button;
            EXPECT_EQ(window->screen(), editor->screen()) << button;
            window->reject();
        });
        Click(button);
        EXPECT_TRUE(answer.Seen()) << button;
    }
}

// "保存" remembers the folder and the name; the next file dialogs, of this
// editor or of one opened later, start there.
TEST_F(Desktop, FileDialogsStartInTheFolderLastUsed)
{
    const QTemporaryDir dir;
    {
        const ModalAnswer<QFileDialog> save(
            [&](QFileDialog* d) { AnswerFileDialog(d, dir.filePath(QStringLiteral("red.qva"))); });
        Click(kIdSave);
    }
    ASSERT_TRUE(QFile::exists(dir.filePath(QStringLiteral("red.qva"))));
    const auto shown = [&](CDlgAttribute& e, int button) {
        QString folder, name;
        const ModalAnswer<QFileDialog> look([&](QFileDialog* d) {
            folder = d->directory().absolutePath();
            name = d->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->text();
            d->reject();
        });
        DlgItem<QAbstractButton>(&e, button)->click();
        return std::pair(folder, name);
    };
    EXPECT_EQ(shown(*editor, kIdSave), std::pair(dir.path(), QStringLiteral("red.qva")));
    editor.reset();
    CDlgAttribute next(nullptr);
    ASSERT_TRUE(next.Create());
    EXPECT_EQ(shown(next, kIdLoad).first, dir.path());
}

TEST_F(Desktop, SlidersAndSwatchesShowTheirValues)
{
    FZAttributeEx a;
    a.diffuse = 0.8f;
    a.color.SetBytes(128, 0, 255);
    a.refractiveIndex = 1.5f;
    editor->SetAttribute(a);
    editor->UpdatePanelView();
    // Position 51 writes 51 / 64; the red slider at 32 writes the byte 127.
    EXPECT_EQ(Bar(kIdDiffuse)->toolTip(), QString::fromUtf8("拡散反射率 0.80"));
    EXPECT_EQ(Bar(kIdRed)->toolTip(), QString::fromUtf8("赤 127"));
    EXPECT_EQ(Bar(kIdRefractiveIndex)->toolTip(), QString::fromUtf8("屈折率 1.50"));
    Bar(kIdSpread)->setSliderPosition(64);  // dragged to the right end
    EXPECT_EQ(Bar(kIdSpread)->toolTip(), QString::fromUtf8("広がり 1.00"));
    EXPECT_EQ(GetDlgItem(editor.get(), kIdColorSwatch)->toolTip(), QStringLiteral("RGB 128, 0, 255"));
}

// English through the translation, every text of the window included
// (Japanese is what the other tests see).
TEST(EditorLanguage, EnglishThroughout)
{
    const LanguageSetting english("en");
    CDlgAttribute editor(nullptr);
    ASSERT_TRUE(editor.Create());
    EXPECT_EQ(editor.windowTitle(), QStringLiteral("Material Remote"));
    EXPECT_EQ(JapaneseTextsIn(editor), QStringList());
    QString text;
    const ModalAnswer<QMessageBox> box([&](QMessageBox* b) {
        text = b->text();
        b->accept();
    });
    DlgItem<QAbstractButton>(&editor, kIdUpdate)->click();
    EXPECT_EQ(text, QStringLiteral("There is nobody to send to."));
}

} // namespace
