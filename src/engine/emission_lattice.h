// The emission lattice: an emitter's light, gathered into one light centre
// per 5 x 5 block of its light grid, splatted onto every fifth pixel of
// every fifth row of the ground.
#ifndef TAMERISK_ENGINE_EMISSION_LATTICE_H
#define TAMERISK_ENGINE_EMISSION_LATTICE_H

#include <cstdint>
#include <vector>

#include "engine/value_types.h"

// An emitter's light grid (width x height floats, its first cell at frame
// pixel (x0, y0)), made a band of rows at a time when the splat asks for
// it, so that the whole grid is never held. FillRows writes rows first to
// first + n - 1 into rows[0] to rows[n - 1], width floats each; it is
// called from several threads at once.
class FZEmitterLight {
public:
    virtual ~FZEmitterLight() = default;
    virtual void FillRows(std::int32_t first, std::int32_t n, float* const* rows) const = 0;

    std::int32_t width = 0;
    std::int32_t height = 0;
};

// The ground lattice's light: lattice point (i, j), ground pixel
// (2 + 5 j, 2 + 5 i) of the ground rectangle, at cells[i * columns + j].
struct FZGroundLattice {
    std::int32_t rows = 0;
    std::int32_t columns = 0;
    std::vector<float> cells;
};

// The parallel form of the splat: the same sums, made by ground lattice row.
// Each lattice point adds the light of every block centre in block order,
// row by row and column by column, exactly as the block-by-block splat does,
// so every float sum keeps its order; the rows are spread over the pool and
// the columns of a row are taken several at a time by vector instructions.
// The block centres are gathered a band of five emitter rows at a time. The lattice starts from 0 light. False when
// its scratch memory cannot be had.
bool SplatEmissionByGroundRows(const FZEmitterLight& m, const FZRect& emitterRect, const FZRect& groundRect,
                               std::int32_t radius, FZGroundLattice& g);

#endif
