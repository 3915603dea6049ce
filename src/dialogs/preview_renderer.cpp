#include "dialogs/preview_renderer.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <system_error>
#include <utility>

#include "dialogs/material_history.h"
#include "engine/display/image_display.h"

namespace {

// A draft has at most this many pixels: at 3840 x 2160 it is rendered at
// 640 x 360, which every material renders within a frame or two of a drag.
constexpr qint64 kDraftPixels = 512 * 512;

// How much lower than the window's thread the render thread runs.
constexpr int kRenderNiceness = 5;

qint64 Area(QSize size)
{
    return qint64{size.width()} * size.height();
}

// The columns [first, last) in which two lines of 32-bit pixels differ;
// first == last when they are the same.
std::pair<int, int> ChangedColumns(const QRgb* a, const QRgb* b, int width)
{
    int first = 0;
    while (first < width && a[first] == b[first])
        ++first;
    int last = width;
    while (last > first && a[last - 1] == b[last - 1])
        --last;
    return {first, last};
}

// The smallest rectangle outside which the two images are the same; all of
// `after` when they differ in size or format.
QRect ChangedRect(const QImage& before, const QImage& after)
{
    if (before.size() != after.size() || before.format() != after.format() || after.depth() != 32)
        return after.rect();
    int left = after.width();
    int right = 0;
    int top = -1;
    int bottom = -1;
    for (int y = 0; y < after.height(); ++y) {
        const auto* a = reinterpret_cast<const QRgb*>(before.constScanLine(y));
        const auto* b = reinterpret_cast<const QRgb*>(after.constScanLine(y));
        const auto [first, last] = ChangedColumns(a, b, after.width());
        if (first == last)
            continue;
        top = top < 0 ? y : top;
        bottom = y;
        left = std::min(left, first);
        right = std::max(right, last);
    }
    return top < 0 ? QRect() : QRect(QPoint(left, top), QPoint(right - 1, bottom));
}

// The ground alone (a panel with no sample shape) of a frame of `size`, as
// the screen shows it at `pixels`; null when it cannot be made.
QImage GroundPicture(QSize size, QSize pixels)
{
    CPreviewPanel panel;
    if (panel.SetUpFrame(size.width(), size.height(), 0) != FZResult::Ok)
        return QImage();
    return MakeScreenBitmap(*panel.Scene()->frame, pixels);
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
    // The window's thread comes first when the cores are busy: a frame may
    // come a little later, an edit is never held up. (Raising a thread's
    // niceness needs no privilege; should it fail, nothing else changes.)
    static_cast<void>(setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), kRenderNiceness));
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
    sent = CPreviewFrame();
    sentBefore = QImage();
    ground = Ground();
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
    if (request.draft)
        KeepGroundSharp(frame, request.pixels);
    frame.setDevicePixelRatio(request.ratio);
    CPreviewFrame next{request.sequence, frame, sent.sequence, ChangedRect(sent.image, frame)};
    if (Stopped())
        return;
    sentBefore = std::move(sent.image);
    sent = next;
    emit FrameReady(next);
}

void CPreviewRenderer::KeepGroundSharp(QImage& draftPicture, QSize pixels)
{
    if (ground.pixels != pixels) {
        // Made once for each size the drafts are shown at.
        ground = Ground{pixels, GroundPicture(pixels, pixels), GroundPicture(DraftSize(pixels), pixels)};
        if (Stopped() || ground.full.isNull() || ground.draft.isNull()) {
            ground = Ground();
            return;
        }
    }
    for (int y = 0; y < pixels.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(draftPicture.scanLine(y));
        const auto* coarse = reinterpret_cast<const QRgb*>(ground.draft.constScanLine(y));
        const auto* sharp = reinterpret_cast<const QRgb*>(ground.full.constScanLine(y));
        for (int x = 0; x < pixels.width(); ++x)
            line[x] = line[x] == coarse[x] ? sharp[x] : line[x];
    }
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
