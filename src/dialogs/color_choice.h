// The colour picker of the two swatches: Qt's own, with the custom colour
// part shown from the start, opened over the editor. While the user picks,
// the material on the previews follows every colour the picker shows;
// Cancel gives the old colour back, and the choice as a whole is one edit.
#ifndef TAMERISK_DIALOGS_COLOR_CHOICE_H
#define TAMERISK_DIALOGS_COLOR_CHOICE_H

#include <functional>

#include <QColorDialog>

#include <tamerisk/attribute.h>

// Sets the picker up at `start` and hands `show` each colour it shows while
// it is open, and `start` again when it is cancelled.
void SetUpColorPicker(QColorDialog& picker, const FZColor& start, std::function<void(const FZColor&)> show);
// The colour chosen in a picker that was confirmed.
FZColor ChosenColor(const QColorDialog& picker);

// "R, G, B" of a colour, for the swatch's tooltip: "RGB 204, 102, 51".
QString ColorTipText(const FZColor& color);

#endif
