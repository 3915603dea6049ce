#include "host/settings.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QScreen>
#include <QStandardPaths>
#include <QWidget>
#include <QWindow>

#include "material/profile_file.h"

namespace {

constexpr char kFileName[] = "Tamerisk.ini";
constexpr char kOverrideVariable[] = "TAMERISK_SETTINGS_DIR";

const QString kWindowSection = QStringLiteral("Window");
const QString kTopKey = QStringLiteral("Top");
const QString kLeftKey = QStringLiteral("Left");
const QString kDisplayKey = QStringLiteral("Display");
const QString kPreviewSection = QStringLiteral("LargePreview");
const QString kWidthKey = QStringLiteral("Width");
const QString kHeightKey = QStringLiteral("Height");
const QString kFilesSection = QStringLiteral("Files");
const QString kFolderKey = QStringLiteral("Folder");
const QString kFileKey = QStringLiteral("File");

// The large preview's sides: a hand-edited file can ask neither for an
// unusable nor for an enormous window.
constexpr int kDefaultPreviewSide = 512;
constexpr int kMinPreviewSide = 64;
constexpr int kMaxPreviewSide = 4096;

std::int64_t ClampToInt(std::int64_t v)
{
    return std::clamp<std::int64_t>(v, std::numeric_limits<int>::min(),
                                    std::numeric_limits<int>::max());
}

// The file's text; empty, with a warning that names the file and the
// reason, when it cannot be read or is refused (too large, not text).
ProfileText ReadProfile(const QString& filePath)
{
    ProfileText text;
    const FileWriteResult read = ReadProfileFile(QFile::encodeName(filePath).constData(), text);
    if (!read.Ok())
        qWarning("Tamerisk: the settings file %s is not read: %s", qPrintable(filePath),
                 qPrintable(QString::fromLocal8Bit(read.reason)));
    return text;
}

// A key of a section of the file.
struct Key {
    const QString& section;
    const QString& name;
};

// The key's value; fallback when the key is missing.
int ReadKey(const ProfileText& text, Key key, int fallback = 0)
{
    const std::optional<std::string> value = text.Value(key.section.toStdString(), key.name.toStdString());
    return value ? ProfileInt(*value) : fallback;
}

void SetKey(ProfileText& text, Key key, int value)
{
    text.Set(key.section.toStdString(), key.name.toStdString(), std::to_string(value));
}

// A key whose value is a file name, as the system's bytes; empty when missing.
QString ReadPathKey(const ProfileText& text, Key key)
{
    const std::optional<std::string> value = text.Value(key.section.toStdString(), key.name.toStdString());
    return value ? QFile::decodeName(QByteArray::fromStdString(*value)) : QString();
}

// Sets keys of the file under its lock and keeps every other byte of it;
// the file is replaced as a whole (material/file_replace.h), so a full disk
// never leaves it half written.
bool UpdateKeys(const QString& filePath, std::initializer_list<std::pair<Key, int>> keys, QString* reason)
{
    const FileWriteResult written
        = UpdateProfileFile(QFile::encodeName(filePath).constData(), [&keys](ProfileText& text) {
              for (const auto& [key, value] : keys)
                  SetKey(text, key, value);
          });
    if (reason != nullptr)
        *reason = QString::fromLocal8Bit(written.reason);
    return written.Ok();
}

int PreviewSide(const ProfileText& text, const QString& key)
{
    return std::clamp(ReadKey(text, {kPreviewSection, key}, kDefaultPreviewSide), kMinPreviewSide,
                      kMaxPreviewSide);
}

// One axis of the placement: a coordinate before the screen's near edge
// moves onto it, and a window that would reach past the far edge moves back
// to end on it, so a window larger than the screen starts before it.
int ClampAxis(int saved, int extent, int screenStart, int screenExtent)
{
    std::int64_t pos = std::max(saved, screenStart);
    if (pos + extent > std::int64_t{screenStart} + screenExtent)
        pos = std::int64_t{screenStart} + screenExtent - extent;
    return static_cast<int>(ClampToInt(pos));
}

// The squared distance from point to the nearest pixel of r.
std::int64_t DistanceSquared(QPoint point, const QRect& r)
{
    const std::int64_t dx = std::max<std::int64_t>({std::int64_t{r.left()} - point.x(), 0,
                                                    std::int64_t{point.x()} - r.right()});
    const std::int64_t dy = std::max<std::int64_t>({std::int64_t{r.top()} - point.y(), 0,
                                                    std::int64_t{point.y()} - r.bottom()});
    return dx * dx + dy * dy;
}

std::vector<QRect> ScreenRects()
{
    std::vector<QRect> rects;
    for (const QScreen* screen : QGuiApplication::screens())
        rects.push_back(screen->geometry());
    return rects;
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

QString WritableSettingsFilePathFor(const QString& executablePath)
{
    const QString beside = SettingsFilePathFor(executablePath);
    if (QFileInfo(QFileInfo(beside).absolutePath()).isWritable())
        return beside;
    const QString config = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    // The file is replaced through a temporary one beside it, so its
    // directory must exist before the first write; without a home there is
    // nowhere better than beside the executable, and the write says why.
    if (config.isEmpty() || !QDir().mkpath(config + QStringLiteral("/Tamerisk")))
        return beside;
    return config + QStringLiteral("/Tamerisk/") + QLatin1String(kFileName);
}

QString SettingsFilePath()
{
    const QString overrideDirectory = qEnvironmentVariable(kOverrideVariable);
    if (!overrideDirectory.isEmpty())
        return overrideDirectory + u'/' + QLatin1String(kFileName);
    return WritableSettingsFilePathFor(QCoreApplication::applicationFilePath());
}

WindowSettings ReadWindowSettings(const QString& filePath)
{
    const ProfileText text = ReadProfile(filePath);
    WindowSettings settings;
    settings.top = ReadKey(text, {kWindowSection, kTopKey});
    settings.left = ReadKey(text, {kWindowSection, kLeftKey});
    settings.display = ReadKey(text, {kWindowSection, kDisplayKey});
    return settings;
}

bool WriteWindowSettings(const QString& filePath, const WindowSettings& settings, QString* reason)
{
    return UpdateKeys(filePath,
                      {{{kWindowSection, kTopKey}, settings.top},
                       {{kWindowSection, kLeftKey}, settings.left},
                       {{kWindowSection, kDisplayKey}, settings.display}},
                      reason);
}

LargePreviewPlace ReadLargePreviewPlace(const QString& filePath)
{
    const ProfileText text = ReadProfile(filePath);
    LargePreviewPlace place{{PreviewSide(text, kWidthKey), PreviewSide(text, kHeightKey)}, std::nullopt};
    const std::string section = kPreviewSection.toStdString();
    if (text.Value(section, kLeftKey.toStdString()) && text.Value(section, kTopKey.toStdString()))
        place.corner = QPoint(ReadKey(text, {kPreviewSection, kLeftKey}), ReadKey(text, {kPreviewSection, kTopKey}));
    return place;
}

void WriteLargePreviewPlace(const QString& filePath, QSize size, QPoint corner)
{
    QString reason;
    // Only a convenience is lost: the window opens at its default place.
    if (!UpdateKeys(filePath,
                    {{{kPreviewSection, kWidthKey}, size.width()},
                     {{kPreviewSection, kHeightKey}, size.height()},
                     {{kPreviewSection, kLeftKey}, corner.x()},
                     {{kPreviewSection, kTopKey}, corner.y()}},
                    &reason))
        qWarning("Tamerisk: the large preview's place could not be saved to %s: %s", qPrintable(filePath),
                 qPrintable(reason));
}

FileMemory ReadFileMemory(const QString& filePath)
{
    const ProfileText text = ReadProfile(filePath);
    return {ReadPathKey(text, {kFilesSection, kFolderKey}), ReadPathKey(text, {kFilesSection, kFileKey})};
}

void RememberFile(const QString& filePath, const QString& path, bool loadedOrSaved)
{
    const QFileInfo chosen(path);
    const QByteArray folder = QFile::encodeName(chosen.absolutePath());
    const QByteArray name = QFile::encodeName(chosen.fileName());
    if (folder.contains('\n') || folder.contains('\r') || name.contains('\n') || name.contains('\r'))
        return;
    const FileWriteResult written
        = UpdateProfileFile(QFile::encodeName(filePath).constData(), [&](ProfileText& text) {
              const std::string section = kFilesSection.toStdString();
              text.Set(section, kFolderKey.toStdString(), folder.toStdString());
              if (loadedOrSaved)
                  text.Set(section, kFileKey.toStdString(), name.toStdString());
          });
    // Only a convenience is lost: the next file dialog starts elsewhere.
    if (!written.Ok())
        qWarning("Tamerisk: the folder of %s could not be remembered in %s: %s", qPrintable(path),
                 qPrintable(filePath), qPrintable(QString::fromLocal8Bit(written.reason)));
}

QPoint PlaceWindow(QPoint saved, QSize window, const std::vector<QRect>& screens)
{
    // With no screen at all nothing can be reached past, so only the
    // negative coordinates are corrected.
    if (screens.empty())
        return {std::max(saved.x(), 0), std::max(saved.y(), 0)};
    const QRect screen = *std::min_element(screens.begin(), screens.end(), [saved](const QRect& a, const QRect& b) {
        return DistanceSquared(saved, a) < DistanceSquared(saved, b);
    });
    return {ClampAxis(saved.x(), window.width(), screen.x(), screen.width()),
            ClampAxis(saved.y(), window.height(), screen.y(), screen.height())};
}

void MoveFrameTo(QWidget* window, QPoint saved)
{
    // The size held on the screen includes the window frame, which the
    // platform reports once the native window exists.
    window->winId();
    const QSize size = window->frameGeometry().size();
    const QPoint corner = PlaceWindow(saved, size, ScreenRects());
    window->move(corner);
    // Under a window manager the frame is not known before the window is
    // mapped, and move() then places the client area. The saved corner is
    // the frame's, so the window manager is asked to put the frame there.
    if (QWindow* handle = window->windowHandle())
        handle->setFramePosition(corner);
}

QPoint NormalFrameCorner(const QWidget& window)
{
    return NormalTopLeft(window);
}

void LoadWindowPlacement(QWidget* dialog, QPoint offset)
{
    if (!dialog)
        return;
    const WindowSettings saved = ReadWindowSettings(SettingsFilePath());
    // Moved without overflow, whatever the file says.
    MoveFrameTo(dialog, QPoint(static_cast<int>(ClampToInt(std::int64_t{saved.left} + offset.x())),
                               static_cast<int>(ClampToInt(std::int64_t{saved.top} + offset.y()))));
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
    const QString path = SettingsFilePath();
    QString reason;
    // The window is going away and nobody is left to ask; the placement is
    // simply not remembered, but the user learns why.
    if (!WriteWindowSettings(path, settings, &reason))
        qWarning("Tamerisk: the window placement could not be saved to %s: %s", qPrintable(path),
                 qPrintable(reason));
}
