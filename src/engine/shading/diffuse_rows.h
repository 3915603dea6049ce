// The ambient and diffuse shading: every light's DiffuseTerm summed, times
// the surface colour, held at most 1 and stored as bytes. One kernel the
// compiler turns into vector code works it out for a piece of a row, and
// for a single pixel as a piece of one; and the cosines a plain highlight
// is raised from. No two pixels on a shape's
// curved parts share a normal, so there is nothing to remember from one
// pixel to the next, only arithmetic to do.
#ifndef TAMERISK_ENGINE_SHADING_DIFFUSE_ROWS_H
#define TAMERISK_ENGINE_SHADING_DIFFUSE_ROWS_H

#include <cstdint>

#include <tamerisk/attribute.h>

inline constexpr std::int32_t kFZDiffusePiece = 64;

// One directional light as the shading sees it.
struct FZDiffuseLight {
    FZPackedVector direction;
    float color[3] = {0.0f, 0.0f, 0.0f};
};

// What stays the same over the layer.
struct FZDiffuseSetup {
    const FZDiffuseLight* lights = nullptr;
    std::int32_t lightCount = 0;
    float diffuse = 0.0f;
    float ambient = 0.0f;
    // The material's colour, R, G, B, in every lane of a piece.
    double color[3][kFZDiffusePiece] = {};

    void SetColour(const FZColor& c);
};

// The bytes, red, green, blue, of n pixels (at most kFZDiffusePiece) with
// the given normals, in their own colours (null: the material's).
struct FZDiffuseBytes {
    std::int32_t rgb[3][kFZDiffusePiece];
};

void ShadeDiffusePiece(const FZDiffuseSetup& setup, const FZPackedVector* normals, const FZColor* colours,
                       std::int32_t n, FZDiffuseBytes& out);

// FZPackedVector::Dot(half, normal) rounded to float, for n normals (at
// most kFZDiffusePiece).
void HighlightCosinesOfPiece(const FZPackedVector& half, const FZPackedVector* normals, std::int32_t n,
                             double cosines[kFZDiffusePiece]);

// Adding the highlight h (above 0, at most 1) in the highlight colour to
// the shaded colour of n pixels (at most kFZDiffusePiece), each value a
// float held in a double: shade + h x colour, at most 1, as bytes.
struct FZHighlightLanes {
    double h[kFZDiffusePiece];
    double shade[3][kFZDiffusePiece];
    double colour[3][kFZDiffusePiece];
    std::int32_t rgb[3][kFZDiffusePiece];
};

void AddHighlightPiece(FZHighlightLanes& lanes, std::int32_t n);

#endif
