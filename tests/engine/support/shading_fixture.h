// Small prepared layers and light lists for the shading tests.
#ifndef TAMERISK_TESTS_SHADING_FIXTURE_H
#define TAMERISK_TESTS_SHADING_FIXTURE_H

#include "engine/scene.h"

// A w x h layer at the frame origin, every pixel covered at depth 0 with
// the normal (nx, ny, nz), bounds over the whole layer and the default
// material.
void MakeShadingLayer(FZLayer& layer, int w, int h, float nx = 0.0f, float ny = 0.0f, float nz = 1.0f);

// Sets the normal of one pixel (normalised).
void SetNormal(FZLayer& layer, int x, int y, float nx, float ny, float nz);

// Appends a white directional light travelling along (dx, dy, dz).
void AddLight(FZLightList& lights, float dx, float dy, float dz);

// (x, y, z) normalised and packed.
FZPackedVector Packed(float x, float y, float z);

// The view straight down the z axis, (0, 0, -1).
FZPackedVector HeadOnView();

#endif
