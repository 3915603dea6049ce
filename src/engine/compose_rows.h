// The last step of compositing a layer pixel that reflects, refracts or is
// partly covered, for a piece of a row at once, in a kernel the compiler
// turns into vector code: the shade times the coverage, plus what shows
// through the layer and what shows around it, held at most 1 and stored as
// a byte. Each lane does the float and double operations of the pixel rule
// (engine/pixel.h) in the order the single pixel does them.
#ifndef TAMERISK_ENGINE_COMPOSE_ROWS_H
#define TAMERISK_ENGINE_COMPOSE_ROWS_H

#include <cstdint>

inline constexpr std::int32_t kFZComposePiece = 64;

// One piece's pixels, each value a float held in a double; channels red,
// green, blue.
struct FZComposeLanes {
    double shade[3][kFZComposePiece];    // the layer's colour, the sky added
    double coverage[kFZComposePiece];    // a, above 0
    double transmission[kFZComposePiece];  // t; 0 where nothing shows through
    double through[3][kFZComposePiece];  // what the refracted view sees
    double under[3][kFZComposePiece];    // the frame behind the pixel
};

struct FZComposeBytes {
    std::int32_t rgb[3][kFZComposePiece];
};

// The bytes of the first n pixels (n at most kFZComposePiece):
// shade x a + through x a x t + under x (1 - a), each term rounded to
// float, at most 1; NaN stores 0.
void CompositePiece(const FZComposeLanes& lanes, std::int32_t n, FZComposeBytes& out);

#endif
