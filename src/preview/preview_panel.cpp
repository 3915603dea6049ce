// The preview panel's scene work; the Qt binding (SetUp, Present) is in
// preview_panel_qt.cpp.
#include "preview/preview_panel.h"

#include <new>

#include "engine/render.h"
#include "preview/shapes.h"

namespace {

// The largest frame the panel builds. A frame costs about 50 bytes a pixel
// (two layers with their rows and images, the frame and behind images), so
// this keeps a preview within a few gigabytes; anything larger is refused as
// out of memory before a single row is allocated.
constexpr std::int64_t kMaxFramePixels = std::int64_t{1} << 26;  // 8192 x 8192
constexpr std::int32_t kMaxFrameSide = 1 << 15;

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

int CPreviewPanel::SetUpFrame(std::int32_t w, std::int32_t h)
{
    if (w < 1 || h < 1)
        return -4;
    if (w > kMaxFrameSide || h > kMaxFrameSide || std::int64_t{w} * h > kMaxFramePixels)
        return -2;
    ReleaseScene();
    scene = new (std::nothrow) FZScene;
    if (scene == nullptr)
        return -2;

    const float white[3] = {1.0f, 1.0f, 1.0f};
    const int made = scene->SetUpFrame(w, h, white);
    if (made != 0)
        return made;
    FZLayer* ground = scene->LayerAt(groundIndex);
    if (ground == nullptr)
        return -11;
    MakeGroundMaterial(*ground);
    PaintChecker(*ground);
    PrepareLayer(*scene, groundIndex);
    ShadeLayerAt(*scene, groundIndex);

    const int built = BuildSampleShape(1);
    if (built != 0)
        return built;
    if (FZLayer* sample = scene->LayerAt(sampleIndex))
        sample->SetColorSource(0);
    // The preview's sky is infinitely distant.
    scene->environment.sphereSize = 0.0f;
    RenderScene(*scene);
    return 0;
}

int CPreviewPanel::BuildSampleShape(std::int32_t n)
{
    if (scene == nullptr)
        return 0;
    std::int16_t source = 0;
    FZAttributeEx material;
    if (scene->LayerCount() == 2) {
        if (n == shapeNumber)
            return 0;
        const FZLayer* old = scene->LayerAt(sampleIndex);
        source = old->GetColorSource();
        old->GetMaterial(material);
        scene->RemoveLayer(sampleIndex);
    }

    const std::int32_t w = scene->width;
    const std::int32_t h = scene->height;
    const float r = static_cast<float>(h / 2.3);
    const std::int32_t added = scene->AddFullFrameLayer();
    if (added < 0)
        return added;
    if (FZLayer* sample = scene->LayerAt(sampleIndex)) {
        sample->SetColorSource(source);
        sample->SetMaterial(material);
        DrawSampleShape(*sample, n, static_cast<float>(w * 0.5), static_cast<float>(h * 0.5), r);
    }
    PrepareLayer(*scene, sampleIndex);
    ShadeLayerAt(*scene, sampleIndex);
    RenderScene(*scene);
    shapeNumber = n;
    return 0;
}

void CPreviewPanel::ApplyMaterial(const FZAttributeEx& material, std::int32_t bind)
{
    if (scene == nullptr)
        return;
    if (FZLayer* sample = scene->LayerAt(sampleIndex)) {
        sample->SetMaterial(material);
        // While the host controls the colour, the sample shows white.
        if (bind == 1) {
            FZAttributeEx bound;
            sample->GetMaterial(bound);
            bound.color.SetBytes(255, 255, 255);
            sample->SetMaterial(bound);
        }
        ShadeLayerAt(*scene, sampleIndex);
    }
    RenderScene(*scene);
}

void CPreviewPanel::ReleaseScene()
{
    delete scene;
    scene = nullptr;
}
