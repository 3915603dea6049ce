#include "dialogs/random_color.h"

#include <cmath>

#include <QtGlobal>

#include "engine/random.h"

namespace {

// The random colours' generator: constructed when the library loads, which
// seeds the module's shared state with the time. The groove noise seeds the
// same state again at its first use, and the colours continue from there.
const FZRandom kColorGenerator;

constexpr FamilyMenuItem kMenu[] = {
    {QT_TRANSLATE_NOOP("Tamerisk", "全色"), kFamilyAll},
    {QT_TRANSLATE_NOOP("Tamerisk", "原色"), kFamilyPrimary},
    {QT_TRANSLATE_NOOP("Tamerisk", "ﾊﾟｽﾃﾙｶﾗｰ"), kFamilyPastel},
    {QT_TRANSLATE_NOOP("Tamerisk", "灰色"), kFamilyGrey},
    {QT_TRANSLATE_NOOP("Tamerisk", "明色"), kFamilyLight},
    {QT_TRANSLATE_NOOP("Tamerisk", "暗色"), kFamilyDark},
    {QT_TRANSLATE_NOOP("Tamerisk", "暖色"), kFamilyWarm},
    {QT_TRANSLATE_NOOP("Tamerisk", "寒色"), kFamilyCool},
    {QT_TRANSLATE_NOOP("Tamerisk", "近い色"), kFamilyNear},
};

// A box in HLS space; hues may reach past 0 and 360.
struct HlsBox {
    int family;
    double hueFrom, hueTo;
    double lightFrom, lightTo;
    double satFrom, satTo;
};

constexpr HlsBox kHlsBoxes[] = {
    {kFamilyPrimary, -30, 390, 0.475, 0.525, 0.95, 1.0},
    {kFamilyPastel, -20, 380, 0.7, 0.8, 0.45, 0.55},
    {kFamilyDark, -20, 380, 0.0, 0.25, 0.0, 1.0},
    {kFamilyLight, -20, 380, 0.75, 0.95, 0.5, 1.0},
    {kFamilyCool, 150, 320, 0.5, 0.9, 0.5, 1.0},
    {kFamilyWarm, -10, 60, 0.4, 0.7, 0.75, 1.0},
};

// h in [0, 360); NaN stays NaN and falls through to m1.
double WrapHue(double h)
{
    h = std::fmod(h, 360.0);
    return h < 0.0 ? h + 360.0 : h;
}

double HlsValue(double m1, double m2, double h)
{
    h = WrapHue(h);
    if (h < 60.0)
        return m1 + (m2 - m1) * h / 60.0;
    if (h < 180.0)
        return m2;
    if (h < 240.0)
        return m1 + (m2 - m1) * (240.0 - h) / 60.0;
    return m1;
}

const HlsBox* FindBox(int family)
{
    for (const HlsBox& box : kHlsBoxes) {
        if (box.family == family)
            return &box;
    }
    return nullptr;
}

void DrawHls(const HlsBox& box, float rgb[3])
{
    // A span wider than 360 degrees covers the hues near 0 twice, so those
    // come up twice as often.
    double hue = FZRandom::Between(box.hueFrom, box.hueTo);
    if (hue < 0.0)
        hue += 360.0;
    else if (hue >= 360.0)
        hue -= 360.0;
    const double lightness = FZRandom::Between(box.lightFrom, box.lightTo);
    const double saturation = FZRandom::Between(box.satFrom, box.satTo);
    HlsToRgb(hue, lightness, saturation, rgb);
}

void DrawNear(const FZColor& current, float rgb[3])
{
    float channels[3];
    current.GetFloats(channels);
    for (int i = 0; i < 3; ++i) {
        const double low = std::fmax(0.0, channels[i] - 25.0 / 255.0);
        const double high = std::fmin(1.0, channels[i] + 25.0 / 255.0);
        rgb[i] = static_cast<float>(FZRandom::Between(low, high));
    }
}

} // namespace

std::span<const FamilyMenuItem> FamilyMenuItems()
{
    return kMenu;
}

void HlsToRgb(double h, double l, double s, float rgb[3])
{
    if (s == 0.0) {
        rgb[0] = rgb[1] = rgb[2] = static_cast<float>(l);
        return;
    }
    const double m2 = l < 0.5 ? l * (1.0 + s) : l + s - l * s;
    const double m1 = 2.0 * l - m2;
    rgb[0] = static_cast<float>(HlsValue(m1, m2, h + 120.0));
    rgb[1] = static_cast<float>(HlsValue(m1, m2, h));
    rgb[2] = static_cast<float>(HlsValue(m1, m2, h - 120.0));
}

void DrawFamilyColor(int family, const FZColor& current, float rgb[3])
{
    if (const HlsBox* box = FindBox(family)) {
        DrawHls(*box, rgb);
        return;
    }
    switch (family) {
    case kFamilyGrey:
        rgb[0] = rgb[1] = rgb[2] = static_cast<float>(FZRandom::Uniform());
        return;
    case kFamilyNear:
        DrawNear(current, rgb);
        return;
    default:
        for (int i = 0; i < 3; ++i)
            rgb[i] = static_cast<float>(FZRandom::Uniform());
        return;
    }
}
