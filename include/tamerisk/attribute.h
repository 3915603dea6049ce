// The material record of Tamerisk, FZAttributeEx, and the two small value
// types it embeds (FZColor, FZPackedVector).
//
// Hosts hand this record across the library boundary by pointer, and the
// attribute files store part of it as a raw memory image, so its layout is a
// binary interface: little-endian, 32-bit IEEE floats, 32-bit signed
// integers, 4-byte alignment, 136 bytes in all. Every size and offset is
// checked at compile time at the end of this header.
//
// Everything here is inline: a host needs nothing but this header to build,
// copy and inspect a record.
#ifndef TAMERISK_ATTRIBUTE_H
#define TAMERISK_ATTRIBUTE_H

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "fz_truncate.h"

// v rounded to float and held in a double. For floats a and b,
// FZAsFloat(a op b) computed in double is exactly the float result of
// + - * / and square roots: double has more than twice float's precision
// plus two bits, so rounding twice cannot differ from rounding once.
inline double FZAsFloat(double v)
{
    return static_cast<double>(static_cast<float>(v));
}

// (x, y, z) normalised, in single precision: the squared length is formed
// in float, its inverse square root rounded to float. The floats are held
// in doubles and written without branches, so that the renderer normalises
// a row of vectors at once with this same code. A length that is zero or
// not a number gives (0, 0, 1).
inline void FZNormalizeHeld(double x, double y, double z, double unit[3])
{
    const double sq = FZAsFloat(FZAsFloat(FZAsFloat(x * x) + FZAsFloat(y * y)) + FZAsFloat(z * z));
    const bool some = sq > 0.0;
    const double inv = FZAsFloat(1.0 / std::sqrt(sq));
    unit[0] = some ? FZAsFloat(x * inv) : 0.0;
    unit[1] = some ? FZAsFloat(y * inv) : 0.0;
    unit[2] = some ? FZAsFloat(z * inv) : 1.0;
}

// Normalises (x, y, z) in place; see FZNormalizeHeld.
inline void FZNormalizeFloats(float& x, float& y, float& z)
{
    double unit[3];
    FZNormalizeHeld(x, y, z, unit);
    x = static_cast<float>(unit[0]);
    y = static_cast<float>(unit[1]);
    z = static_cast<float>(unit[2]);
}

// Snell's law for a view that meets a surface at the given cosine (toward
// the viewer) with relative index eta, as FZPackedVector::Refract works it
// out: float steps, each held in a double. Written without branches, so
// that the renderer refracts a row of views at once with this same code.
struct FZSnell {
    bool refracts;  // false on total internal reflection
    bool straight;  // straight on, the view goes through unchanged
    double s;       // the weight of the incident direction
    double m;       // the weight of the normal

    FZSnell(double eta, double cosine)
    {
        const double e2 = FZAsFloat(eta * eta);
        const double c = FZAsFloat(cosine);
        const double c2 = FZAsFloat(c * c);
        const double k = FZAsFloat(e2 - 1.0 + c2);
        const double cosT2 = FZAsFloat(k / e2);
        const double cosT = FZAsFloat(std::sqrt(cosT2));
        refracts = k >= 1e-5;
        straight = 1.0 - c2 < 1e-5;
        s = FZAsFloat(std::sqrt((1.0 - cosT2) / (1.0 - c2)));
        m = FZAsFloat(s * c - cosT);
    }
    // One component of the refracted direction, before it is normalised.
    double Along(double normal, double incident) const { return FZAsFloat(m * normal + s * incident); }
};

// A colour as three bytes, red, green, blue.
struct FZColor {
    std::uint8_t r = 0;
    std::uint8_t g = 0;
    std::uint8_t b = 0;

