// Pixel transparency: a covered pixel's shaded colour and its transmission.
#ifndef TAMERISK_ENGINE_SHADING_TRANSPARENCY_H
#define TAMERISK_ENGINE_SHADING_TRANSPARENCY_H

#include "engine/scene.h"

// The share of the light the layer's material keeps per unit of depth,
// worked out once for a pass over the layer's pixels.
float AttenuationFactor(const FZLayer& layer);

// colour: three floats in [0, 1]; t: transmission in [0, 1].
void LookupShade(const FZLayer& layer, int x, int y, float colour[3], float& t, float attenuationFactor);

#endif
