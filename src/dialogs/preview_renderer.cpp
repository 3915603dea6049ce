#include "dialogs/preview_renderer.h"

#include <system_error>

#include "dialogs/material_history.h"
#include "engine/display/image_display.h"

namespace {

// A draft has at most this many pixels: at 3840 x 2160 it is rendered at
// 640 x 360, which every material renders within a frame or two of a drag.
constexpr qint64 kDraftPixels = 512 * 512;

qint64 Area(QSize size)
{
    return qint64{size.width()} * size.height();
}

} // namespace

CPreviewRenderer::CPreviewRenderer()
{
    watch.stop = &stop;
    try {
        thread = std::thread([this] { Loop(); });
    } catch (const std::system_error&) {
        // Without a thread of its own the renderer works on the caller's
        // (see Post): slower to follow, but every picture is still shown.
    }
}

CPreviewRenderer::~CPreviewRenderer()
{
    if (!thread.joinable())
        return;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        quitting = true;
        stop.store(true);
    }
    wake.notify_one();
    thread.join();
}

QSize CPreviewRenderer::DraftSize(QSize pixels)
{
    if (Area(pixels) <= kDraftPixels)
        return pixels;
    for (int n = 2;; ++n) {
        const QSize reduced((pixels.width() + n - 1) / n, (pixels.height() + n - 1) / n);
        if (Area(reduced) <= kDraftPixels)
            return reduced;
    }
}

void CPreviewRenderer::Post(const CPreviewRequest& request)
{
    if (!thread.joinable()) {
        Render(request);
        return;
    }
    {
        const std::lock_guard<std::mutex> lock(mutex);
        pending = request;
        if (running && !(runningDraft && request.draft))
            stop.store(true);
    }
    wake.notify_one();
}

void CPreviewRenderer::Cancel()
{
    const std::lock_guard<std::mutex> lock(mutex);
    pending.reset();
    if (running)
        stop.store(true);
}

void CPreviewRenderer::Loop()
{
    // The stop flag is this thread's alone: the dialogs' renders on the
    // window's thread are never stopped by it.
    SetRenderWatch(&watch);
    std::unique_lock<std::mutex> lock(mutex);
    for (;;) {
        wake.wait(lock, [this] { return quitting || pending.has_value(); });
        if (quitting)
            break;
        const CPreviewRequest request = *pending;
        pending.reset();
        stop.store(false);
        running = true;
        runningDraft = request.draft;
        lock.unlock();
        Render(request);
        lock.lock();
        running = false;
    }
    lock.unlock();
    SetRenderWatch(nullptr);
    // The scenes go with the thread that made them, not on the window's.
    full.panel.ReleaseScene();
    draft.panel.ReleaseScene();
}

void CPreviewRenderer::Render(const CPreviewRequest& request)
{
    Target& target = request.draft ? draft : full;
    const QSize size = request.draft ? DraftSize(request.pixels) : request.pixels;
    // A frame that cannot be made (an area too large for the memory) leaves
    // the last picture on the screen until the next request.
    if (Bring(target, size, request) != FZResult::Ok)
        return;
    QImage frame = MakeScreenBitmap(*target.panel.Scene()->frame, request.pixels);
    if (Stopped() || frame.isNull())
        return;
    frame.setDevicePixelRatio(request.ratio);
    emit FrameReady(request.sequence, frame);
}

FZResult CPreviewRenderer::Bring(Target& target, QSize size, const CPreviewRequest& request)
{
    const FZScene* scene = target.panel.Scene();
    if (scene == nullptr || scene->width != size.width() || scene->height != size.height())
        return SetUp(target, size, request);
    if (target.panel.ShapeNumber() != request.shape) {
        target.complete = false;
        const FZResult built = target.panel.BuildSampleShape(request.shape);
        // A sample left half drawn would pass for the shape: start afresh.
        if (built != FZResult::Ok || Stopped()) {
            target.panel.ReleaseScene();
            return built != FZResult::Ok ? built : FZResult::Error;
        }
        target.complete = true;
    }
    if (target.complete && SameRecord(target.material, request.material) && target.bind == request.bind)
        return FZResult::Ok;
    target.complete = false;
    target.material = request.material;
    target.bind = request.bind;
    if (const FZResult applied = target.panel.ApplyMaterial(request.material, request.bind);
        applied != FZResult::Ok)
        return applied;
    // A stopped shading is done again in full by the next ApplyMaterial.
    if (Stopped())
        return FZResult::Error;
    target.complete = true;
    return FZResult::Ok;
}

FZResult CPreviewRenderer::SetUp(Target& target, QSize size, const CPreviewRequest& request)
{
    target.complete = false;
    target.material = request.material;
    target.bind = request.bind;
    const FZResult made
        = target.panel.SetUpFrame(size.width(), size.height(), request.shape, request.material, request.bind);
    if (made != FZResult::Ok || Stopped()) {
        target.panel.ReleaseScene();
        return made != FZResult::Ok ? made : FZResult::Error;
    }
    target.complete = true;
    return FZResult::Ok;
}
