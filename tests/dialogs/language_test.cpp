// The editor's two languages: Japanese as written, English by translation,
// and Qt's own dialogs in Japanese beside a Japanese editor.
#include <QAction>
#include <QColorDialog>
#include <QGroupBox>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QRegularExpression>
#include <gtest/gtest.h>

#include "dialogs/dlg_anisotropic.h"
#include "dialogs/dlg_rainbow_highlight.h"
#include "dialogs/dlg_transparency.h"
#include "dialogs/language.h"
#include "dialogs/templates.h"
#include "support/dlg_attribute_access.h"
#include "support/parameter_dialogs.h"

namespace {

// Sets TAMERISK_LANGUAGE while it lives; the editors made meanwhile speak it.
class LanguageSetting {
public:
    explicit LanguageSetting(const char* language) : saved(qgetenv("TAMERISK_LANGUAGE"))
    {
        qputenv("TAMERISK_LANGUAGE", language);
    }
    ~LanguageSetting() { qputenv("TAMERISK_LANGUAGE", saved); }
    LanguageSetting(const LanguageSetting&) = delete;
    LanguageSetting& operator=(const LanguageSetting&) = delete;

private:
    QByteArray saved;
};

// Every text of the window and its children (titles, labels, buttons, group
// boxes, tooltips, actions) that holds Japanese.
QStringList JapaneseTextsIn(const QWidget& window)
{
    QStringList texts{window.windowTitle(), window.toolTip()};
    for (const QWidget* w : window.findChildren<QWidget*>()) {
        texts << w->toolTip();
        if (const auto* label = qobject_cast<const QLabel*>(w))
            texts << label->text();
        if (const auto* button = qobject_cast<const QAbstractButton*>(w))
            texts << button->text();
        if (const auto* group = qobject_cast<const QGroupBox*>(w))
            texts << group->title();
    }
    for (const QAction* action : window.findChildren<QAction*>())
        texts << action->text() << action->toolTip();
    static const QRegularExpression japanese(QStringLiteral("[\\x{3000}-\\x{9FFF}\\x{FF00}-\\x{FFEF}]"));
    return texts.filter(japanese);
}

TEST(Language, JapaneseUnlessEnglishIsAskedFor)
{
    EXPECT_EQ(LanguageFor({}, QStringLiteral("C")), EditorLanguage::Japanese);
    EXPECT_EQ(LanguageFor({}, QString()), EditorLanguage::Japanese);
    EXPECT_EQ(LanguageFor({}, QStringLiteral("ja-JP")), EditorLanguage::Japanese);
    EXPECT_EQ(LanguageFor({}, QStringLiteral("de-DE")), EditorLanguage::Japanese);
    EXPECT_EQ(LanguageFor({}, QStringLiteral("en-GB")), EditorLanguage::English);
    EXPECT_EQ(LanguageFor(QStringLiteral("en"), QStringLiteral("ja-JP")), EditorLanguage::English);
    EXPECT_EQ(LanguageFor(QStringLiteral("ja"), QStringLiteral("en-US")), EditorLanguage::Japanese);
}

TEST(Language, QtsOwnDialogsSpeakJapaneseBesideAJapaneseEditor)
{
    const LanguageSetting japanese("ja");
    QColorDialog picker;
    const QString english = picker.windowTitle();
    {
        const CLanguageUse use;
        EXPECT_EQ(SpokenLanguage(), EditorLanguage::Japanese);
        QColorDialog japanesePicker;
        EXPECT_EQ(japanesePicker.windowTitle(), QString::fromUtf8("色を選択"));
        QMessageBox box(QMessageBox::NoIcon, {}, {}, QMessageBox::Ok | QMessageBox::Cancel);
        EXPECT_EQ(box.button(QMessageBox::Cancel)->text(), QString::fromUtf8("キャンセル"));
    }
    // The last user gone, the application speaks as it did.
    EXPECT_EQ(QColorDialog().windowTitle(), english);
}

// English through the translation, every text of every window included
// (Japanese is what the other tests see).
TEST(Language, EveryWindowSpeaksEnglishThroughout)
{
    const LanguageSetting english("en");
    CDlgAttribute editor(nullptr);
    ASSERT_TRUE(editor.Create());
    EXPECT_EQ(editor.windowTitle(), QStringLiteral("Material Remote"));
    EXPECT_EQ(JapaneseTextsIn(editor), QStringList());
    const FZAttributeEx record;
    EXPECT_EQ(JapaneseTextsIn(*OpenParameterDialog<CDlgAnisotropic>(record)), QStringList());
    EXPECT_EQ(JapaneseTextsIn(*OpenParameterDialog<CDlgRainbowHighlight>(record)), QStringList());
    EXPECT_EQ(JapaneseTextsIn(*OpenParameterDialog<CDlgTransparency>(record)), QStringList());
    QString text;
    const ModalAnswer<QMessageBox> box([&](QMessageBox* b) {
        text = b->text();
        b->accept();
    });
    DlgItem<QAbstractButton>(&editor, kIdUpdate)->click();
    EXPECT_EQ(text, QStringLiteral("There is nobody to send to."));
}

} // namespace
