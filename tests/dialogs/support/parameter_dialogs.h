// Opening the parameter dialogs in tests without a modal loop: the dialog
// is shown (which initialises it) and painted once, as a user would first
// see it.
#ifndef TAMERISK_TESTS_DIALOGS_PARAMETER_DIALOGS_H
#define TAMERISK_TESTS_DIALOGS_PARAMETER_DIALOGS_H

#include <memory>

#include <QApplication>
#include <QAbstractButton>
#include <QScrollBar>

#include <tamerisk/attribute.h>

#include "dialogs/dialog_template.h"

template <typename Dialog>
std::unique_ptr<Dialog> OpenParameterDialog(const FZAttributeEx& record, int shape = 1,
                                            int colorBind = 0)
{
    auto dialog = std::make_unique<Dialog>();
    dialog->SetAttribute(record, colorBind);
    dialog->SetSampleShape(shape);
    dialog->show();
    QApplication::processEvents();
    dialog->grab();  // the first paint, whether or not the platform exposed it yet
    return dialog;
}

// Moves a slider as a user would: one action of the bar.
inline void Scroll(const QWidget* dialog, int id, QAbstractSlider::SliderAction action)
{
    if (auto* bar = DlgItem<QScrollBar>(dialog, id))
        bar->triggerAction(action);
}

// Drags a slider's thumb to a position.
inline void DragTo(const QWidget* dialog, int id, int position)
{
    if (auto* bar = DlgItem<QScrollBar>(dialog, id))
        bar->setSliderPosition(position);
}

inline bool IsChecked(const QWidget* dialog, int id)
{
    auto* button = DlgItem<QAbstractButton>(dialog, id);
    return button != nullptr && button->isChecked();
}

inline int Position(const QWidget* dialog, int id)
{
    auto* bar = DlgItem<QScrollBar>(dialog, id);
    return bar == nullptr ? -1 : bar->value();
}

#endif
