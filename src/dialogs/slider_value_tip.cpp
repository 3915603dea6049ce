#include "dialogs/slider_value_tip.h"

#include <QAbstractSlider>
#include <QCursor>
#include <QToolTip>

#include "dialogs/language.h"

QString ValueTipText(const char* field, double value, int decimals)
{
    return UiText(field) + u' ' + QString::number(value, 'f', decimals);
}

void AttachValueTip(QAbstractSlider* slider, std::function<QString(int position)> text)
{
    const auto follow = [slider, text = std::move(text)] {
        const QString tip = text(slider->value());
        slider->setToolTip(tip);
        // A pressed button hides tooltips; a drag shows its value all the same.
        if (slider->isSliderDown())
            QToolTip::showText(QCursor::pos(), tip, slider);
    };
    QObject::connect(slider, &QAbstractSlider::valueChanged, slider, follow);
    QObject::connect(slider, &QAbstractSlider::sliderPressed, slider, follow);
    follow();
}
