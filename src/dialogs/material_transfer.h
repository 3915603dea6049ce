// Materials that come into the editor from outside it and leave it as text:
// the clipboard (Ctrl+C, Ctrl+V) and files dragged onto the window.
//
// The clipboard holds the JSON form that `tamerisk-qva dump` prints, every
// field of the record, so that a material copied from the editor can be
// pasted into a file, an issue or a chat and back. Pasted text is read the way
// `tamerisk-qva write` reads its input, with the same checks as a file.
#ifndef TAMERISK_DIALOGS_MATERIAL_TRANSFER_H
#define TAMERISK_DIALOGS_MATERIAL_TRANSFER_H

#include <QString>

#include <tamerisk/attribute.h>

#include "material/result_codes.h"

class QMimeData;

// Pasted text longer than this is refused before it is read: no material
// comes near it, and reading megabytes of text would stall the editor.
inline constexpr qsizetype kMaxPastedBytes = qsizetype{1} << 20;

// The record as the clipboard text: its JSON form, as a current (version 10)
// attribute file.
QString MaterialToClipboardText(const FZAttributeEx& record);

// Reads a material from pasted text. Ok replaces record; on failure record is
// unchanged and the result says why: TooLarge for text over kMaxPastedBytes,
// otherwise what reading it as `tamerisk-qva write` reads its input gives
// (BadFormat or ReadFailed for text that is no material, BadParameter for a
// wrong key or value).
FZResult MaterialFromClipboardText(const QString& text, FZAttributeEx& record);

// The attribute file that a drag carries: exactly one local file (not a
// directory) whose name ends in ".qva", in any case. Empty for anything else,
// which the editor refuses as soon as the drag enters it.
QString DraggedAttributeFile(const QMimeData* data);

#endif
