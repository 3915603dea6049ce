#include "engine/render.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <new>
#include <vector>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

#include "engine/compositing.h"
#include "engine/frame_rects.h"
#include "engine/fz_math.h"
#include "engine/parallel.h"
#include "engine/pixel.h"
#include "engine/shading/lighting.h"
#include "engine/shading/surface.h"

namespace {

// Makes sure the scene owns an image of its frame size (24-bit, no
// palette); an image of another size or without pixels is made again.
FZResult EnsureFrameSizedImage(const FZScene& scene, std::unique_ptr<FZImage>& image)
{
    if (image != nullptr && !image->data.empty() && image->width == scene.width
        && image->height == scene.height)
        return FZResult::Ok;
    if (image == nullptr)
        image = std::make_unique<FZImage>();
    const FZResult result = image->Create(scene.width, scene.height);
    if (result != FZResult::Ok)
        image.reset();
    return result;
}


// Fills the rect's first row pixel by pixel, and every other row as a copy
// of it.
void FillRect(FZImage& frame, const FZRect& rect, const std::uint8_t bgr[3])
{
    const std::size_t bytes = static_cast<std::size_t>(rect.x1 - rect.x0 + 1) * 3;
    std::uint8_t* first = frame.PixelAddress(rect.x0, rect.y0);
    for (std::size_t i = 0; i < bytes; i += 3) {
        first[i] = bgr[0];
        first[i + 1] = bgr[1];
        first[i + 2] = bgr[2];
    }
    ParallelCopyRows(rect.y0 + 1, rect.y1 + 1, static_cast<std::int64_t>(bytes),
                     [&](std::int32_t y) { std::memcpy(frame.PixelAddress(rect.x0, y), first, bytes); });
}

// A flat layer's bytes hold for a pixel that neither reflects nor refracts;
// a layer that does takes the rows it stands for and is shaded again.
FZResult GiveRowsIfNeeded(FZScene& scene, std::int32_t index)
{
    FZLayer& layer = *scene.LayerAt(index);
    const FZAttributeEx& m = layer.material;
    const bool perPixel = m.reflection > 0.0f || m.transparency > 0.0f;
    if (!layer.IsFlat() || !perPixel)
        return FZResult::Ok;
    if (const FZResult made = layer.MakeRows(); made != FZResult::Ok)
        return made;
    if (const FZResult prepared = PrepareLayer(scene, index); prepared != FZResult::Ok)
        return prepared;
    return ShadeLayerAt(scene, index);
}

bool AnyRefracts(const FZScene& scene)
{
    for (std::int32_t i = 0; i < scene.LayerCount(); ++i) {
        const FZLayer* layer = scene.LayerAt(i);
        if (layer != nullptr && layer->IsVisible() != 0 && layer->material.transparency > 0.0f)
            return true;
    }
    return false;
}

// A frame's work buffers below a megabyte (the sky table, the emission's
// light) come from the heap. Once one larger block has been freed, the C
// library keeps such buffers in its heap instead of mapping them, and
// keeps their pages after they are freed: every later frame would carry
// them. They are given back to the system when a large frame is done; a
// small frame's buffers are too small to matter, and a dialog's preview,
// which renders at every slider step, should not walk the heap each time.
void GiveBackWorkMemory(const FZScene& scene)
{
#if defined(__GLIBC__)
    constexpr std::int64_t kTrimPixels = std::int64_t{1} << 17;
    if (std::int64_t{scene.width} * scene.height >= kTrimPixels)
        static_cast<void>(malloc_trim(0));
#else
    static_cast<void>(scene);
#endif
}

// Fills the rect with the background and composites the layers over it.
FZResult ComposeAllLayers(FZScene& scene, const FZRect& area, FZImage& frame)
{
    std::uint8_t bgr[3];
    for (int c = 0; c < 3; ++c)
        bgr[2 - c] = FZTruncateLow8(static_cast<double>(scene.background[c]) * 255.0);
    FillRect(frame, area, bgr);

    for (std::int32_t i = 0; i < scene.LayerCount(); ++i) {
        const FZLayer* layer = scene.LayerAt(i);
        if (layer == nullptr || layer->IsVisible() == 0)
            continue;
        if (const FZResult rows = GiveRowsIfNeeded(scene, i); rows != FZResult::Ok)
            return rows;
        ComposeLayer(scene, i, *layer, area, frame);
        if (i == 0) {
            const FZResult result = AddEmissionLight(scene, area, frame);
            if (result != FZResult::Ok)
                return result;
        }
    }
    return FZResult::Ok;
}

} // namespace

FZResult RenderScene(FZScene& scene)
{
    return RenderRect(scene, FZRect(0, 0, scene.width - 1, scene.height - 1));
}

FZResult RenderRect(FZScene& scene, const FZRect& rect)
{
    FZRect clipped = rect;
    if (!clipped.Intersect(FZRect(0, 0, scene.width - 1, scene.height - 1)))
        return FZResult::BadParameter;
    const FZResult result = EnsureFrameSizedImage(scene, scene.frame);
    if (result != FZResult::Ok)
        return result;
    return ComposeLayers(scene, clipped, *scene.frame);
}

FZResult ComposeLayers(FZScene& scene, const FZRect& rect, FZImage& frame)
{
    FZRect area = rect;
    if (!ClipToImage(scene, frame, area))
        return FZResult::BadParameter;
    // The behind image lives while a frame with a refracting layer is made.
    const bool refracts = AnyRefracts(scene);
    if (refracts)
        if (const FZResult made = EnsureFrameSizedImage(scene, scene.behind); made != FZResult::Ok)
            return made;
    const FZResult result = ComposeAllLayers(scene, area, frame);
    scene.behind.reset();
    // The sky table too lives only while a frame is made: kept, it would
    // be a lasting share of a scene's memory.
    ReleaseSkyTable(scene.environment);
    GiveBackWorkMemory(scene);
    return result;
}

FZResult PrepareLayer(FZScene& scene, int index)
{
    FZLayer* layer = scene.LayerAt(index);
    if (layer == nullptr)
        return FZResult::NoData;
    return PrepareSurface(*layer);
}

FZResult ShadeLayerAt(FZScene& scene, int index)
{
    FZLayer* layer = scene.LayerAt(index);
    if (layer == nullptr)
        return FZResult::NoData;
    return ShadeLayer(*layer, scene.camera.viewDirection, &scene.lights);
}
