// Random surface colours drawn from colour families: boxes in RGB space or
// in HLS space (hue, lightness, saturation), and one family around the
// current colour. The draws come from the module's shared generator.
#ifndef TAMERISK_DIALOGS_RANDOM_COLOR_H
#define TAMERISK_DIALOGS_RANDOM_COLOR_H

#include <span>

#include <tamerisk/attribute.h>

enum ColorFamily : int {
    kFamilyAll = 0,
    kFamilyPrimary = 1,
    kFamilyPastel = 2,
    kFamilyGrey = 3,
    kFamilyDark = 4,
    kFamilyLight = 5,
    kFamilyCool = 6,
    kFamilyWarm = 7,
    kFamilyNear = 100,
};

// A family's menu command is this plus its number.
inline constexpr int kFamilyCommandBase = 42768;

struct FamilyMenuItem {
    const char* text;  // UTF-8
    int family;
};

// The family menu in its order; a separator follows the first item.
std::span<const FamilyMenuItem> FamilyMenuItems();

// HLS to RGB: h in degrees (any value is brought into [0, 360)), l and s
// in [0, 1]; each channel in [0, 1] for such input.
void HlsToRgb(double h, double l, double s, float rgb[3]);

// Draws a colour of the family as three floats in [0, 1]. The near family
// draws around `current`; an unknown family draws from all colours.
void DrawFamilyColor(int family, const FZColor& current, float rgb[3]);

#endif
