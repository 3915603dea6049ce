// The preview panel bound to a Qt control: the scene takes the control's
// size, and presenting draws the rendered frame into the control (an
// FZCanvas, whose whole area is its client area).
#include <QWidget>

#include "engine/display/image_display.h"
#include "preview/preview_panel.h"

FZResult CPreviewPanel::SetUp(QWidget* control)
{
    if (control == nullptr)
        return FZResult::Ok;
    return SetUpFrame(control->width(), control->height());
}

void CPreviewPanel::Present(QWidget* control)
{
    if (scene == nullptr)
        return;
    PresentFrame(*scene, control);
}
