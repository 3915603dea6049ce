// The language the editor speaks, and Qt's own dialogs with it.
//
// The editor's texts are written in Japanese, and Japanese is what it speaks
// by default, under a Japanese locale and under the C/POSIX locale alike.
// An English locale, or TAMERISK_LANGUAGE=en, gives English, from a
// translation compiled into the library (TAMERISK_LANGUAGE=ja gives
// Japanese whatever the locale). While the editor speaks Japanese, Qt's own
// file, colour and message dialogs speak it too, through Qt's Japanese
// translations.
//
// Translators belong to the application, which the host owns. Each open
// editor holds a CLanguageUse; the first installs the editor's translators
// beside the host's own, and the last one's going removes them, so the
// host's language is as it was once no editor is left. An open editor keeps
// the library loaded, so no translator outlives the library's code.
#ifndef TAMERISK_DIALOGS_LANGUAGE_H
#define TAMERISK_DIALOGS_LANGUAGE_H

#include <QString>

enum class EditorLanguage { Japanese, English };

// The language for a TAMERISK_LANGUAGE setting (empty when unset) and the
// user's first interface language as QLocale names it ("en-US", "ja", "C").
EditorLanguage LanguageFor(const QString& setting, const QString& uiLanguage);
// The language that a CLanguageUse made now would choose.
EditorLanguage ChosenLanguage();
// The language of the translators installed now: Japanese when there are
// none.
EditorLanguage SpokenLanguage();

// The text of the editor's source text (UTF-8 Japanese) in the language it
// speaks. Source texts are marked where they stand with
// QT_TRANSLATE_NOOP("Tamerisk", ...), so that lupdate finds them.
QString UiText(const char* source);

class CLanguageUse {
public:
    CLanguageUse();
    ~CLanguageUse();
    CLanguageUse(const CLanguageUse&) = delete;
    CLanguageUse& operator=(const CLanguageUse&) = delete;
};

#endif
