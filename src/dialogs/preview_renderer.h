// The large preview's renderer: a thread of its own that renders the
// pictures the large preview asks for, so that the editor's window never
// waits for a frame of the size of a screen.
//
// The latest request wins. A request that has not started is replaced by a
// newer one, and a render in flight stops at its next chunk of rows when a
// newer request arrives (a quick draft is not stopped by the next draft, so
// that a drag keeps showing pictures). Each finished frame goes out with its
// request's sequence number by FrameReady, from the render thread, as an
// image ready to paint (CPreviewFrame).
//
// The thread keeps two preview panels, one at the full size and one for the
// drafts, so that a drag and its refinement do not build each other's scene
// again. Its pictures are the ones `tamerisk-render` draws at that size (the
// panel's SetUpFrame, BuildSampleShape and ApplyMaterial). A draft is coarse
// only where the edit shows: its ground is the full picture's, so the
// checkerboard stays put while the user drags.
#ifndef TAMERISK_DIALOGS_PREVIEW_RENDERER_H
#define TAMERISK_DIALOGS_PREVIEW_RENDERER_H

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>

#include <QImage>
#include <QMetaType>
#include <QObject>
#include <QRect>
#include <QSize>

#include <tamerisk/attribute.h>

#include "engine/render_watch.h"
#include "preview/preview_panel.h"

struct CPreviewRequest {
    FZAttributeEx material;
    int bind = 0;  // 1: the sample is shown white
    int shape = 1;
    QSize pixels;  // the picture, in device pixels
    qreal ratio = 1.0;  // the screen's device pixel ratio
    // Rendered at DraftSize(pixels) and shown enlarged to pixels.
    bool draft = false;
    quint64 sequence = 0;
};

// A finished frame, ready to paint.
struct CPreviewFrame {
    quint64 sequence = 0;  // of its request
    // 32-bit RGB at the requested size, with the screen's pixel ratio.
    QImage image;
    // Where the image differs from the frame sent before it (sequence
    // `base`; 0 when none was), in device pixels: a drag changes the sample,
    // not the ground around it, so that is all a window need paint again.
    quint64 base = 0;
    QRect changed;
};
Q_DECLARE_METATYPE(CPreviewFrame)

class CPreviewRenderer : public QObject {
    Q_OBJECT

public:
    CPreviewRenderer();
    // Stops the render in flight at its next chunk and waits for the thread.
    ~CPreviewRenderer() override;
    CPreviewRenderer(const CPreviewRenderer&) = delete;
    CPreviewRenderer& operator=(const CPreviewRenderer&) = delete;

    // Renders the request once the thread is free, in place of any request
    // still waiting; stops the render in flight unless both are drafts.
    void Post(const CPreviewRequest& request);
    // Drops the waiting request and stops the render in flight.
    void Cancel();

    // The size a draft of a picture of `pixels` is rendered at: small enough
    // to follow a drag on every material. Pictures that small already are
    // their own draft (the size is returned unchanged).
    static QSize DraftSize(QSize pixels);

signals:
    // Emitted on the render thread: connect with an automatic or a queued
    // connection.
    void FrameReady(const CPreviewFrame& frame);

private:
    // A panel and the material its sample was last given.
    struct Target {
        CPreviewPanel panel;
        FZAttributeEx material;
        int bind = 0;
        bool complete = false;  // the frame is finished for that material
    };

    // The ground as the pictures of one size show it: the frame of the
    // ground alone at the full size, and at the draft's size enlarged.
    struct Ground {
        QSize pixels;
        QImage full;
        QImage draft;
    };

    void Loop();
    void Render(const CPreviewRequest& request);
    // Gives the draft the full picture's ground wherever the draft shows
    // nothing but ground, so that only what the edit changes is coarse.
    // Leaves it as it is when the ground cannot be had (stopped).
    void KeepGroundSharp(QImage& draftPicture, QSize pixels);
    // Brings the target's frame in line with the request at `size`, doing
    // only the work the change needs; Ok only when the frame is finished
    // (Error when the render was stopped on the way).
    [[nodiscard]] FZResult Bring(Target& target, QSize size, const CPreviewRequest& request);
    [[nodiscard]] FZResult SetUp(Target& target, QSize size, const CPreviewRequest& request);
    bool Stopped() const { return stop.load(std::memory_order_relaxed); }

    // Touched by the render thread alone.
    Target full;
    Target draft;
    Ground ground;  // of the last draft's size
    CPreviewFrame sent;  // the last frame sent
    // The one sent before it, which the window may still show: released
    // here, when the next frame goes out, so that the window's thread
    // seldom has to give its memory back.
    QImage sentBefore;

    std::mutex mutex;  // guards what follows, up to the thread
    std::condition_variable wake;
    std::optional<CPreviewRequest> pending;
    bool running = false;
    bool runningDraft = false;
    bool quitting = false;
    std::atomic<bool> stop{false};
    FZRenderWatch watch;

    std::thread thread;  // last: starts once everything above is made
};

#endif
