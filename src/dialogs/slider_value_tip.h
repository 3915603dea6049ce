// A slider's value in words: while the pointer rests on a slider, or the
// user drags it, a tooltip names the field the slider writes and the value
// it writes there, "拡散反射率 0.80".
#ifndef TAMERISK_DIALOGS_SLIDER_VALUE_TIP_H
#define TAMERISK_DIALOGS_SLIDER_VALUE_TIP_H

#include <functional>

#include <QString>

class QAbstractSlider;

// The tooltip's text for a field (a source text of the editor, translated
// here) and a value: two decimals, or none for a whole number such as a
// colour byte.
QString ValueTipText(const char* field, double value, int decimals = 2);

// Keeps the slider's tooltip at text(position) as the slider moves, and
// shows it beside the pointer while the slider is dragged. The function
// lives as long as the slider.
void AttachValueTip(QAbstractSlider* slider, std::function<QString(int position)> text);

#endif
