// Anisotropic reflection: the two flank normals of a fine V-shaped groove
// laid in a pattern about a centre, with a random groove-depth variation.
#ifndef TAMERISK_ENGINE_SHADING_ANISOTROPY_H
#define TAMERISK_ENGINE_SHADING_ANISOTROPY_H

#include <tamerisk/attribute.h>


struct FZNormalAngle;

// Facet normals T1, T2 at the layer point (point[0], point[1]; point[2] is
// the depth, unused) with normal n, about centre (centre[0], centre[1]);
// the normal's angle is kept in memo when one is given.
void AnisotropicFacets(const FZAnisotropy& params, const float point[3], const FZPackedVector& normal,
                       const float centre[3], FZPackedVector& t1, FZPackedVector& t2,
                       FZNormalAngle* memo = nullptr);

// Whether the record's depth makes grooves (a NaN depth makes none).
inline bool FZGrooved(const FZAnisotropy& params)
{
    return params.grooveDepth > 1e-6;
}

// The largest angle (radians) between the normal and a facet that
// AnisotropicFacets can give for these parameters, the rounding of its
// arithmetic aside; negative when the parameters are too wild to tell (a
// value so large or not finite that the groove direction may overflow).
double MaxFacetTilt(const FZAnisotropy& params);

// The 120 noise values (floats): even entries in [0, 1), odd ones in
// [-1, 0), so that neighbouring grooves tend to alternate deeper and
// shallower. Drawn at first use by a generator object, which reseeds the
// module generator: call before any parallel shading so that the first use
// happens on one thread.
const double* GrooveNoiseTable();


#endif
