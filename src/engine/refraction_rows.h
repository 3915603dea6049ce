// Where the view, refracted at the surface of a transparent layer, meets
// the plane z = 0 behind it, for a piece of a row at once, in kernels the
// compiler turns into vector code. No two pixels of a shape's curved parts
// share a normal, so nothing is remembered from pixel to pixel: each lane
// refracts one pixel's view by FZSnell, the law FZPackedVector::Refract
// follows, and the scattered reads of the image behind come afterwards.
#ifndef TAMERISK_ENGINE_REFRACTION_ROWS_H
#define TAMERISK_ENGINE_REFRACTION_ROWS_H

#include <cstdint>

#include <tamerisk/attribute.h>

// What stays the same for all pixels of the layer.
struct FZRefraction {
    float eta = 1.0f;          // refractive index
    float bias = 0.0f;         // z of the layer's depth 0
    bool thinGlass = false;
    float thickness = 0.0f;    // of a thin glass plate
    std::int32_t layerX = 0;   // frame position of layer pixel (0, 0)
    std::int32_t layerY = 0;
};

// Pixels first .. first + n - 1 of layer row ly (frame row ly + layerY),
// n at most kFZRefractionPiece.
struct FZRefractionPiece {
    std::int32_t first = 0;
    std::int32_t n = 0;
    std::int32_t ly = 0;
};

inline constexpr std::int32_t kFZRefractionPiece = 64;

// Where the pixels' rays land, in frame coordinates; lands[k] is 0 where a
// ray never reaches the plane, 1 where it does (total internal reflection, a ray parallel
// to it).
struct FZLandingPoints {
    float sx[kFZRefractionPiece];
    float sy[kFZRefractionPiece];
    float lands[kFZRefractionPiece];
};

// normals and depths are the layer row's, from pixel 0; a null normals row
// takes every pixel as facing the viewer.
void RefractRowPiece(const FZRefraction& setup, const FZRefractionPiece& piece, const FZPackedVector* normals,
                     const float* depths, FZLandingPoints& out);

// The image behind a layer as the samples read it: 24-bit, rows of
// `stride` bytes. Without data every view sees the background.
struct FZBehindView {
    const std::uint8_t* data = nullptr;
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::int32_t stride = 0;
    float background[3] = {0.0f, 0.0f, 0.0f};
};

// What each pixel's refracted view sees (red, green, blue): the image
// behind box-filtered over one pixel about where the view lands, the
// background for the part of the box outside the image, and where the view
// never lands or lands at no finite point.
struct FZSeenColours {
    double rgb[3][kFZRefractionPiece];
};

void SeenThroughPiece(const FZBehindView& behind, const FZLandingPoints& points, std::int32_t n, FZSeenColours& out);

#endif
