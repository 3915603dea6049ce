#include "engine/scene.h"

#include <cmath>
#include <cstring>
#include <new>

#include "engine/fz_math.h"

// ---------------------------------------------------------------- FZLight

void FZLight::SetDirectional(const float dir[3], const float rgb[3])
{
    direction.SetFloats(dir, true);
    for (int c = 0; c < 3; ++c)
        color[c] = rgb[c];
}

void FZLight::Evaluate(float, float, float, float outColor[3], FZPackedVector& outDir) const
{
    // A directional light is the same everywhere, so the point plays no part.
    outDir = direction;
    for (int c = 0; c < 3; ++c)
        outColor[c] = color[c];
}

// ---------------------------------------------------------------- FZCamera

void FZCamera::SetEye(float x, float y, float z)
{
    eye[0] = x;
    eye[1] = y;
    eye[2] = z;
    Update();
}

void FZCamera::SetTarget(float x, float y, float z)
{
    target[0] = x;
    target[1] = y;
    target[2] = z;
    Update();
}

void FZCamera::Update()
{
    float d[3];
    for (int c = 0; c < 3; ++c)
        d[c] = static_cast<float>(static_cast<double>(target[c]) - eye[c]);
    viewDirection.SetFloats(d, true);
}

// ---------------------------------------------------------------- FZLayer

FZResult FZLayer::Create(std::int32_t lx, std::int32_t ly, std::int32_t w, std::int32_t h, float base,
                         std::shared_ptr<const FZRowLayout> rows)
{
    if (const FZResult made = CreateFlat(lx, ly, w, h, base); made != FZResult::Ok)
        return made;
    // Rows beyond the layer would be pixels no pass visits.
    const FZRect inside = rows != nullptr ? rows->Bounds() : FZRect();
    if (!inside.IsEmpty() && (inside.x1 >= w || inside.y0 < 0 || inside.y1 >= h)) {
        Release();
        return FZResult::BadParameter;
    }
    return TakeRows(std::move(rows));
}

FZResult FZLayer::TakeRows(std::shared_ptr<const FZRowLayout> rows)
{
    // New rasters come zeroed: coverage and depth 0, normals 0, colours black.
    const FZResult made = MakeRows(std::move(rows));
    if (made != FZResult::Ok)
        Release();
    return made;
}

FZResult FZLayer::CreateFlat(std::int32_t lx, std::int32_t ly, std::int32_t w, std::int32_t h, float base)
{
    Release();
    if (w < 0 || h < 0)
        return FZResult::BadParameter;
    if (std::int64_t{w} * h > kMaxPixels)
        return FZResult::OutOfMemory;
    baseDepth = base;
    x = lx;
    y = ly;
    width = w;
    height = h;
    colorSource = 1;
    visible = 1;
    flat = true;
    fill = FZFlatFill();
    return FZResult::Ok;
}

FZResult FZLayer::MakeRows(std::shared_ptr<const FZRowLayout> rows)
{
    try {
        FZRaster<std::uint8_t> newCoverage(rows);
        FZRaster<float> newDepth(rows);
        FZRaster<FZPackedVector> newNormals(rows);
        FZRaster<FZColor> newColors(rows);
        coverage = std::move(newCoverage);
        depth = std::move(newDepth);
        normals = std::move(newNormals);
        colors = std::move(newColors);
    } catch (const std::bad_alloc&) {
        return FZResult::OutOfMemory;
    }
    highlight.Clear();
    shaded.Clear();
    flat = false;
    return FZResult::Ok;
}

FZResult FZLayer::MakeRows()
{
    if (!flat)
        return FZResult::Ok;
    const FZFlatFill was = fill;
    FZResult made = FZResult::OutOfMemory;
    try {
        made = MakeRows(FZRowLayout::Rectangle(0, 0, width, height));
    } catch (const std::bad_alloc&) {
    }
    if (made != FZResult::Ok) {
        flat = true;
        return made;
    }
    FillDepth(was.depth);
    if (was.cellWidth < 1)
        FillColorRect(FZRect(0, 0, width - 1, height - 1), was.colors[0]);
    else
        FillChecker(was.cellWidth, was.cellHeight, was.colors[1], was.colors[0]);
    return FZResult::Ok;
}

void FZLayer::Release()
{
    coverage.Clear();
    depth.Clear();
    normals.Clear();
    colors.Clear();
    highlight.Clear();
    shaded.Clear();
    baseDepth = 0.0f;
    x = y = width = height = 0;
    flat = false;
    fill = FZFlatFill();
}

