// The display step: an FZImage (24-bit, blue-green-red, rows bottom-up) made
// into a Qt image and drawn into a canvas widget.
#ifndef TAMERISK_ENGINE_DISPLAY_IMAGE_DISPLAY_H
#define TAMERISK_ENGINE_DISPLAY_IMAGE_DISPLAY_H

#include <QImage>
#include <QSize>

class FZImage;
class FZScene;
class QWidget;

// A deep copy of the pixels as an upright RGB image: data row 0 (the bottom
// row of the picture) becomes the last line. Images that are empty or not
// 3 bytes a pixel give a null image.
QImage MakeBitmap(const FZImage& image);

// The image as the screen takes it: an upright 32-bit RGB image of `size`,
// each of its pixels the image's pixel at the same place scaled (nearest
// pixel: a smaller image is shown enlarged, in blocks). A window paints such
// an image without converting it. Null when the image is not 3 bytes a pixel,
// either is empty, or the memory cannot be had.
QImage MakeScreenBitmap(const FZImage& image, QSize size);

// Draws the scene's whole frame image into the target, upright at its
// top-left corner; nothing when the scene has no frame with pixels yet or
// the target is not an FZCanvas.
void PresentFrame(const FZScene& scene, QWidget* target);

#endif
