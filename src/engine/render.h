// The render driver: composites a scene's layers into its frame image.
#ifndef TAMERISK_ENGINE_RENDER_H
#define TAMERISK_ENGINE_RENDER_H

#include "engine/scene.h"

int RenderScene(FZScene& scene);
int RenderRect(FZScene& scene, const FZRect& rect);
int ComposeLayers(FZScene& scene, const FZRect& rect, FZImage& frame);
// Box-filtered sample of the behind image at (sx, sy), background outside.
void SampleBehind(const FZScene& scene, double sx, double sy, float out[3]);
int AddEmissionLight(FZScene& scene, const FZRect& rect, FZImage& frame);
int EmissionRadius(const FZLayer& layer);
int PrepareLayer(FZScene& scene, int index);
int ShadeLayerAt(FZScene& scene, int index);

#endif
