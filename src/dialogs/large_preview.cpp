#include "dialogs/large_preview.h"

#include <cmath>

#include <QPainter>
#include <QVBoxLayout>

#include "dialogs/material_history.h"
#include "engine/display/image_display.h"
#include "host/settings.h"

// The drawing area: shows the last rendered frame, one image pixel to one
// device pixel.
class CLargePreview::Area : public QWidget {
public:
    explicit Area(QWidget* parent) : QWidget(parent)
    {
        setObjectName(QStringLiteral("4000"));
        setAttribute(Qt::WA_OpaquePaintEvent);
    }

    void SetImage(QImage picture)
    {
        image = std::move(picture);
        update();
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        if (image.isNull())
            painter.fillRect(rect(), Qt::white);
        else
            painter.drawImage(QPoint(0, 0), image);
    }

private:
    QImage image;
};

CLargePreview::CLargePreview(QWidget* owner) : QWidget(owner, Qt::Window)
{
    setObjectName(QStringLiteral("tamerisk-large-preview"));
    setWindowTitle(QString::fromUtf8("ﾌﾟﾚﾋﾞｭｰ"));
    area = new Area(this);
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
    const bool newShape = sampleShape != shape;
    shape = sampleShape;
    if (!isVisible() || !sceneReady)
        return;
    if (newShape)
        panel.BuildSampleShape(shape);
    else if (SameRecord(material, shownMaterial) && colorBind == shownBind)
        return;
    panel.ApplyMaterial(material, colorBind);
    Present();
}

void CLargePreview::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    Rebuild();
}

void CLargePreview::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    RememberSize();
}

void CLargePreview::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    if (isVisible())
        Rebuild();
}

QSize CLargePreview::PixelSize() const
{
    const double ratio = area->devicePixelRatioF();
    return {static_cast<int>(std::lround(area->width() * ratio)),
            static_cast<int>(std::lround(area->height() * ratio))};
}

void CLargePreview::Rebuild()
{
    // The layout gives the area the window's size before the window's own
    // resize event; until it has one there is nothing to draw.
    const QSize pixels = PixelSize();
    const FZScene* scene = panel.Scene();
    if (sceneReady && scene != nullptr && scene->width == pixels.width()
        && scene->height == pixels.height())
        return;
    // A scene that cannot be made (no memory for a huge area) leaves the
    // area blank; the window goes on working at its next size.
    sceneReady = panel.SetUpFrame(pixels.width(), pixels.height()) == 0
                 && panel.BuildSampleShape(shape) == 0;
    if (!sceneReady) {
        area->SetImage(QImage());
        return;
    }
    panel.ApplyMaterial(material, colorBind);
    Present();
}

void CLargePreview::Present()
{
    shownMaterial = material;
    shownBind = colorBind;
    QImage image = panel.Scene() && panel.Scene()->frame ? MakeBitmap(*panel.Scene()->frame) : QImage();
    image.setDevicePixelRatio(area->devicePixelRatioF());
    area->SetImage(std::move(image));
}

void CLargePreview::RememberSize() const
{
    WriteLargePreviewSize(SettingsFilePath(), area->size());
}
