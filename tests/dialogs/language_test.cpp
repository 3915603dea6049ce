// The editor's two languages: Japanese as written, English by translation,
// and Qt's own dialogs in Japanese beside a Japanese editor.
#include <QColorDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <gtest/gtest.h>

#include "dialogs/dlg_anisotropic.h"
#include "dialogs/dlg_rainbow_highlight.h"
#include "dialogs/dlg_transparency.h"
#include "dialogs/language.h"
#include "support/parameter_dialogs.h"
#include "support/ui_texts.h"

namespace {

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

TEST(Language, EveryParameterDialogTextHasItsEnglish)
{
    const LanguageSetting english("en");
    const CLanguageUse use;
    ASSERT_EQ(SpokenLanguage(), EditorLanguage::English);
    const FZAttributeEx record;
    EXPECT_EQ(JapaneseTextsIn(*OpenParameterDialog<CDlgAnisotropic>(record)), QStringList());
    EXPECT_EQ(JapaneseTextsIn(*OpenParameterDialog<CDlgRainbowHighlight>(record)), QStringList());
    EXPECT_EQ(JapaneseTextsIn(*OpenParameterDialog<CDlgTransparency>(record)), QStringList());
}

} // namespace