    void SetBytes(std::uint8_t red, std::uint8_t green, std::uint8_t blue)
    {
        r = red;
        g = green;
        b = blue;
    }
    void GetBytes(std::uint8_t& red, std::uint8_t& green, std::uint8_t& blue) const
    {
        red = r;
        green = g;
        blue = b;
    }
    // Each byte becomes the low 8 bits of trunc(v * 255.0); no clamping, so
    // callers pass values in [0, 1] (1.0 gives 255).
    void SetFloats(float red, float green, float blue)
    {
        r = FZTruncateLow8(static_cast<double>(red) * 255.0);
        g = FZTruncateLow8(static_cast<double>(green) * 255.0);
        b = FZTruncateLow8(static_cast<double>(blue) * 255.0);
    }
    void SetFloats(const float rgb[3]) { SetFloats(rgb[0], rgb[1], rgb[2]); }
    // Each float is byte * 1.0 / 255.0.
    void GetFloats(float& red, float& green, float& blue) const
    {
        red = static_cast<float>(r * 1.0 / 255.0);
        green = static_cast<float>(g * 1.0 / 255.0);
        blue = static_cast<float>(b * 1.0 / 255.0);
    }
    void GetFloats(float rgb[3]) const { GetFloats(rgb[0], rgb[1], rgb[2]); }
    bool IsBlack() const { return r == 0 && g == 0 && b == 0; }
};

// A direction as three signed 16-bit components, each the float component
// times 30000, truncated.
struct FZPackedVector {
    std::int16_t x = 0;
    std::int16_t y = 0;
    std::int16_t z = 0;

    static constexpr double kScale = 30000.0;

    void SetFloats(float fx, float fy, float fz, bool normalise)
    {
        if (normalise)
            FZNormalizeFloats(fx, fy, fz);
        x = Pack(fx);
        y = Pack(fy);
        z = Pack(fz);
    }
    void SetFloats(const float v[3], bool normalise) { SetFloats(v[0], v[1], v[2], normalise); }

    void GetFloats(float& fx, float& fy, float& fz) const
    {
        fx = static_cast<float>(x * 1.0 / kScale);
        fy = static_cast<float>(y * 1.0 / kScale);
        fz = static_cast<float>(z * 1.0 / kScale);
    }
    void GetFloats(float v[3]) const { GetFloats(v[0], v[1], v[2]); }

    // One component as c / 30000.0 (index 0, 1, 2 for x, y, z).
    double Component(int index) const
    {
        const std::int16_t c = index == 0 ? x : (index == 1 ? y : z);
        return c / kScale;
    }

    // The integer dot product, summed in a signed 32-bit integer and scaled
    // by 1/30000^2. Unit vectors never come near the 32-bit limit; any other
    // input wraps as 32-bit arithmetic does, without undefined behaviour.
    static double Dot(const FZPackedVector& a, const FZPackedVector& b)
    {
        const std::int64_t sum = std::int64_t{a.x} * b.x + std::int64_t{a.y} * b.y
                                 + std::int64_t{a.z} * b.z;
        return static_cast<std::int32_t>(static_cast<std::uint32_t>(sum))
               * 1.111111111111111e-9;
    }

    // Replaces this vector by the normalised sum of the two; a zero sum gives
    // (0, 0, 30000).
    void AddNormalized(const FZPackedVector& other)
    {
        SetFloats(static_cast<float>(x + other.x), static_cast<float>(y + other.y),
                  static_cast<float>(z + other.z), true);
    }

    // Snell's law: refracts the incident direction through a surface with the
    // given normal (toward the viewer) and relative index eta. Returns false,
    // leaving result as it was, on total internal reflection.
    static bool Refract(FZPackedVector& result, const FZPackedVector& incident,
                        const FZPackedVector& normal, float eta)
    {
        const FZSnell snell(Wide(eta), -Dot(incident, normal));
        if (!snell.refracts)
            return false;
        if (snell.straight) {
            result = incident;
            return true;
        }
        float ix, iy, iz, nx, ny, nz;
        incident.GetFloats(ix, iy, iz);
        normal.GetFloats(nx, ny, nz);
        result.SetFloats(static_cast<float>(snell.Along(Wide(nx), Wide(ix))),
                         static_cast<float>(snell.Along(Wide(ny), Wide(iy))),
                         static_cast<float>(snell.Along(Wide(nz), Wide(iz))), true);
        return true;
    }

