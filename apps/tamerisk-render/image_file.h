// The image files tamerisk-render writes, made in memory straight from the
// engine's frame (24-bit, blue-green-red, rows bottom-up).
//
// The tool encodes PNG itself, on zlib alone, rather than through Qt's image
// classes: those need Qt Gui, whose libraries take longer to load than a
// small picture takes to render, and a frame copied into a QImage and
// compressed on one thread cost more than the render of a large one. Here
// the rows are filtered and compressed in bands on the render threads.
#pragma once

#include <cstdint>
#include <vector>

class FZImage;

// Binary PPM (P6): the header, then the rows top first, red-green-blue.
// False, with bytes emptied, for an image that is not 3 bytes a pixel or has
// no pixels.
bool EncodePpm(const FZImage& image, std::vector<std::uint8_t>& bytes);

// PNG, 8-bit RGB, not interlaced. The rows are compressed in bands of
// PngBandRows(width) rows each, one zlib stream for them all, so the file is
// the same at every thread count. False, with bytes emptied, for an image
// that is not 3 bytes a pixel or has no pixels, and when a watched render is
// asked to stop before every band is made. Throws std::bad_alloc when zlib
// or a buffer cannot get memory.
bool EncodePng(const FZImage& image, std::vector<std::uint8_t>& bytes);

// The picture rows in each compressed band (the last band may have fewer):
// a function of the width alone.
std::int32_t PngBandRows(std::int32_t width);
