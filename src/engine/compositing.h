// Compositing one layer over the frame: the pixel steps of the render
// driver, with the reflection of the sky and the view through refracting
// layers.
#ifndef TAMERISK_ENGINE_COMPOSITING_H
#define TAMERISK_ENGINE_COMPOSITING_H

#include "engine/scene.h"

// Composites layer `index` of the scene over the frame inside rect, which
// lies in the frame.
void ComposeLayer(FZScene& scene, std::int32_t index, const FZLayer& layer, const FZRect& rect, FZImage& frame);

#endif
