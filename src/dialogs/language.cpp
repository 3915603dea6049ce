#include "dialogs/language.h"

#include <memory>
#include <vector>

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

namespace {

constexpr char kContext[] = "Tamerisk";
constexpr char kSettingVariable[] = "TAMERISK_LANGUAGE";

struct Installed {
    int users = 0;
    EditorLanguage language = EditorLanguage::Japanese;
    std::vector<std::unique_ptr<QTranslator>> translators;
};

// Never destroyed: at a process exit that leaves an editor open, removing a
// translator would run widget code after Qt's own finalisation.
Installed& State()
{
    static Installed* const state = new Installed;
    return *state;
}

// A translator loaded from `file` in `directory`; null when there is no
// such file (a machine without Qt's translations still runs the editor).
std::unique_ptr<QTranslator> Load(const QString& file, const QString& directory)
{
    auto translator = std::make_unique<QTranslator>();
    if (!translator->load(file, directory))
        return nullptr;
    return translator;
}

void Install(Installed& state)
{
    state.language = ChosenLanguage();
    if (QCoreApplication::instance() == nullptr)
        return;
    std::unique_ptr<QTranslator> translator
        = state.language == EditorLanguage::English
              ? Load(QStringLiteral("tamerisk_en"), QStringLiteral(":/tamerisk/i18n"))
              : Load(QStringLiteral("qtbase_ja"), QLibraryInfo::path(QLibraryInfo::TranslationsPath));
    if (translator == nullptr) {
        qWarning("Tamerisk: no translation found for the editor's language");
        return;
    }
    if (QCoreApplication::installTranslator(translator.get()))
        state.translators.push_back(std::move(translator));
}

} // namespace

EditorLanguage LanguageFor(const QString& setting, const QString& uiLanguage)
{
    const QString& name = setting.isEmpty() ? uiLanguage : setting;
    return name.startsWith(QLatin1String("en"), Qt::CaseInsensitive) ? EditorLanguage::English
                                                                      : EditorLanguage::Japanese;
}

EditorLanguage ChosenLanguage()
{
    const QStringList languages = QLocale::system().uiLanguages();
    return LanguageFor(qEnvironmentVariable(kSettingVariable),
                       languages.isEmpty() ? QString() : languages.front());
}

EditorLanguage SpokenLanguage()
{
    const Installed& state = State();
    return state.translators.empty() ? EditorLanguage::Japanese : state.language;
}

QString UiText(const char* source)
{
    return QCoreApplication::translate(kContext, source);
}

CLanguageUse::CLanguageUse()
{
    Installed& state = State();
    if (state.users++ == 0)
        Install(state);
}

CLanguageUse::~CLanguageUse()
{
    Installed& state = State();
    // Each translator takes itself out of the application as it goes.
    if (--state.users == 0)
        state.translators.clear();
}
