// Opening the parameter dialogs in tests without a modal loop (showing one
// initialises it), and moving their controls as a user would.
#ifndef TAMERISK_TESTS_DIALOGS_PARAMETER_DIALOGS_H
#define TAMERISK_TESTS_DIALOGS_PARAMETER_DIALOGS_H

#include <memory>

#include <QAbstractButton>
#include <QScrollBar>

#include <tamerisk/attribute.h>

#include "dialogs/dialog_template.h"

template <typename Dialog>
std::unique_ptr<Dialog> OpenParameterDialog(const FZAttributeEx& record, int shape = 1)
{
    auto dialog = std::make_unique<Dialog>();
    dialog->SetAttribute(record, 0);
    dialog->SetSampleShape(shape);
    dialog->show();
    return dialog;
}

// One action of the bar, as an arrow or a click on the groove makes it.
inline void Scroll(const QWidget* dialog, int id, QAbstractSlider::SliderAction action)
{
    DlgItem<QScrollBar>(dialog, id)->triggerAction(action);
}

// Drags a slider's thumb to a position.
inline void DragTo(const QWidget* dialog, int id, int position)
{
    DlgItem<QScrollBar>(dialog, id)->setSliderPosition(position);
}

inline int Position(const QWidget* dialog, int id)
{
    return DlgItem<QScrollBar>(dialog, id)->value();
}

inline bool IsChecked(const QWidget* dialog, int id)
{
    return DlgItem<QAbstractButton>(dialog, id)->isChecked();
}

#endif
