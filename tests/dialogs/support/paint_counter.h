// Counts the paint events a widget receives, to check that painting settles.
#ifndef TAMERISK_TESTS_DIALOGS_PAINT_COUNTER_H
#define TAMERISK_TESTS_DIALOGS_PAINT_COUNTER_H

#include <QEvent>
#include <QObject>

class PaintCounter : public QObject {
public:
    int paints = 0;

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        paints += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
};

#endif
