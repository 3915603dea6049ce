#include "dialogs/material_history.h"

#include <cstring>
#include <limits>
#include <memory>
#include <utility>

#include <QAbstractSlider>

namespace {

// QUndoStack merges only commands of the same id; the drag number decides.
constexpr int kSliderDragId = 1;

} // namespace

bool SameRecord(const FZAttributeEx& a, const FZAttributeEx& b)
{
    // The record has no implicit padding: every byte belongs to a field or
    // to an explicit padding array, so comparing bytes is well defined.
    static_assert(sizeof(FZAttributeEx) == 136);
    return std::memcmp(static_cast<const void*>(&a), static_cast<const void*>(&b),
                       sizeof(FZAttributeEx)) == 0;
}

CMaterialEdit::CMaterialEdit(Apply apply, const FZAttributeEx& before, const FZAttributeEx& after,
                             int drag)
    : apply(std::move(apply)), before(before), after(after), drag(drag)
{
}

void CMaterialEdit::undo()
{
    apply(before);
}

void CMaterialEdit::redo()
{
    if (!std::exchange(shown, false))
        apply(after);
}

int CMaterialEdit::id() const
{
    return drag != 0 ? kSliderDragId : -1;
}

bool CMaterialEdit::mergeWith(const QUndoCommand* other)
{
    const auto* next = static_cast<const CMaterialEdit*>(other);
    if (next->drag != drag)
        return false;
    after = next->after;
    setObsolete(SameRecord(before, after));
    return true;
}

CEditHistory::CEditHistory(CMaterialEdit::Apply apply) : apply(std::move(apply))
{
}

void CEditHistory::Record(const FZAttributeEx& before, const FZAttributeEx& after)
{
    if (SameRecord(before, after))
        return;
    // The stack owns its commands from here on.
    const int drag = dragging ? drags : 0;
    stack.push(std::make_unique<CMaterialEdit>(apply, before, after, drag).release());
}

void CEditHistory::Watch(const QAbstractSlider* slider)
{
    QObject::connect(slider, &QAbstractSlider::sliderPressed, &stack, [this] {
        // 0 means "no drag"; skip it when the count wraps.
        drags = drags == std::numeric_limits<int>::max() ? 1 : drags + 1;
        dragging = true;
    });
    QObject::connect(slider, &QAbstractSlider::sliderReleased, &stack, [this] { dragging = false; });
}