    // asin(Component(index)) * 2 / 3.141759, in [-0.999947, 0.999947]. The
    // component is held within [-1, 1] first, which changes nothing for a
    // unit vector and keeps asin defined for any stored bytes.
    double Elevation(int index) const
    {
        double c = Component(index);
        c = c > 1.0 ? 1.0 : (c < -1.0 ? -1.0 : c);
        return std::asin(c) * 0.6365860653220059;
    }

private:
    // The widening is spelt out: a host that builds with -Wdouble-promotion
    // includes this header too.
    static double Wide(float v) { return static_cast<double>(v); }

    static std::int16_t Pack(float v)
    {
        return static_cast<std::int16_t>(FZTruncateClamped(Wide(v) * kScale, -32768, 32767));
    }
};

// The anisotropic groove pattern of a material (56 bytes).
struct FZAnisotropy {
    std::int32_t type = 1;         // 1 concentric, 2 wavy concentric, 3 spiral, 4 straight, 5 wave
    float grooveDepth = 0.15f;     // tangent of the groove flanks' tilt
    float center[3] = {0.5f, 0.5f, 0.0f};  // (u, v, 0) in the unit square
    FZPackedVector axis;           // stored with the pattern; (0, 0, 1)
    std::uint8_t padding[2] = {0, 0};
    float amplitude = 0.1f;        // wave amplitude, types 2 and 5
    std::int32_t waveCount = 4;    // waves per turn, type 2
    float spiralTwist = 0.01f;     // turn per pixel of radius, type 3
    float wavePeriod = 30.0f;      // period of type 5, in pixels
    float depthVariation = 0.0f;   // strength of the random depth variation
    float angle = 0.0f;            // line direction of types 4 and 5, degrees
    float grooveWidth = 1.0f;      // width of one groove, pixels

    FZAnisotropy() { axis.SetFloats(0.0f, 0.0f, 1.0f, true); }
};

// The base part of the material record (36 bytes).
struct FZAttribute {
    float diffuse = 0.8f;
    float highlightStrength = 0.5f;
    float highlightSharpness = 1.0f;
    float ambient = 0.3f;
    float transparency = 0.0f;
    float refractiveIndex = 1.0f;
    FZColor color{255, 255, 255};
    FZColor highlightColor{255, 255, 255};
    std::uint8_t padding[2] = {0, 0};  // no meaning; copied with the block
    float reflection = 0.0f;

    FZAttribute() = default;
    FZAttribute(const FZAttribute& other) { std::memcpy(static_cast<void*>(this), &other, sizeof(FZAttribute)); }
    // Copies the 36 bytes as one block; a record assigned to itself is left
    // untouched.
    FZAttribute& operator=(const FZAttribute& other)
    {
        if (this != &other)
            std::memcpy(static_cast<void*>(this), &other, sizeof(FZAttribute));
        return *this;
    }
};

// The material record (136 bytes): the base part, then the extension fields.
struct FZAttributeEx : FZAttribute {
    std::int32_t anisotropic = 0;
    FZAnisotropy anisotropy;
    std::int32_t colorTransparency = 0;
    float emission = 0.0f;
    std::int32_t smoothHighlight = 0;
    float smoothWidth = 2.0f;
    std::int32_t rainbow = 0;
    float stripeSpacing = 1000.0f;
    float incidenceDependence = 0.0f;
    float attenuation = 0.0f;
    std::int32_t thinGlass = 0;
    float thickness = 4.0f;

