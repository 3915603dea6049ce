// The texts a window shows, to check which language it speaks.
#ifndef TAMERISK_TESTS_DIALOGS_UI_TEXTS_H
#define TAMERISK_TESTS_DIALOGS_UI_TEXTS_H

#include <QAbstractButton>
#include <QAction>
#include <QGroupBox>
#include <QLabel>
#include <QStringList>
#include <QWidget>

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

inline bool HasJapanese(const QString& text)
{
    for (const QChar c : text) {
        const char16_t u = c.unicode();
        if ((u >= 0x3000 && u <= 0x9FFF) || (u >= 0xFF00 && u <= 0xFFEF))
            return true;
    }
    return false;
}

// Every text of the window and its children (titles, labels, buttons, group
// boxes, tooltips, actions) that holds Japanese.
inline QStringList JapaneseTextsIn(const QWidget& window)
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
    QStringList japanese;
    for (const QString& text : texts) {
        if (HasJapanese(text))
            japanese << text;
    }
    return japanese;
}

#endif
