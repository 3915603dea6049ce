// The render driver: composites a scene's layers into its frame image.
#ifndef TAMERISK_ENGINE_RENDER_H
#define TAMERISK_ENGINE_RENDER_H

#include "engine/scene.h"

FZResult RenderScene(FZScene& scene);
FZResult RenderRect(FZScene& scene, const FZRect& rect);
FZResult ComposeLayers(FZScene& scene, const FZRect& rect, FZImage& frame);
FZResult AddEmissionLight(FZScene& scene, const FZRect& rect, FZImage& frame);
int EmissionRadius(const FZLayer& layer);
FZResult PrepareLayer(FZScene& scene, int index);
FZResult ShadeLayerAt(FZScene& scene, int index);

#endif