    FZAttributeEx() = default;
    FZAttributeEx(const FZAttributeEx& other) : FZAttribute(other) { CopyExtension(other); }
    // Copies every field: the base block, anisotropic, the whole anisotropy
    // block (padding included) and the ten fields after it. Nothing is
    // validated or clamped on the way.
    FZAttributeEx& operator=(const FZAttributeEx& other)
    {
        if (this != &other) {
            FZAttribute::operator=(other);
            CopyExtension(other);
        }
        return *this;
    }

private:
    void CopyExtension(const FZAttributeEx& other)
    {
        anisotropic = other.anisotropic;
        std::memcpy(static_cast<void*>(&anisotropy), &other.anisotropy, sizeof(FZAnisotropy));
        colorTransparency = other.colorTransparency;
        emission = other.emission;
        smoothHighlight = other.smoothHighlight;
        smoothWidth = other.smoothWidth;
        rainbow = other.rainbow;
        stripeSpacing = other.stripeSpacing;
        incidenceDependence = other.incidenceDependence;
        attenuation = other.attenuation;
        thinGlass = other.thinGlass;
        thickness = other.thickness;
    }
};

// The layout is the contract.
static_assert(sizeof(FZColor) == 3 && alignof(FZColor) == 1);
static_assert(sizeof(FZPackedVector) == 6 && alignof(FZPackedVector) == 2);
static_assert(sizeof(float) == 4 && sizeof(std::int32_t) == 4);
static_assert(sizeof(FZAttribute) == 36);
static_assert(sizeof(FZAnisotropy) == 56);
static_assert(sizeof(FZAttributeEx) == 136);
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
#endif
static_assert(offsetof(FZAttribute, diffuse) == 0);
static_assert(offsetof(FZAttribute, highlightStrength) == 4);
static_assert(offsetof(FZAttribute, highlightSharpness) == 8);
static_assert(offsetof(FZAttribute, ambient) == 12);
static_assert(offsetof(FZAttribute, transparency) == 16);
static_assert(offsetof(FZAttribute, refractiveIndex) == 20);
static_assert(offsetof(FZAttribute, color) == 24);
static_assert(offsetof(FZAttribute, highlightColor) == 27);
static_assert(offsetof(FZAttribute, padding) == 30);
static_assert(offsetof(FZAttribute, reflection) == 32);
static_assert(offsetof(FZAnisotropy, type) == 0);
static_assert(offsetof(FZAnisotropy, grooveDepth) == 4);
static_assert(offsetof(FZAnisotropy, center) == 8);
static_assert(offsetof(FZAnisotropy, axis) == 20);
static_assert(offsetof(FZAnisotropy, padding) == 26);
static_assert(offsetof(FZAnisotropy, amplitude) == 28);
static_assert(offsetof(FZAnisotropy, waveCount) == 32);
static_assert(offsetof(FZAnisotropy, spiralTwist) == 36);
static_assert(offsetof(FZAnisotropy, wavePeriod) == 40);
static_assert(offsetof(FZAnisotropy, depthVariation) == 44);
static_assert(offsetof(FZAnisotropy, angle) == 48);
static_assert(offsetof(FZAnisotropy, grooveWidth) == 52);
static_assert(offsetof(FZAttributeEx, anisotropic) == 36);
static_assert(offsetof(FZAttributeEx, anisotropy) == 40);
static_assert(offsetof(FZAttributeEx, colorTransparency) == 96);
static_assert(offsetof(FZAttributeEx, emission) == 100);
static_assert(offsetof(FZAttributeEx, smoothHighlight) == 104);
static_assert(offsetof(FZAttributeEx, smoothWidth) == 108);
static_assert(offsetof(FZAttributeEx, rainbow) == 112);
static_assert(offsetof(FZAttributeEx, stripeSpacing) == 116);
static_assert(offsetof(FZAttributeEx, incidenceDependence) == 120);
static_assert(offsetof(FZAttributeEx, attenuation) == 124);
static_assert(offsetof(FZAttributeEx, thinGlass) == 128);
static_assert(offsetof(FZAttributeEx, thickness) == 132);
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

#endif
