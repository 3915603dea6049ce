#include "dialogs/large_preview.h"

#include <QTimer>
#include <QVBoxLayout>

#include "dialogs/material_history.h"
#include "engine/display/canvas.h"
#include "host/settings.h"
#include "host/settings.h"

CLargePreview::CLargePreview(QWidget* owner) : QWidget(owner, Qt::Window)
{
    setObjectName(QStringLiteral("tamerisk-large-preview"));
    setWindowTitle(QString::fromUtf8("ﾌﾟﾚﾋﾞｭｰ"));
    // Children of the window: Qt deletes them with it.
    area = new FZCanvas(this);
    area->setObjectName(QStringLiteral("4000"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(area);
    resize(ReadLargePreviewSize(SettingsFilePath()));
}

CLargePreview::~CLargePreview()
{
    if (isVisible())
        RememberSize();
}

void CLargePreview::ShowMaterial(const FZAttributeEx& record, int bind, int sampleShape)
{
    material = record;
    colorBind = bind;
    shape = sampleShape;
    if (isVisible())
        Render();
}

void CLargePreview::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    Render();
}

void CLargePreview::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    RememberSize();
}

void CLargePreview::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    // Dragging the window's edge sends a stream of resizes; the picture for
    // the new size is made once, when the events that came with it are done.
    if (!isVisible() || renderQueued)
        return;
    renderQueued = true;
    QTimer::singleShot(0, this, [this] {
        renderQueued = false;
        Render();
    });
}

void CLargePreview::Render()
{
    const QSize pixels = area->PixelSize();
    const FZScene* scene = panel.Scene();
    if (scene == nullptr || scene->width != pixels.width() || scene->height != pixels.height()) {
        // An area the scene cannot be made for (none yet, or too large for
        // the memory) keeps the last picture until its next size. The
        // material goes on with the set-up, so a new size renders once.
        if (panel.SetUpFrame(pixels.width(), pixels.height(), shape, material, colorBind) != FZResult::Ok) {
            shown = false;
            panel.ReleaseScene();
            return;
        }
        ShowFrame();
        return;
    }
    if (panel.ShapeNumber() != shape) {
        shown = false;
        if (panel.BuildSampleShape(shape) != FZResult::Ok)
            return;
    }
    if (shown && SameRecord(material, shownMaterial) && colorBind == shownBind)
        return;
    if (panel.ApplyMaterial(material, colorBind) != FZResult::Ok)
        return;
    ShowFrame();
}

void CLargePreview::ShowFrame()
{
    shownMaterial = material;
    shownBind = colorBind;
    shown = true;
    panel.Present(area);
}

void CLargePreview::RememberSize() const
{
    WriteLargePreviewSize(SettingsFilePath(), area->size());
}
