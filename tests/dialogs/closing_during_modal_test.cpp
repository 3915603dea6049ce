// A host may destroy the editor while one of the editor's modal windows runs
// its own event loop: an autosave or a closing document calls Tamerisk_Close
// or Tamerisk_Open, or deletes its own CDlgAttribute. Every modal window of
// the editor, answered with OK, with Cancel or not at all in the same turn of
// the loop as the editor goes: the window goes too, the handler returns
// without touching the editor (AddressSanitizer watches), and a new editor
// opens and works.
#include <QAbstractButton>
#include <QColorDialog>
#include <QFileDialog>
#include <QMenu>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

#include <tamerisk/tamerisk.h>

#include "dialogs/dlg_anisotropic.h"
#include "dialogs/dlg_rainbow_highlight.h"
#include "dialogs/dlg_transparency.h"
#include "dialogs/templates.h"
#include "material/attribute_file.h"
#include "support/dlg_attribute_access.h"

namespace {

struct ModalWindow {
    const char* name;
    int button;             // the editor's button that opens it
    const char* className;  // what opens
};

constexpr ModalWindow kWindows[] = {
    {"Anisotropic", kIdAnisotropicParameter, "CDlgAnisotropic"},
    {"Rainbow", kIdRainbowParameter, "CDlgRainbowHighlight"},
    {"Transparency", kIdTransparencyParameter, "CDlgTransparency"},
    {"SurfaceColour", kIdColorSwatch, "QColorDialog"},
    {"HighlightColour", kIdHighlightSwatch, "QColorDialog"},
    {"FamilyMenu", kIdRandomType, "QMenu"},
    {"NobodyToNotify", kIdUpdate, "QMessageBox"},
    {"Open", kIdLoad, "QFileDialog"},
    {"Save", kIdSave, "QFileDialog"},
};

enum class Answer { Ok, Cancel, None };
enum class Destroy { Close, OpenAgain, Delete };

using Case = std::tuple<ModalWindow, Answer, Destroy>;

// The C functions' editor, or one the test owns as a host does; neither
// has a notify window, so that "更新" has its message box.
CDlgAttribute* OpenEditor(Destroy destroy)
{
    const QWidgetList before = QApplication::topLevelWidgets();
    if (destroy != Destroy::Delete)
        return Tamerisk_Open(nullptr, 0) == 1 ? EditorBesides(before) : nullptr;
    auto* editor = new CDlgAttribute(static_cast<QWidget*>(nullptr));
    editor->Create();
    return editor;
}

void DestroyEditor(Destroy destroy, CDlgAttribute* editor)
{
    switch (destroy) {
    case Destroy::Close: Tamerisk_Close(); break;
    case Destroy::OpenAgain: Tamerisk_Open(nullptr, 0); break;
    case Destroy::Delete: delete editor; break;
    }
}

void AnswerWindow(QWidget* window, Answer answer, const QString& file)
{
    if (auto* menu = qobject_cast<QMenu*>(window)) {
        if (answer == Answer::Ok)
            menu->setActiveAction(menu->actions().value(2));
        QTest::keyClick(menu, answer == Answer::Ok ? Qt::Key_Return : Qt::Key_Escape);
    } else if (auto* files = qobject_cast<QFileDialog*>(window); files && answer == Answer::Ok) {
        AnswerFileDialog(files, file);
    } else {
        auto* dialog = qobject_cast<QDialog*>(window);
        answer == Answer::Ok ? dialog->accept() : dialog->reject();
    }
}

class ClosingDuringAModalWindow : public ::testing::TestWithParam<Case> {};

TEST_P(ClosingDuringAModalWindow, TakesTheWindowAlongAndLeavesTheModuleUsable)
{
    const auto [window, answer, destroy] = GetParam();
    const QTemporaryDir directory;
    const QString file = directory.filePath(window.button == kIdLoad ? "in.qva" : "out.qva");
    FZAttributeEx material;
    material.anisotropic = material.rainbow = 1;  // every ",,," button usable
    material.transparency = 0.5f;
    ASSERT_EQ(SaveAttributeFile(QFile::encodeName(directory.filePath("in.qva")).constData(), material),
              FZResult::Ok);

    QPointer<CDlgAttribute> editor = OpenEditor(destroy);
    ASSERT_TRUE(editor);
    editor->SetAttribute(material);
    editor->UpdatePanelView();
    QPointer<QWidget> opened;
    const ModalAnswer<> host([&, answer = answer, destroy = destroy](QWidget* w) {
        opened = w;
        EXPECT_TRUE(w->inherits(window.className)) << w->metaObject()->className();
        if (answer != Answer::None)
            AnswerWindow(w, answer, file);
        DestroyEditor(destroy, editor);
    });
    // A window that outlived its editor would keep the loop running.
    QTimer stuck;
    stuck.setSingleShot(true);
    QObject::connect(&stuck, &QTimer::timeout, [&] {
        ADD_FAILURE() << "the window stayed open after the editor went";
        if (opened)
            opened->close();
    });
    stuck.start(10000);
    DlgItem<QAbstractButton>(editor, window.button)->click();  // returns once the loop ends

    EXPECT_TRUE(host.Seen());
    EXPECT_TRUE(editor.isNull());
    EXPECT_TRUE(opened.isNull());
    EXPECT_FALSE(QFile::exists(directory.filePath("out.qva")));  // nothing saved for a gone editor

    // The module goes on: an editor (the one Tamerisk_Open made, or a new
    // one) takes a material and gives it back.
    if (destroy != Destroy::OpenAgain) {
        ASSERT_EQ(Tamerisk_Open(nullptr, 0), 1);
    }
    FZAttributeEx sent, back;
    sent.diffuse = 0.25f;
    Tamerisk_SetAttribute(&sent);
    Tamerisk_GetAttribute(&back);
    EXPECT_EQ(back.diffuse, 0.25f);
    Tamerisk_Close();
}

// A file dialog asks its own questions (here: a file to open that is not
// there) in a message box of its own, from inside its code: closing the
// editor then cancels both, and the handler returns.
TEST(ClosingDuringAModalWindow, WhileTheFileDialogAsksItsOwnQuestion)
{
    const QTemporaryDir directory;
    const QWidgetList before = QApplication::topLevelWidgets();
    ASSERT_EQ(Tamerisk_Open(nullptr, 0), 1);
    const QPointer<CDlgAttribute> editor = EditorBesides(before);
    ASSERT_TRUE(editor);
    const ModalAnswer<QFileDialog> files(
        [&](QFileDialog* dialog) { AnswerFileDialog(dialog, directory.filePath("missing.qva")); });
    QPointer<QMessageBox> question;
    const ModalAnswer<QMessageBox> host([&](QMessageBox* box) {
        question = box;
        Tamerisk_Close();
    });
    DlgItem<QAbstractButton>(editor, kIdLoad)->click();

    EXPECT_TRUE(host.Seen());
    EXPECT_TRUE(editor.isNull());
    EXPECT_TRUE(question.isNull());
    ASSERT_EQ(Tamerisk_Open(nullptr, 0), 1);
    Tamerisk_Close();
}

std::string CaseName(const ::testing::TestParamInfo<Case>& info)
{
    const auto [window, answer, destroy] = info.param;
    static const char* const answers[] = {"Ok", "Cancel", "Unanswered"};
    static const char* const destroys[] = {"Close", "OpenAgain", "Delete"};
    return std::string(window.name) + answers[int(answer)] + destroys[int(destroy)];
}

INSTANTIATE_TEST_SUITE_P(Editor, ClosingDuringAModalWindow,
                         ::testing::Combine(::testing::ValuesIn(kWindows),
                                            ::testing::Values(Answer::Ok, Answer::Cancel, Answer::None),
                                            ::testing::Values(Destroy::Close, Destroy::OpenAgain,
                                                              Destroy::Delete)),
                         CaseName);

} // namespace
