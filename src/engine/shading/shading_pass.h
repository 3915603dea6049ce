// What the three passes of a layer's shading share.
#ifndef TAMERISK_ENGINE_SHADING_SHADING_PASS_H
#define TAMERISK_ENGINE_SHADING_SHADING_PASS_H

#include <vector>

#include "engine/scene.h"
#include "engine/shading/diffuse_rows.h"
#include "engine/shading/facets.h"
#include "engine/shading/highlight_terms.h"

// A light evaluated at one world point.
struct LightSample {
    float color[3];
    FZPackedVector direction;
};

// Each light is evaluated once for the layer (the lights of Tamerisk are
// directional: the same at every point) and its highlight set up once.
struct ShadingPass {
    ShadingPass(FZLayer& l, const FZPackedVector& v, const FZLightList* list)
        : layer(l), view(v), lights(list) {}

    FZLayer& layer;
    const FZPackedVector& view;
    const FZLightList* lights;
    std::vector<LightSample> fixed;
    std::vector<HighlightSetup> highlights;
    // A white pixel stays white under any highlight: the highlight colour
    // and the rainbow tint never add a negative or NaN amount.
    bool whiteStaysWhite = false;
    float highlightColour[3] = {0.0f, 0.0f, 0.0f};
    // The normals' angles by pixel, kept from the last shading (null: none).
    FZNormalAngle* angles = nullptr;
    // The lights and the material as the diffuse kernel takes them.
    std::vector<FZDiffuseLight> diffuseLights;
    FZDiffuseSetup diffuse;
};

// Pass 2: the unclamped highlight of all lights at every covered pixel
// centre, -1 outside the shape, into the layer's highlight map.
void FillHighlightMap(ShadingPass& pass);

#endif
