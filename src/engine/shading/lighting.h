// Surface lighting: turns a prepared layer into its shaded colour image.
#ifndef TAMERISK_ENGINE_SHADING_LIGHTING_H
#define TAMERISK_ENGINE_SHADING_LIGHTING_H

#include "engine/scene.h"

// Shades the layer with the view direction and the lights (may be null: no
// lights) into its shaded colour image, and its highlight map when the
// highlight strength is above 0. An empty layer, or one without coverage,
// depth or normal rows, has nothing to shade. OutOfMemory (before any pixel
// is written) when the image or the map cannot be had; a failed map leaves
// none behind.
FZResult ShadeLayer(FZLayer& layer, const FZPackedVector& view, const FZLightList* lights);

FZPackedVector FilteredNormal(const FZLayer& layer, float sx, float sy, float boxWidth);
void RainbowGloss(float spacing, float index, const FZPackedVector& lightDir, const FZPackedVector& normal,
                  float out[3]);

#endif
