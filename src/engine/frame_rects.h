// Where a layer lies in the frame, for the passes of the render driver.
#ifndef TAMERISK_ENGINE_FRAME_RECTS_H
#define TAMERISK_ENGINE_FRAME_RECTS_H

#include <cstdint>

#include "engine/fz_math.h"
#include "engine/scene.h"

inline std::int32_t ClampToInt32(std::int64_t v)
{
    return v < INT32_MIN ? INT32_MIN : (v > INT32_MAX ? INT32_MAX : static_cast<std::int32_t>(v));
}

// The layer's pixels in frame coordinates, inclusive. Computed in 64 bits so
// that no position or size can overflow.
inline FZRect LayerFrameRect(const FZLayer& layer)
{
    return FZRect(layer.x, layer.y, ClampToInt32(std::int64_t{layer.x} + layer.width - 1),
                  ClampToInt32(std::int64_t{layer.y} + layer.height - 1));
}

// The pixels the layer's rows hold, in frame coordinates; for a flat layer
// all of its pixels.
inline FZRect StoredFrameRect(const FZLayer& layer)
{
    if (layer.IsFlat())
        return LayerFrameRect(layer);
    const FZRect s = layer.Stored();
    if (s.IsEmpty())
        return FZRect();
    return FZRect(ClampToInt32(std::int64_t{layer.x} + s.x0), ClampToInt32(std::int64_t{layer.y} + s.y0),
                  ClampToInt32(std::int64_t{layer.x} + s.x1), ClampToInt32(std::int64_t{layer.y} + s.y1));
}

// The part of rect that lies inside the scene and inside the image; false
// when nothing is left.
inline bool ClipToImage(const FZScene& scene, const FZImage& image, FZRect& rect)
{
    const std::int32_t w = FZMin(scene.width, image.width);
    const std::int32_t h = FZMin(scene.height, image.height);
    return !image.data.empty() && rect.ClipTo(0, 0, w - 1, h - 1);
}

inline void CopyBackground(const FZScene& scene, float rgb[3])
{
    for (int c = 0; c < 3; ++c)
        rgb[c] = scene.background[c];
}

#endif
