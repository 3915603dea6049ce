// The line diagram of a groove pattern that the anisotropic reflection
// dialog shows beside its controls: white, the pattern in light grey
// (180, 180, 180), the two axes through the middle in grey (120, 120, 120)
// and, for the centred patterns (types 1 to 3), a yellow mark on the centre.
//
// Pattern points have y growing upwards: a point (x, y) lands on line H - y.
// The straight lines of type 4 are the exception; they are rotated about
// (W/2, W/2) in device coordinates and not flipped. The wave pattern (type 5)
// and unknown types draw only the axes.
#ifndef TAMERISK_DIALOGS_ANISOTROPY_DIAGRAM_H
#define TAMERISK_DIALOGS_ANISOTROPY_DIAGRAM_H

#include <QImage>

#include <tamerisk/attribute.h>

// The diagram on a width x height picture; a null image when either is
// below 1.
QImage DrawAnisotropyPattern(const FZAnisotropy& pattern, int width, int height);

#endif
