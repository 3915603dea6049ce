#include "engine/compose_rows.h"

#include "engine/row_kernel.h"

TAMERISK_ROW_KERNEL void CompositePiece(const FZComposeLanes& lanes, std::int32_t n, FZComposeBytes& out)
{
    const double* a = lanes.coverage;
    const double* t = lanes.transmission;
    for (int c = 0; c < 3; ++c) {
        const double* shade = lanes.shade[c];
        const double* through = lanes.through[c];
        const double* under = lanes.under[c];
        std::int32_t* bytes = out.rgb[c];
        for (std::int32_t k = 0; k < n; ++k) {
            const double seen = FZAsFloat(through[k] * a[k] * t[k]);
            const double around = FZAsFloat(under[k] * FZAsFloat(1.0 - a[k]));
            const double s = FZAsFloat(shade[k] * a[k]);
            bytes[k] = FZByteOfLane(FZAsFloat(s + seen + around));
        }
    }
}
