#include "host/settings.h"

#include <algorithm>
#include <cstdint>
#include <limits>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QScreen>
#include <QStandardPaths>
#include <QWidget>
#include <QWindow>

#include "material/file_replace.h"

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

// The file's lines without their line ends; none when it cannot be read.
QStringList ReadLines(const QString& filePath)
{
    QFile file(filePath);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n');
    for (QString& line : lines) {
        if (line.endsWith(u'\r'))
            line.chop(1);
    }
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

// Whether line opens a section, and whether that section is the one named.
// Names and keys compare without regard to case, as in private-profile files.
bool OpensSection(const QString& line, const QString& section, bool& isThatSection)
{
    const QString t = line.trimmed();
    if (!t.startsWith(u'[') || !t.endsWith(u']'))
        return false;
    isThatSection = t.mid(1, t.size() - 2).trimmed().compare(section, Qt::CaseInsensitive) == 0;
    return true;
}

bool IsKeyLine(const QString& line, const QString& key)
{
    const qsizetype equals = line.indexOf(u'=');
    return equals >= 0 && line.left(equals).trimmed().compare(key, Qt::CaseInsensitive) == 0;
}

// A key of a section of the file.
struct Key {
    const QString& section;
    const QString& name;
};

// The line of the key (-1 when missing), and where a new key of its section
// would go (-1 when the section is missing).
struct KeyPlace {
    qsizetype line = -1;
    qsizetype sectionEnd = -1;
};

KeyPlace FindKey(const QStringList& lines, Key key)
{
    KeyPlace place;
    bool inSection = false;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        if (OpensSection(lines[i], key.section, inSection)) {
            if (inSection && place.sectionEnd < 0)
                place.sectionEnd = i + 1;
        } else if (inSection && IsKeyLine(lines[i], key.name)) {
            place.line = i;
            return place;
        } else if (inSection && !lines[i].trimmed().isEmpty()) {
            place.sectionEnd = i + 1;
        }
    }
    return place;
}

// The key's value; fallback when the key is missing.
int ReadKey(const QStringList& lines, Key key, int fallback = 0)
{
    const KeyPlace place = FindKey(lines, key);
    if (place.line < 0)
        return fallback;
    const QString& line = lines[place.line];
    return ParseProfileInt(line.mid(line.indexOf(u'=') + 1));
}

// Sets the key: in place, else at the end of its section, which is added at
// the end of the file when missing. Every other line of the file stays as
// it was.
void SetKey(QStringList& lines, Key key, int value)
{
    const QString entry = key.name + u'=' + QString::number(value);
    KeyPlace place = FindKey(lines, key);
    if (place.line >= 0) {
        lines[place.line] = entry;
        return;
    }
    if (place.sectionEnd < 0) {
        lines << u'[' + key.section + u']';
        place.sectionEnd = lines.size();
    }
    lines.insert(place.sectionEnd, entry);
}

// Replaces the file by the lines as a whole (material/file_replace.h), so a
// full disk never leaves it half written.
bool WriteLines(const QString& filePath, const QStringList& lines, QString* reason)
{
    const QByteArray text = (lines.join(u'\n') + u'\n').toUtf8();
    const FileWriteResult written = ReplaceFile(QFile::encodeName(filePath).constData(),
                                                text.constData(), static_cast<std::size_t>(text.size()));
    if (reason != nullptr)
        *reason = QString::fromLocal8Bit(written.reason);
    return written.Ok();
}

int PreviewSide(const QStringList& lines, const QString& key)
{
    return std::clamp(ReadKey(lines, {kPreviewSection, key}, kDefaultPreviewSide), kMinPreviewSide,
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
    const QStringList lines = ReadLines(filePath);
    WindowSettings settings;
    settings.top = ReadKey(lines, {kWindowSection, kTopKey});
    settings.left = ReadKey(lines, {kWindowSection, kLeftKey});
    settings.display = ReadKey(lines, {kWindowSection, kDisplayKey});
    return settings;
}

bool WriteWindowSettings(const QString& filePath, const WindowSettings& settings, QString* reason)
{
    QStringList lines = ReadLines(filePath);
    SetKey(lines, {kWindowSection, kTopKey}, settings.top);
    SetKey(lines, {kWindowSection, kLeftKey}, settings.left);
    SetKey(lines, {kWindowSection, kDisplayKey}, settings.display);
    return WriteLines(filePath, lines, reason);
}

QSize ReadLargePreviewSize(const QString& filePath)
{
    const QStringList lines = ReadLines(filePath);
    return {PreviewSide(lines, kWidthKey), PreviewSide(lines, kHeightKey)};
}

void WriteLargePreviewSize(const QString& filePath, QSize size)
{
    QStringList lines = ReadLines(filePath);
    SetKey(lines, {kPreviewSection, kWidthKey}, size.width());
    SetKey(lines, {kPreviewSection, kHeightKey}, size.height());
    QString reason;
    // Only a convenience is lost: the window opens at its default size.
    if (!WriteLines(filePath, lines, &reason))
        qWarning("Tamerisk: the large preview's size could not be saved to %s: %s", qPrintable(filePath),
                 qPrintable(reason));
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

void LoadWindowPlacement(QWidget* dialog)
{
    if (!dialog)
        return;
    const WindowSettings saved = ReadWindowSettings(SettingsFilePath());
    // The size held on the screen includes the window frame, which the
    // platform reports once the native window exists.
    dialog->winId();
    const QSize size = dialog->frameGeometry().size();
    const QPoint corner = PlaceWindow({saved.left, saved.top}, size, ScreenRects());
    dialog->move(corner);
    // Under a window manager the frame is not known before the window is
    // mapped, and move() then places the client area. The saved corner is
    // the frame's, so the window manager is asked to put the frame there.
    if (QWindow* window = dialog->windowHandle())
        window->setFramePosition(corner);
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
