#include "engine/support/shading_fixture.h"

#include <gtest/gtest.h>

void MakeShadingLayer(FZLayer& layer, int w, int h, float nx, float ny, float nz)
{
    EXPECT_EQ(layer.Create(0, 0, w, h, 0.0f, FZRowLayout::Rectangle(0, 0, w, h)), FZResult::Ok);
    layer.FillDepth(0.0f);
    layer.SetColorSource(0);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            SetNormal(layer, x, y, nx, ny, nz);
    layer.boundsX0 = 0;
    layer.boundsX1 = w - 1;
    layer.boundsY0 = 0;
    layer.boundsY1 = h - 1;
}

void SetNormal(FZLayer& layer, int x, int y, float nx, float ny, float nz)
{
    layer.normals[y][x].SetFloats(nx, ny, nz, true);
}

void AddLight(FZLightList& lights, float dx, float dy, float dz)
{
    const float direction[3] = {dx, dy, dz};
    const float white[3] = {1.0f, 1.0f, 1.0f};
    lights.emplace_back().SetDirectional(direction, white);
}

FZPackedVector Packed(float x, float y, float z)
{
    FZPackedVector v;
    v.SetFloats(x, y, z, true);
    return v;
}

FZPackedVector HeadOnView()
{
    return Packed(0.0f, 0.0f, -1.0f);
}