void FZLayer::FillDepth(float value)
{
    // A flat layer stays flat at a depth that is a number; other depths
    // take the rows, which handle them as they handle any depth.
    if (flat && std::isfinite(value)) {
        fill.depth = value;
        return;
    }
    if (flat && MakeRows() != FZResult::Ok)
        return;
    if (coverage.empty() || depth.empty())
        return;
    std::uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    const FZRect s = Stored();
    for (std::int32_t ly = s.y0; ly <= s.y1; ++ly) {
        const FZSpan held = StoredRow(ly);
        if (held.Empty())
            continue;
        std::memset(coverage[ly] + held.first, 255, static_cast<std::size_t>(held.last - held.first + 1));
        // Only depths that differ are written: a new layer's depths are
        // already 0, and pages that are only read cost nothing to map.
        float* row = depth[ly];
        for (std::int32_t lx = held.first; lx <= held.last; ++lx) {
            std::uint32_t old;
            std::memcpy(&old, &row[lx], sizeof old);
            if (old != bits)
                row[lx] = value;
        }
    }
}

void FZLayer::FillColorRect(const FZRect& rect, const FZColor& color)
{
    if (flat && MakeRows() != FZResult::Ok)
        return;
    FZRect r = rect;
    if (colors.empty() || !r.Intersect(Stored()))
        return;
    for (std::int32_t ly = r.y0; ly <= r.y1; ++ly) {
        const FZSpan held = StoredRow(ly);
        for (std::int32_t lx = FZMax(r.x0, held.first); lx <= FZMin(r.x1, held.last); ++lx)
            colors[ly][lx] = color;
    }
}

void FZLayer::FillChecker(std::int32_t cellWidth, std::int32_t cellHeight, const FZColor& a, const FZColor& b)
{
    if (cellWidth < 1 || cellHeight < 1)
        return;
    if (flat) {
        fill.cellWidth = cellWidth;
        fill.cellHeight = cellHeight;
        fill.colors[0] = b;
        fill.colors[1] = a;
        return;
    }
    // Neighbouring cells share their edge column and row; the later cell
    // wins, so pixel (lx, ly) ends in cell (lx / cellWidth, ly / cellHeight).
    const std::int32_t columns = width / cellWidth + 1;
    const std::int32_t rows = height / cellHeight + 1;
    for (std::int32_t j = 0; j < rows; ++j) {
        for (std::int32_t i = 0; i < columns; ++i) {
            const std::int64_t x0 = std::int64_t{cellWidth} * i;
            const std::int64_t y0 = std::int64_t{cellHeight} * j;
            const FZRect cell(static_cast<std::int32_t>(x0), static_cast<std::int32_t>(y0),
                              static_cast<std::int32_t>(FZMin<std::int64_t>(x0 + cellWidth, width - 1)),
                              static_cast<std::int32_t>(FZMin<std::int64_t>(y0 + cellHeight, height - 1)));
            FillColorRect(cell, (i % 2) + (j % 2) == 1 ? a : b);
        }
    }
}

// ---------------------------------------------------------------- FZScene

FZResult FZScene::Create(std::int32_t w, std::int32_t h)
{
    Clear();
    if (w < 0 || h < 0)
        return FZResult::BadParameter;
    width = w;
    height = h;
    const float cx = static_cast<float>(w * 0.5);
    const float cy = static_cast<float>(h * 0.5);
    camera.SetEye(cx, cy, static_cast<float>(static_cast<double>(w) + h));
    camera.SetTarget(cx, cy, 0.0f);
    return FZResult::Ok;
}

void FZScene::Clear()
{
    frame.reset();
    behind.reset();
    layers.clear();
    lights.clear();
    width = height = 0;
}

FZResult FZScene::SetUpFrame(std::int32_t w, std::int32_t h, const float backgroundColor[3])
{
    if (const FZResult result = Create(w, h); result != FZResult::Ok)
        return result;

    const float direction[3] = {0.4f, -0.3f, -1.0f};
    const float white[3] = {1.0f, 1.0f, 1.0f};
    lights.emplace_back().SetDirectional(direction, white);

    // Built in place: a copy of a full-frame layer costs as much as making it.
    // The ground is flat: it needs no rows, whatever the frame's size.
    auto ground = std::make_unique<FZLayer>();
    if (const FZResult result = ground->CreateFlat(0, 0, w, h, groundDepth); result != FZResult::Ok)
        return result;
    ground->FillDepth(0.0f);
    ground->SetColorSource(0);
    FZAttributeEx groundMaterial;
    groundMaterial.color.SetFloats(backgroundColor);
    ground->SetMaterial(groundMaterial);
    layers.push_back(std::move(ground));
    return FZResult::Ok;
}

FZResult FZScene::AddLayerRect(std::int32_t lx, std::int32_t ly, std::int32_t w, std::int32_t h,
                               std::shared_ptr<const FZRowLayout> rows)
{
    auto layer = std::make_unique<FZLayer>();
    if (const FZResult result = layer->Create(lx, ly, w, h, layerDepth, std::move(rows)); result != FZResult::Ok)
        return result;
    layers.push_back(std::move(layer));
    return FZResult::Ok;
}

void FZScene::RemoveLayer(std::int32_t index)
{
    if (index >= 0 && index < LayerCount())
        layers.erase(layers.begin() + index);
}
