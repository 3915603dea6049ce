// The scene the preview renders: a frame of a given pixel size, an ordered
// list of raster layers (index 0 is the ground), a list of lights, a camera,
// the reflection environment, and the frame images the render driver fills.
//
// Coordinates are frame pixels: x to the right, y upward (row 0 at the
// bottom), z toward the viewer. A layer pixel (lx, ly) lies at frame pixel
// (x + lx, y + ly). Per-pixel data is held as arrays of row pointers, one
// allocation per row.
#ifndef TAMERISK_ENGINE_SCENE_H
#define TAMERISK_ENGINE_SCENE_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>

#include <tamerisk/attribute.h>

#include "engine/environment.h"
#include "engine/image.h"
#include "engine/value_types.h"

// Per-pixel row sets: h rows of w value-initialised entries, one allocation
// per row. Null when memory runs out (nothing stays allocated then) or when
// a size is negative. Never throws.
template <typename T>
T** FZNewRows(std::int32_t w, std::int32_t h)
{
    if (w < 0 || h < 0)
        return nullptr;
    T** rows = new (std::nothrow) T*[static_cast<std::size_t>(h)]();
    if (rows == nullptr)
        return nullptr;
    for (std::int32_t y = 0; y < h; ++y) {
        rows[y] = new (std::nothrow) T[static_cast<std::size_t>(w)]();
        if (rows[y] == nullptr) {
            for (std::int32_t i = 0; i < y; ++i)
                delete[] rows[i];
            delete[] rows;
            return nullptr;
        }
    }
    return rows;
}

// Frees h rows made by FZNewRows and sets the pointer to null.
template <typename T>
void FZDeleteRows(T**& rows, std::int32_t h)
{
    if (rows == nullptr)
        return;
    for (std::int32_t y = 0; y < h; ++y)
        delete[] rows[y];
    delete[] rows;
    rows = nullptr;
}

// An owning array of pointers, grown by at least 10 slots at a time.
// Items 0 to count - 1 belong to the array and are deleted with it.
template <typename T>
class FZPtrArray {
public:
    std::int32_t count = 0;
    std::int32_t capacity = 0;
    T** items = nullptr;

    FZPtrArray() = default;
    ~FZPtrArray()
    {
        for (std::int32_t i = 0; i < count; ++i)
            delete items[i];
        delete[] items;
        items = nullptr;
        count = capacity = 0;
    }
    FZPtrArray(const FZPtrArray&) = delete;
    FZPtrArray& operator=(const FZPtrArray&) = delete;

    // Stores the item at the end and returns its index; -2 when the array
    // cannot grow (the array is then unchanged and the caller keeps the item).
    std::int32_t Append(T* item)
    {
        if (!Grow(1))
            return -2;
        items[count] = item;
        return count++;
    }

    // Inserts after the index (-1: at the front). Returns 0; -4 for an index
    // outside -1 .. count - 1 (nothing happens); -2 when the array cannot
    // grow (unchanged; the caller keeps the item).
    int InsertAfter(T* item, std::int32_t index)
    {
        if (index < -1 || index >= count)
            return -4;
        if (!Grow(1))
            return -2;
        for (std::int32_t i = count; i > index + 1; --i)
            items[i] = items[i - 1];
        items[index + 1] = item;
        ++count;
        return 0;
    }

    // Deletes the item at the index and closes the gap; out of range does
    // nothing.
    void RemoveAt(std::int32_t index)
    {
        if (index < 0 || index >= count)
            return;
        delete items[index];
        for (std::int32_t i = index; i < count - 1; ++i)
            items[i] = items[i + 1];
        --count;
    }

    T* At(std::int32_t index) const
    {
        return index < 0 || index >= count ? nullptr : items[index];
    }

private:
    bool Grow(std::int32_t n)
    {
        const std::int32_t need = count + n - capacity;
        if (need < 1)
            return true;
        const std::int32_t newCapacity = capacity + (need > 10 ? need : 10);
        T** grown = new (std::nothrow) T*[static_cast<std::size_t>(newCapacity)];
        if (grown == nullptr)
            return false;
        for (std::int32_t i = 0; i < count; ++i)
            grown[i] = items[i];
        delete[] items;
        items = grown;
        capacity = newCapacity;
        return true;
    }
};

// A light. Only directional lights (type 1) exist in Tamerisk.
class FZLight {
public:
    std::int32_t type = 0;
    float intensity = 0.0f;
    float position[3] = {0.0f, 0.0f, 0.0f};  // not set for a directional light
    FZPackedVector direction;                 // normalised direction of travel
    float color[3] = {0.0f, 0.0f, 0.0f};
    std::int32_t on = 0;

    // type 1; intensity held within [0, 1]; direction normalised.
    void SetDirectional(float i, const float dir[3], const float rgb[3]);
    // Colour (intensity * color for type 1, black otherwise) and direction
    // at the world point (px, py, pz).
    void Evaluate(float px, float py, float pz, float outColor[3], FZPackedVector& outDir) const;
};

class FZCamera {
public:
    float eye[3] = {0.0f, 0.0f, 1000.0f};
    float target[3] = {0.0f, 0.0f, 0.0f};
    FZPackedVector viewDirection;  // always the normalised target - eye

    FZCamera() { viewDirection.SetFloats(0.0f, 0.0f, -1.0f, true); }
    void SetEye(float x, float y, float z);
    void SetTarget(float x, float y, float z);
    void ViewDirection(FZPackedVector& out) const { out = viewDirection; }

private:
    void Update();
};

