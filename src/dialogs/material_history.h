// The edit history of the material dialog: undo and redo over whole records.
//
// Every edit of the record is one step that holds the record before and after
// it. The dialog has already shown an edit when it records it (a slider the
// user moved must not be set back from the record under the user's hand), so
// a step does nothing when it is first pushed; undoing and redoing hand the
// record to the dialog's apply function, which brings every control and the
// previews into line with it and tells the host nothing.
//
// The steps of one slider drag, from press to release, merge into one; a
// drag that ends where it began leaves no step at all.
#ifndef TAMERISK_DIALOGS_MATERIAL_HISTORY_H
#define TAMERISK_DIALOGS_MATERIAL_HISTORY_H

#include <functional>

#include <QUndoStack>

#include <tamerisk/attribute.h>

class QAbstractSlider;

// True when the two records hold the same bytes, padding included (which
// every copy carries along): a NaN equals itself here, and 0 differs from -0.
bool SameRecord(const FZAttributeEx& a, const FZAttributeEx& b);

class CMaterialEdit : public QUndoCommand {
public:
    using Apply = std::function<void(const FZAttributeEx&)>;

    // drag is 0 for a step of its own, or the number of the slider drag the
    // step belongs to; steps of the same drag merge.
    CMaterialEdit(Apply apply, const FZAttributeEx& before, const FZAttributeEx& after, int drag);

    void undo() override;
    void redo() override;
    int id() const override;
    bool mergeWith(const QUndoCommand* other) override;

private:
    Apply apply;
    FZAttributeEx before;
    FZAttributeEx after;
    int drag;
    bool shown = true;  // the dialog shows `after` already
};

// The dialog's history: the undo stack, and the numbering of slider drags.
class CEditHistory {
public:
    explicit CEditHistory(CMaterialEdit::Apply apply);

    QUndoStack& Stack() { return stack; }

    // Records an edit the dialog has already shown; nothing when the record
    // did not change. The edits made while a watched slider is held down
    // merge into one step.
    void Record(const FZAttributeEx& before, const FZAttributeEx& after);
    // Starts the history afresh at the record the dialog holds now.
    void Restart() { stack.clear(); }
    // Follows the drags of the slider: each press starts a new one, which
    // lasts until the release.
    void Watch(const QAbstractSlider* slider);

private:
    CMaterialEdit::Apply apply;
    QUndoStack stack;
    int drags = 0;  // the number of the last drag
    bool dragging = false;
};

#endif
