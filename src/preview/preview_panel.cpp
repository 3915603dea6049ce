// The preview panel's scene work; the Qt binding (SetUp, Present) is in
// preview_panel_qt.cpp.
#include "preview/preview_panel.h"


#include "engine/render.h"
#include "preview/shapes.h"

namespace {

// The ground is lit by its ambient term alone at full strength, so the
// shading leaves its checker colours exactly as they are.
void MakeGroundMaterial(FZLayer& ground)
{
    FZAttributeEx m;
    ground.GetMaterial(m);
    m.diffuse = 0.0f;
    m.highlightStrength = 0.0f;
    m.ambient = 1.0f;
    ground.SetMaterial(m);
}

// White and blue cells of 10 x 10 pixels, blue at the frame origin.
void PaintChecker(FZLayer& ground)
{
    FZColor white;
    FZColor blue;
    white.SetFloats(1.0f, 1.0f, 1.0f);
    blue.SetFloats(0.1f, 0.4f, 0.6f);
    ground.FillChecker(10, 10, white, blue);
    ground.SetColorSource(1);
}

} // namespace

FZResult CPreviewPanel::SetUpFrame(std::int32_t w, std::int32_t h, std::int32_t shape)
{
    // A new sample layer has the default material and takes its colour
    // (source 0).
    return SetUpFrame(w, h, shape, FZAttributeEx(), 0);
}

FZResult CPreviewPanel::SetUpFrame(std::int32_t w, std::int32_t h, std::int32_t shape,
                                   const FZAttributeEx& material, std::int32_t bind)
{
    if (w < 1 || h < 1)
        return FZResult::BadParameter;
    if (w > kMaxFrameSide || h > kMaxFrameSide || std::int64_t{w} * h > kMaxFramePixels)
        return FZResult::OutOfMemory;
    scene = std::make_unique<FZScene>();

    const float white[3] = {1.0f, 1.0f, 1.0f};
    const FZResult made = scene->SetUpFrame(w, h, white);
    if (made != FZResult::Ok)
        return made;
    FZLayer* ground = scene->LayerAt(groundIndex);
    if (ground == nullptr)
        return FZResult::NoData;
    MakeGroundMaterial(*ground);
    PaintChecker(*ground);
    if (const FZResult prepared = PrepareLayer(*scene, groundIndex); prepared != FZResult::Ok)
        return prepared;
    if (const FZResult shaded = ShadeLayerAt(*scene, groundIndex); shaded != FZResult::Ok)
        return shaded;

    if (const FZResult sample = MakeSample(shape); sample != FZResult::Ok)
        return sample;
    SetSampleMaterial(material, bind);
    return ShadeAndRender();
}

FZResult CPreviewPanel::BuildSampleShape(std::int32_t n)
{
    if (scene == nullptr || (scene->LayerCount() == 2 && n == shapeNumber))
        return FZResult::Ok;
    if (const FZResult made = MakeSample(n); made != FZResult::Ok)
        return made;
    return ShadeAndRender();
}

FZResult CPreviewPanel::MakeSample(std::int32_t n)
{
    std::int16_t source = 0;
    FZAttributeEx material;
    if (scene->LayerCount() == 2) {
        const FZLayer* old = scene->LayerAt(sampleIndex);
        source = old->GetColorSource();
        old->GetMaterial(material);
        scene->RemoveLayer(sampleIndex);
    }

    const std::int32_t w = scene->width;
    const std::int32_t h = scene->height;
    const float r = static_cast<float>(h / 2.3);
    const float cx = static_cast<float>(w * 0.5);
    const float cy = static_cast<float>(h * 0.5);
    // The sample covers the frame, with rows only where its shape can reach.
    if (const FZResult added = scene->AddLayerRect(0, 0, w, h, SampleShapeRows(cx, cy, r, w, h));
        added != FZResult::Ok)
        return added;
    FZLayer* sample = scene->LayerAt(sampleIndex);
    // A scene whose ground someone removed holds the new layer elsewhere.
    if (sample == nullptr)
        return FZResult::NoData;
    // It shows its material's colour, so it keeps no colours of its own.
    sample->colors.Clear();
    sample->SetColorSource(source);
    sample->SetMaterial(material);
    DrawSampleShape(*sample, n, cx, cy, r);
    shapeNumber = n;
    return PrepareLayer(*scene, sampleIndex);
}

FZResult CPreviewPanel::ApplyMaterial(const FZAttributeEx& material, std::int32_t bind)
{
    if (scene == nullptr)
        return FZResult::Ok;
    SetSampleMaterial(material, bind);
    return ShadeAndRender();
}

void CPreviewPanel::SetSampleMaterial(const FZAttributeEx& material, std::int32_t bind)
{
    if (FZLayer* sample = scene->LayerAt(sampleIndex)) {
        sample->SetMaterial(material);
        // While the host controls the colour, the sample shows white.
        if (bind == 1)
            sample->material.color.SetBytes(255, 255, 255);
    }
}

FZResult CPreviewPanel::ShadeAndRender()
{
    // A scene without the sample layer (its shape could not be built) still
    // renders the ground.
    if (scene->LayerAt(sampleIndex) != nullptr)
        if (const FZResult shaded = ShadeLayerAt(*scene, sampleIndex); shaded != FZResult::Ok)
            return shaded;
    return RenderScene(*scene);
}

void CPreviewPanel::ReleaseScene()
{
    scene.reset();
}
