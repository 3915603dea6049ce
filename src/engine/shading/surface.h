// Surface preparation: coverage bounds, depth normalisation and per-pixel
// normals estimated from a layer's depths.
#ifndef TAMERISK_ENGINE_SHADING_SURFACE_H
#define TAMERISK_ENGINE_SHADING_SURFACE_H

#include "engine/scene.h"

// Bounds, depth range and normals over the whole layer; OutOfMemory when the
// normal rows cannot be allocated.
FZResult PrepareSurface(FZLayer& layer);
// Bounding rectangle of the covered pixels; false when none is covered.
bool CoverageBounds(const FZLayer& layer, FZRect& bounds);
// Range of the covered depths inside rect; BadParameter when rect misses the layer.
FZResult DepthRange(const FZLayer& layer, const FZRect& rect, float& minimum, float& maximum);
// Sobel normals for the covered pixels of rect; Ok or OutOfMemory.
FZResult EstimateNormals(FZLayer& layer, const FZRect& rect);

#endif