// A raster object of the scene: per-pixel coverage, depth, normal and own
// colour, one material, and the images the shading makes from them.
class FZLayer {
public:
    float baseDepth = 0.0f;             // z of depth 0 of this layer
    std::int32_t x = 0;                 // frame position of pixel (0, 0)
    std::int32_t y = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::uint8_t** coverage = nullptr;  // 0 to 255
    float** depth = nullptr;            // height above the base depth
    FZPackedVector** normals = nullptr; // filled by PrepareSurface
    FZAttributeEx material;
    std::int16_t colorSource = 0;       // 0 material colour, 1 own colour rows
    std::int16_t visible = 0;           // 1 from Create
    FZColor** colors = nullptr;         // own colour rows
    FZImage* shaded = nullptr;          // shaded colour image, by ShadeLayer
    float** highlight = nullptr;        // highlight map, by ShadeLayer
    std::int32_t boundsX0 = 0;          // coverage bounds, by PrepareSurface
    std::int32_t boundsX1 = 0;
    std::int32_t boundsY0 = 0;
    std::int32_t boundsY1 = 0;
    float depthMin = 0.0f;              // depth range, by PrepareSurface
    float depthMax = 0.0f;

    FZLayer() = default;
    ~FZLayer() { Release(); }
    FZLayer(const FZLayer&) = delete;
    FZLayer& operator=(const FZLayer&) = delete;

    // The most pixels a layer may have (16384 x 16384, about 3.8 GB of
    // rows). Larger requests are refused as out of memory up front: rows
    // are allocated one at a time, and on a system that overcommits memory
    // each of them would succeed until the process is killed.
    static constexpr std::int64_t kMaxPixels = std::int64_t{1} << 28;

    // Replaces the contents by empty rows of w x h: coverage and depth 0,
    // own colours black, colour source 1, visible. 0; -2 when memory runs
    // out or w x h exceeds kMaxPixels, -4 for a negative size; the layer is
    // then left released (empty, size 0), so no half-built layer is ever
    // rendered.
    FZResult Create(std::int32_t lx, std::int32_t ly, std::int32_t w, std::int32_t h, float base);
    // Frees every row set (highlight and normal rows included) and the
    // shaded image; base depth, position and size back to 0.
    void Release();
    // Deep copy of the rows, material, colour source and visible flag (not
    // the normals, shaded image, highlight map, bounds or depth range).
    // Assigning a layer to itself does nothing. 0, or -2 when out of memory
    // (this layer is then left released).
    FZResult Assign(const FZLayer& other);

    void SetMaterial(const FZAttributeEx& m) { material = m; }
    void GetMaterial(FZAttributeEx& m) const { m = material; }
    void SetColorSource(std::int16_t source) { colorSource = source; }
    std::int16_t GetColorSource() const { return colorSource; }
    std::int16_t IsVisible() const { return visible; }

    void FillDepth(float value);
    void ClearColors();
    void FillColorRect(const FZRect& rect, const FZColor& color);
    void FillChecker(std::int32_t cellWidth, std::int32_t cellHeight, const FZColor& a, const FZColor& b);
    // Merges one sample into pixel (lx, ly), which must lie inside the layer.
    // 0 nothing there, 1 sample hidden, 2 replaced, 3 blended.
    int CompositeSample(std::int32_t lx, std::int32_t ly, float z, std::uint8_t cb, const FZColor& color);
};

class FZScene {
public:
    std::int32_t width = 0;
    std::int32_t height = 0;
    FZPtrArray<FZLayer>* layers = nullptr;
    FZPtrArray<FZLight>* lights = nullptr;
    FZCamera camera;
    FZEnvironment environment;
    FZImage* frame = nullptr;
    FZImage* behind = nullptr;
    float background[3] = {1.0f, 1.0f, 1.0f};
    float groundDepth = 0.0f;
    float layerDepth = 10.0f;

    FZScene() = default;
    ~FZScene() { Clear(); }
    FZScene(const FZScene&) = delete;
    FZScene& operator=(const FZScene&) = delete;

    // Clear, then empty lists and the camera looking down -z at the frame
    // centre. 0, -2, or -4 for a negative size (the scene stays cleared).
    FZResult Create(std::int32_t w, std::int32_t h);
    // Frees the images, both lists with their items; width and height 0.
    void Clear();
    // Create, one directional light and the ground layer (layer 0).
    FZResult SetUpFrame(std::int32_t w, std::int32_t h, const float backgroundColor[3]);

    std::int32_t LayerCount() const { return layers == nullptr ? 0 : layers->count; }
    FZLayer* LayerAt(std::int32_t index) const { return layers == nullptr ? nullptr : layers->At(index); }
    std::int32_t LightCount() const { return lights == nullptr ? 0 : lights->count; }
    FZLight* LightAt(std::int32_t index) const { return lights == nullptr ? nullptr : lights->At(index); }

    // Adds a deep copy of the layer at the end (InsertLayer: after index,
    // -1 for the front). NoData without a layer list, BadParameter for an
    // index outside -1 .. count - 1, OutOfMemory.
    FZResult AddLayer(const FZLayer& layer);
    FZResult InsertLayer(const FZLayer& layer, std::int32_t index);
    FZResult AddLayerRect(std::int32_t lx, std::int32_t ly, std::int32_t w, std::int32_t h);
    FZResult AddFullFrameLayer() { return AddLayerRect(0, 0, width, height); }
    void RemoveLayer(std::int32_t index);
};

#endif
