#include "host/settings.h"

#include <algorithm>
#include <cstdint>
#include <limits>

#include <QCoreApplication>
#include <QDir>
#include <QGuiApplication>
#include <QScreen>
#include <QSettings>
#include <QWidget>

namespace {

constexpr char kFileName[] = "Tamerisk.ini";
constexpr char kOverrideVariable[] = "TAMERISK_SETTINGS_DIR";

const QString kTopKey = QStringLiteral("Window/Top");
const QString kLeftKey = QStringLiteral("Window/Left");
const QString kDisplayKey = QStringLiteral("Window/Display");

std::int64_t ClampToInt(std::int64_t v)
{
    return std::clamp<std::int64_t>(v, std::numeric_limits<int>::min(),
                                    std::numeric_limits<int>::max());
}

// Reads an integer the way private-profile files are read: leading blanks, an
// optional sign, then decimal digits up to the first other character. Text
// without digits reads as 0; values beyond the int range saturate, so a
// hand-edited file can never overflow the placement arithmetic.
int ParseProfileInt(const QString& text)
{
    const QString s = text.trimmed();
    qsizetype i = 0;
    bool negative = false;
    if (i < s.size() && (s[i] == u'-' || s[i] == u'+'))
        negative = s[i++] == u'-';
    std::int64_t value = 0;
    for (; i < s.size() && s[i] >= u'0' && s[i] <= u'9'; ++i)
        value = std::min<std::int64_t>(value * 10 + (s[i].unicode() - u'0'), INT64_C(1) << 40);
    return static_cast<int>(ClampToInt(negative ? -value : value));
}

int ReadKey(const QSettings& file, const QString& key)
{
    const QVariant value = file.value(key);
    return value.isValid() ? ParseProfileInt(value.toString()) : 0;
}

// One axis of the placement: a negative coordinate becomes 0, and a window
// that would reach past the screen's far edge moves back to end on it.
int ClampAxis(int saved, int extent, int screenExtent)
{
    std::int64_t pos = std::max(saved, 0);
    if (pos + extent > screenExtent)
        pos = std::int64_t{screenExtent} - extent;
    return static_cast<int>(ClampToInt(pos));
}

// With no screen at all nothing can be reached past, so only the negative
// coordinates are corrected.
QSize PrimaryScreenSize()
{
    if (const QScreen* screen = QGuiApplication::primaryScreen())
        return screen->geometry().size();
    return {std::numeric_limits<int>::max(), std::numeric_limits<int>::max()};
}

// The top-left corner of the window frame in its normal (restored) state.
// Qt remembers the restored geometry only for maximised and full-screen
// windows, and as the client area; the frame's offset from the client area is
// taken from the current geometry. A minimised window keeps its position.
QPoint NormalTopLeft(const QWidget& window)
{
    if (!window.isMaximized() && !window.isFullScreen())
        return window.pos();
    const QPoint frameOffset = window.geometry().topLeft() - window.pos();
    return window.normalGeometry().topLeft() - frameOffset;
}

} // namespace

QString SettingsFilePathFor(const QString& executablePath)
{
    const qsizetype cut = std::max(executablePath.lastIndexOf(u'/'),
                                   executablePath.lastIndexOf(u'\\'));
    // A separator at the very start leaves an empty directory part, which is
    // treated like no separator at all: the file goes to the current directory.
    const QString directory = cut > 0 ? executablePath.left(cut) : QDir::currentPath();
    return directory + u'/' + QLatin1String(kFileName);
}

QString SettingsFilePath()
{
    const QString overrideDirectory = qEnvironmentVariable(kOverrideVariable);
    if (!overrideDirectory.isEmpty())
        return overrideDirectory + u'/' + QLatin1String(kFileName);
    return SettingsFilePathFor(QCoreApplication::applicationFilePath());
}

WindowSettings ReadWindowSettings(const QString& filePath)
{
    const QSettings file(filePath, QSettings::IniFormat);
    WindowSettings settings;
    settings.top = ReadKey(file, kTopKey);
    settings.left = ReadKey(file, kLeftKey);
    settings.display = ReadKey(file, kDisplayKey);
    return settings;
}

// The values are written as decimal text, as "%d" would format them. QSettings
// keeps the other sections and keys of the file and writes plain "Key=value"
// lines. A file that cannot be written is not an error: the placement is then
// simply not remembered.
void WriteWindowSettings(const QString& filePath, const WindowSettings& settings)
{
    QSettings file(filePath, QSettings::IniFormat);
    file.setValue(kTopKey, QString::number(settings.top));
    file.setValue(kLeftKey, QString::number(settings.left));
    file.setValue(kDisplayKey, QString::number(settings.display));
    file.sync();
}

QPoint ClampWindowPosition(int left, int top, QSize window, QSize screen)
{
    return {ClampAxis(left, window.width(), screen.width()),
            ClampAxis(top, window.height(), screen.height())};
}

void LoadWindowPlacement(QWidget* dialog)
{
    if (!dialog)
        return;
    const WindowSettings saved = ReadWindowSettings(SettingsFilePath());
    // The size held on the screen includes the window frame, which the
    // platform reports once the native window exists.
    dialog->winId();
    const QSize size = dialog->frameGeometry().size();
    dialog->move(ClampWindowPosition(saved.left, saved.top, size, PrimaryScreenSize()));
    dialog->update();
    if (saved.display != 0) {
        dialog->show();
    } else {
        // Minimised and hidden is the state the close box leaves. Setting the
        // state on a window that is not shown yet records it without mapping
        // the window, so nothing flashes on the screen.
        dialog->setWindowState(dialog->windowState() | Qt::WindowMinimized);
        dialog->hide();
    }
}

void SaveWindowPlacement(const QWidget* dialog)
{
    if (!dialog)
        return;
    const QPoint topLeft = NormalTopLeft(*dialog);
    WindowSettings settings;
    settings.top = topLeft.y();
    settings.left = topLeft.x();
    settings.display = dialog->isMinimized() ? 0 : 1;
    WriteWindowSettings(SettingsFilePath(), settings);
}
