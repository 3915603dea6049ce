// The preview panel bound to a Qt control: the scene takes the control's
// size in device pixels, so that on a high-density screen the frame is
// rendered at the screen's resolution rather than stretched, and presenting
// draws the rendered frame into the control (an FZCanvas, whose whole area
// is its client area).
#include <QWidget>

#include "engine/display/image_display.h"
#include "preview/preview_panel.h"

FZResult CPreviewPanel::SetUp(QWidget* control, std::int32_t shape)
{
    if (control == nullptr)
        return FZResult::Ok;
    const qreal ratio = control->devicePixelRatioF();
    return SetUpFrame(qRound(control->width() * ratio), qRound(control->height() * ratio), shape);
}

bool CPreviewPanel::FitsControl(const QWidget* control) const
{
    const FZScene* frame = Scene();
    const qreal ratio = control->devicePixelRatioF();
    return frame != nullptr && frame->width == qRound(control->width() * ratio)
           && frame->height == qRound(control->height() * ratio);
}

void CPreviewPanel::Present(QWidget* control)
{
    if (scene == nullptr)
        return;
    PresentFrame(*scene, control);
}
