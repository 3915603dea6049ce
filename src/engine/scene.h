// The scene the preview renders: a frame of a given pixel size, an ordered
// list of raster layers (index 0 is the ground), a list of lights, a camera,
// the reflection environment, and the frame images the render driver fills.
//
// Coordinates are frame pixels: x to the right, y upward (row 0 at the
// bottom), z toward the viewer. A layer pixel (lx, ly) lies at frame pixel
// (x + lx, y + ly). Per-pixel data is held in rasters, one block each.
#ifndef TAMERISK_ENGINE_SCENE_H
#define TAMERISK_ENGINE_SCENE_H

#include <cstdint>
#include <memory>
#include <vector>

#include <tamerisk/attribute.h>

#include "engine/environment.h"
#include "engine/image.h"
#include "engine/raster.h"
#include "engine/value_types.h"

// A directional light, the only kind Tamerisk has.
class FZLight {
public:
    FZPackedVector direction;  // normalised direction of travel
    float color[3] = {0.0f, 0.0f, 0.0f};

    // Normalises the direction.
    void SetDirectional(const float dir[3], const float rgb[3]);
    // Colour and direction at the world point (px, py, pz).
    void Evaluate(float px, float py, float pz, float outColor[3], FZPackedVector& outDir) const;
};

using FZLightList = std::vector<FZLight>;

class FZCamera {
public:
    float eye[3] = {0.0f, 0.0f, 1000.0f};
    float target[3] = {0.0f, 0.0f, 0.0f};
    FZPackedVector viewDirection;  // always the normalised target - eye

    FZCamera() { viewDirection.SetFloats(0.0f, 0.0f, -1.0f, true); }
    void SetEye(float x, float y, float z);
    void SetTarget(float x, float y, float z);

private:
    void Update();
};

// How a flat layer looks: every pixel covered at one depth, facing the
// viewer, its own colours a checker of two colours (or one colour when the
// cells are 0 wide). A flat layer keeps no rows at all; the shading works
// out the shaded bytes of its two colours.
struct FZFlatFill {
    float depth = 0.0f;
    std::int32_t cellWidth = 0;
    std::int32_t cellHeight = 0;
    // colors[0] where a pixel's cell column and cell row are both even or
    // both odd, colors[1] elsewhere.
    FZColor colors[2] = {};
    // The shaded bytes (blue, green, red) of each colour, by ShadeLayer.
    std::uint8_t shaded[2][3] = {};

    // Which of the two colours pixel (lx, ly) of the layer shows.
    int CellOf(std::int32_t lx, std::int32_t ly) const
    {
        return cellWidth < 1 || cellHeight < 1 ? 0 : (lx / cellWidth + ly / cellHeight) & 1;
    }
};

// A pixel of a layer's shaded colour image: blue, green, red.
struct FZShadedPixel {
    std::uint8_t bgr[3];
};
// Rows of shaded pixels are read and written as plain runs of bytes.
static_assert(sizeof(FZShadedPixel) == 3);

// A raster object of the scene: per-pixel coverage, depth, normal and own
// colour, one material, and the images the shading makes from them.
//
// The rows of a layer may hold only some of its pixels (StoredRow(),
// Stored()): every pixel they do not hold is uncovered, and passes over the
// layer visit the pixels held only. A flat layer (IsFlat()) holds no rows:
// its pixels follow its FZFlatFill.
class FZLayer {
public:
    float baseDepth = 0.0f;             // z of depth 0 of this layer
    std::int32_t x = 0;                 // frame position of pixel (0, 0)
    std::int32_t y = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
    FZRaster<std::uint8_t> coverage;    // 0 to 255
    FZRaster<float> depth;              // height above the base depth
    FZRaster<FZPackedVector> normals;   // filled by PrepareSurface
    FZAttributeEx material;
    std::int16_t colorSource = 0;       // 0 material colour, 1 own colour rows
    std::int16_t visible = 0;           // 1 from Create
    FZRaster<FZColor> colors;           // own colour rows
    FZRaster<FZShadedPixel> shaded;     // shaded colour image, by ShadeLayer
    FZRaster<float> highlight;          // highlight map, while ShadeLayer runs
    std::int32_t boundsX0 = 0;          // coverage bounds, by PrepareSurface
    std::int32_t boundsX1 = 0;
    std::int32_t boundsY0 = 0;
    std::int32_t boundsY1 = 0;
    float depthMin = 0.0f;              // depth range, by PrepareSurface
    float depthMax = 0.0f;
    bool flat = false;
    FZFlatFill fill;                    // what a flat layer shows

    FZLayer() = default;
    FZLayer(const FZLayer&) = delete;
    FZLayer& operator=(const FZLayer&) = delete;

