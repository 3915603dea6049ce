#include "dialogs/large_preview.h"

#include <QVBoxLayout>

#include "dialogs/language.h"
#include "dialogs/material_history.h"
#include "engine/display/canvas.h"
#include "host/settings.h"

namespace {

// A drag that has not moved for this long has come to rest.
constexpr int kRestMs = 150;

bool SameRequest(const CPreviewRequest& a, const CPreviewRequest& b)
{
    return SameRecord(a.material, b.material) && a.bind == b.bind && a.shape == b.shape && a.pixels == b.pixels
           && a.ratio == b.ratio && a.draft == b.draft;
}

} // namespace

CLargePreview::CLargePreview(QWidget* owner)
    : QWidget(owner, Qt::Window), renderer(std::make_unique<CPreviewRenderer>())
{
    setObjectName(QStringLiteral("tamerisk-large-preview"));
    setWindowTitle(UiText(QT_TRANSLATE_NOOP("Tamerisk", "ﾌﾟﾚﾋﾞｭｰ")));
    // Children of the window: Qt deletes them with it.
    area = new FZCanvas(this);
    area->setObjectName(QStringLiteral("4000"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(area);
    rest.setSingleShot(true);
    rest.setInterval(kRestMs);
    connect(&rest, &QTimer::timeout, this, [this] { Request(false); });
    // Frames come from the render thread, so they are queued to this one.
    connect(renderer.get(), &CPreviewRenderer::FrameReady, this, &CLargePreview::ShowFrame);
    const LargePreviewPlace place = ReadLargePreviewPlace(SettingsFilePath());
    resize(place.size);
    if (place.corner)
        MoveFrameTo(this, *place.corner);
}

CLargePreview::~CLargePreview()
{
    if (isVisible())
        RememberPlace();
    // Joined here, while the window is whole; frames it still sent are
    // dropped with the window's pending events.
    renderer.reset();
}

void CLargePreview::ShowMaterial(const FZAttributeEx& record, int bind, int sampleShape, bool moving)
{
    wanted.material = record;
    wanted.bind = bind;
    wanted.shape = sampleShape;
    if (isVisible())
        Request(moving);
}

bool CLargePreview::Settled() const
{
    return anyRequested && !requested.draft && shownSequence == requested.sequence;
}

void CLargePreview::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    Request(false);
}

void CLargePreview::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    rest.stop();
    renderer->Cancel();
    anyRequested = false;
    RememberPlace();
}

void CLargePreview::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    // Dragging the window's edge sends a stream of resizes; the picture for
    // the new size is asked for once, when the events that came with it are
    // done.
    if (!isVisible() || renderQueued)
        return;
    renderQueued = true;
    QTimer::singleShot(0, this, [this] {
        renderQueued = false;
        Request(false);
    });
}

void CLargePreview::Request(bool moving)
{
    wanted.pixels = area->PixelSize();
    wanted.ratio = area->devicePixelRatioF();
    if (wanted.pixels.isEmpty())
        return;
    wanted.draft = moving && CPreviewRenderer::DraftSize(wanted.pixels) != wanted.pixels;
    if (wanted.draft)
        rest.start();
    else
        rest.stop();
    if (anyRequested && SameRequest(wanted, requested))
        return;
    wanted.sequence = requested.sequence + 1;
    requested = wanted;
    anyRequested = true;
    renderer->Post(requested);
}

void CLargePreview::ShowFrame(const CPreviewFrame& frame)
{
    // Frames come in order; one older than the picture shown never replaces it.
    if (frame.sequence <= shownSequence)
        return;
    const QRect changed = frame.base == shownSequence ? frame.changed : frame.image.rect();
    shownSequence = frame.sequence;
    area->Show(frame.image, changed);
}

void CLargePreview::RememberPlace() const
{
    WriteLargePreviewPlace(SettingsFilePath(), area->size(), NormalFrameCorner(*this));
}
