// The colour picker of the two swatches: Qt's own, with the custom colour
// part shown from the start. While the user picks, the editor shows every
// colour the picker shows on its previews.
#ifndef TAMERISK_DIALOGS_COLOR_CHOICE_H
#define TAMERISK_DIALOGS_COLOR_CHOICE_H

#include <functional>

#include <QColorDialog>

#include <tamerisk/attribute.h>

// Sets the picker up at `start` and hands `show` each colour it shows while
// it is open; what a cancel gives back is the caller's.
void SetUpColorPicker(QColorDialog& picker, const FZColor& start, std::function<void(const FZColor&)> show);
// The colour chosen in a picker that was confirmed.
FZColor ChosenColor(const QColorDialog& picker);

// "R, G, B" of a colour, for the swatch's tooltip: "RGB 204, 102, 51".
QString ColorTipText(const FZColor& color);

#endif