    // The most pixels a layer may have (16384 x 16384, about 3.8 GB of
    // rasters). Larger requests are refused as out of memory up front: on a
    // system that overcommits memory the allocation would succeed and the
    // process be killed when the pages are touched.
    static constexpr std::int64_t kMaxPixels = std::int64_t{1} << 28;

    // Replaces the contents by a layer of w x h with empty rows over the
    // pixels of the layout (none for null): coverage and depth 0, own
    // colours black, colour source 1, visible. The pixels outside stay
    // uncovered for good. OutOfMemory when w x h exceeds kMaxPixels,
    // BadParameter for a negative size or rows that do not lie in the layer;
    // the layer is then left released (empty, size 0), so no half-built
    // layer is ever rendered; rows that cannot be had give OutOfMemory the
    // same way.
    FZResult Create(std::int32_t lx, std::int32_t ly, std::int32_t w, std::int32_t h, float base,
                    std::shared_ptr<const FZRowLayout> rows);
    // A flat layer of w x h at depth 0 with black colours, colour source 1,
    // visible; the same failures as Create.
    FZResult CreateFlat(std::int32_t lx, std::int32_t ly, std::int32_t w, std::int32_t h, float base);
    // Gives a flat layer the rows it stands for (what is shaded is then
    // shaded again by ShadeLayer); OutOfMemory leaves it flat.
    FZResult MakeRows();
    // Frees every row set (highlight and normal rows included) and the
    // shaded image; base depth, position and size back to 0.
    void Release();

    void SetMaterial(const FZAttributeEx& m) { material = m; }
    void GetMaterial(FZAttributeEx& m) const { m = material; }
    void SetColorSource(std::int16_t source) { colorSource = source; }
    std::int16_t GetColorSource() const { return colorSource; }
    std::int16_t IsVisible() const { return visible; }
    bool IsFlat() const { return flat; }

    // The rectangle around the pixels the rows hold, in layer coordinates;
    // empty without rows.
    FZRect Stored() const { return coverage.Bounds(); }
    // The columns row ly holds; none without rows.
    FZSpan StoredRow(std::int32_t ly) const { return coverage.Row(ly); }
    // The coverage of any pixel of the layer: 255 everywhere on a flat
    // layer, 0 where the rows hold nothing.
    std::uint8_t CoverageAt(std::int32_t lx, std::int32_t ly) const
    {
        if (flat)
            return 255;
        const FZSpan row = coverage.Row(ly);
        return lx < row.first || lx > row.last ? 0 : coverage[ly][lx];
    }
    // The shaded bytes of a pixel the rows hold.
    std::uint8_t* ShadedAt(std::int32_t lx, std::int32_t ly) { return shaded[ly][lx].bgr; }
    const std::uint8_t* ShadedAt(std::int32_t lx, std::int32_t ly) const { return shaded[ly][lx].bgr; }

    void FillDepth(float value);
    void FillColorRect(const FZRect& rect, const FZColor& color);
    void FillChecker(std::int32_t cellWidth, std::int32_t cellHeight, const FZColor& a, const FZColor& b);

private:
    FZResult MakeRows(std::shared_ptr<const FZRowLayout> rows);
    // MakeRows for a new layer, which is released when they cannot be had.
    FZResult TakeRows(std::shared_ptr<const FZRowLayout> rows);
};

class FZScene {
public:
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::vector<std::unique_ptr<FZLayer>> layers;
    std::vector<FZLight> lights;
    FZCamera camera;
    FZEnvironment environment;
    std::unique_ptr<FZImage> frame;
    std::unique_ptr<FZImage> behind;
    float background[3] = {1.0f, 1.0f, 1.0f};
    float groundDepth = 0.0f;
    float layerDepth = 10.0f;

    FZScene() = default;
    FZScene(const FZScene&) = delete;
    FZScene& operator=(const FZScene&) = delete;

    // Clear, then the camera looking down -z at the frame centre.
    // BadParameter for a negative size (the scene stays cleared).
    FZResult Create(std::int32_t w, std::int32_t h);
    // Frees the images, both lists with their items; width and height 0.
    void Clear();
    // Create, one directional light and the ground layer (layer 0).
    FZResult SetUpFrame(std::int32_t w, std::int32_t h, const float backgroundColor[3]);

    std::int32_t LayerCount() const { return static_cast<std::int32_t>(layers.size()); }
    FZLayer* LayerAt(std::int32_t index) const
    {
        return index < 0 || index >= LayerCount() ? nullptr : layers[static_cast<std::size_t>(index)].get();
    }

    // A layer with rows over the pixels of the layout only, on top.
    FZResult AddLayerRect(std::int32_t lx, std::int32_t ly, std::int32_t w, std::int32_t h,
                          std::shared_ptr<const FZRowLayout> rows);
    // Out of range does nothing.
    void RemoveLayer(std::int32_t index);
};

#endif
