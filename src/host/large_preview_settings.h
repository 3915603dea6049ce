// The size of the editor's large preview window in the settings file
// "Tamerisk.ini" (host/settings.h), section "LargePreview", keys "Width" and
// "Height": the size of its drawing area in logical pixels, written in
// decimal. The window placement's section "Window" and every other section
// of the file are kept.
#ifndef TAMERISK_HOST_LARGE_PREVIEW_SETTINGS_H
#define TAMERISK_HOST_LARGE_PREVIEW_SETTINGS_H

#include <QSize>
#include <QString>

// A missing file or key gives 512 x 512; a side is held within 64 to 4096,
// so a hand-edited file can ask neither for an unusable nor for an enormous
// window, and text that is no number counts as missing.
QSize ReadLargePreviewSize(const QString& filePath);
// A file that cannot be written is not an error: the size is then simply
// not remembered.
void WriteLargePreviewSize(const QString& filePath, QSize size);

#endif
