// The settings file "Tamerisk.ini": where the material dialog's window was
// and whether it was displayed, kept from one run of the host to the next.
//
// The file lies beside the host's executable (not beside this library),
// section "Window", keys "Top", "Left" and "Display". The dialog reads it once
// while it initialises and writes it once when its window is destroyed;
// nothing is cached in between. An installed host's directory belongs to
// the system and cannot be written; the file then lies in the user's
// configuration directory instead ($XDG_CONFIG_HOME/Tamerisk, by default
// ~/.config/Tamerisk), as every installed program keeps its settings.
//
// TAMERISK_SETTINGS_DIR, when set and not empty, names another directory for
// the file, and wins over both. The tests use it: their programs run in
// parallel from one build directory, and each must neither share nor leave a
// file beside the test executables.
#ifndef TAMERISK_HOST_SETTINGS_H
#define TAMERISK_HOST_SETTINGS_H

#include <optional>
#include <vector>

#include <QPoint>
#include <QRect>
#include <QSize>
#include <QString>

class QWidget;

// What the file holds. Missing keys read as 0.
struct WindowSettings {
    int top = 0;
    int left = 0;
    int display = 0;  // 1 when the dialog was displayed, 0 when it was closed
};

// Places the dialog's frame from the settings file, moved by `offset`, held
// on a screen (PlaceWindow), then shows it, or leaves it minimised and hidden
// as closing it does.
void LoadWindowPlacement(QWidget* dialog, QPoint offset = QPoint());
// Writes the dialog's normal (restored) top-left corner and whether it is
// displayed (not minimised). A failed write is reported as a warning.
void SaveWindowPlacement(const QWidget* dialog);

// The file for an executable at the given path: its directory (everything
// before the last "/" or "\"), a "/", and "Tamerisk.ini". A path without a
// directory part puts the file in the current directory.
QString SettingsFilePathFor(const QString& executablePath);
// SettingsFilePathFor when that directory can be written, else
// Tamerisk.ini in the user's configuration directory (made when missing).
QString WritableSettingsFilePathFor(const QString& executablePath);
// The file this process uses: TAMERISK_SETTINGS_DIR, else
// WritableSettingsFilePathFor the host's executable.
QString SettingsFilePath();

// A file that cannot be read, or is refused as too large or not text
// (material/profile_file.h), reads as empty, with a warning.
WindowSettings ReadWindowSettings(const QString& filePath);
// Sets the three keys and keeps every other byte of the file, under a lock
// that other hosts' updates wait for. The file is replaced as a whole
// (material/file_replace.h), so a full disk never leaves it half written. A
// refused file is left as it is. False, with the reason, when it cannot be.
bool WriteWindowSettings(const QString& filePath, const WindowSettings& settings, QString* reason = nullptr);

// The editor's large preview, section "LargePreview": the size of its
// drawing area in logical pixels, keys "Width" and "Height", and the
// top-left corner of its frame, keys "Left" and "Top". A missing file or
// key gives 512 a side; a side is held within 64 to 4096. Without both
// "Left" and "Top" there is no corner. What cannot be written is only not
// remembered.
struct LargePreviewPlace {
    QSize size;
    std::optional<QPoint> corner;
};
LargePreviewPlace ReadLargePreviewPlace(const QString& filePath);
void WriteLargePreviewPlace(const QString& filePath, QSize size, QPoint corner);

// What the file dialogs of "開く" and "保存" remember, section "Files":
// "Folder", the folder of the file last chosen in either, and "File", the
// name of the file last loaded or saved. Both are kept as the system's
// bytes for a file name; missing keys read as empty.
struct FileMemory {
    QString folder;
    QString file;
};
FileMemory ReadFileMemory(const QString& filePath);
// Remembers the folder of `path`, and its name too when the file was
// loaded or saved. A path that cannot be one line of the file (a line end
// in it) is not remembered.
void RememberFile(const QString& filePath, const QString& path, bool loadedOrSaved);

// Where a window whose frame has the given size goes for a saved frame
// corner, on a desktop of the given screens (virtual desktop coordinates).
// It stays on the screen that holds the corner, or moves to the screen
// nearest to it when none does, and is held inside that screen: a corner
// before its left or top edge moves onto it, a window reaching past its
// right or bottom edge moves back to end there (so a window larger than the
// screen starts before it). With no screen only negative coordinates change.
QPoint PlaceWindow(QPoint saved, QSize window, const std::vector<QRect>& screens);

// Moves the window's frame to where PlaceWindow puts a saved corner on the
// screens there are now.
void MoveFrameTo(QWidget* window, QPoint saved);
// The top-left corner of the window's frame in its normal (restored) state,
// as SaveWindowPlacement writes it.
QPoint NormalFrameCorner(const QWidget& window);

#endif
