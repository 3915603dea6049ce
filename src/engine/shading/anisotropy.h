// Anisotropic reflection: the two flank normals of a fine V-shaped groove
// laid in a pattern about a centre, with a random groove-depth variation.
#ifndef TAMERISK_ENGINE_SHADING_ANISOTROPY_H
#define TAMERISK_ENGINE_SHADING_ANISOTROPY_H

#include <tamerisk/attribute.h>

// Facet normals T1, T2 at the layer point (point[0], point[1]; point[2] is
// the depth, unused) with normal n, about centre (centre[0], centre[1]).
void AnisotropicFacets(const FZAnisotropy& params, const float point[3], const FZPackedVector& normal,
                       const float centre[3], FZPackedVector& t1, FZPackedVector& t2);

// The 120 noise values; filled from the module generator at first use.
// Call before any parallel shading so the first use happens on one thread.
const float* GrooveNoiseTable();

#endif
