// Attribute files assembled byte by byte from the version table,
// independently of the code under test, and a material to put in them.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include <tamerisk/attribute.h>

using ByteVector = std::vector<std::uint8_t>;

inline bool SameBytes(const FZAttributeEx& a, const FZAttributeEx& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

// A material in which every field, stored in files or not, differs from its
// default.

inline FZAttributeEx DistinctiveMaterial(std::int32_t grooveType)
{
    FZAttributeEx r;
    r.diffuse = 0.25f;
    r.highlightStrength = 0.75f;
    r.highlightSharpness = 0.125f;
    r.ambient = 0.5f;
    r.transparency = 0.375f;
    r.refractiveIndex = 1.5f;
    r.color.SetBytes(10, 20, 30);
    r.highlightColor.SetBytes(40, 50, 60);
    r.reflection = 0.625f;
    r.anisotropic = 1;
    FZAnisotropy& a = r.anisotropy;
    a.type = grooveType;
    a.grooveDepth = 0.3f;
    a.center[0] = 0.2f;
    a.center[1] = 0.7f;
    a.center[2] = -1.0f;
    a.axis.x = 1000;
    a.axis.y = -2000;
    a.axis.z = 29900;
    a.amplitude = 0.2f;
    a.waveCount = 7;
    a.spiralTwist = -0.04f;
    a.wavePeriod = 12.0f;
    a.depthVariation = 0.85f;
    a.angle = 45.0f;
    a.grooveWidth = 2.5f;
    r.colorTransparency = 1;
    r.emission = 0.45f;
    r.smoothHighlight = 1;
    r.smoothWidth = 3.0f;
    r.rainbow = 1;
    r.stripeSpacing = 2500.0f;
    r.incidenceDependence = 0.65f;
    r.attenuation = 0.35f;
    r.thinGlass = 1;
    r.thickness = 12.0f;
    return r;
}

inline ByteVector QvaHeader(const std::string& version, std::size_t fill = 0)
{
    const std::string text = "<Quorvantel Attribute>" + version;
    ByteVector b(text.begin(), text.end());
    b.resize(b.size() + fill, 0);
    return b;
}

// One stored field of the record: where it lies and how wide it is.
// kPaddingField stands for the two padding bytes after the colours.
struct StoredField {
    std::size_t offset;
    std::size_t size;
};
inline constexpr std::size_t kPaddingField = SIZE_MAX;

// The fields a file of the given version holds of r, in file order, taken
// from the version table independently of the code under test.
inline std::vector<StoredField> StoredFields(const FZAttributeEx& r, int version)
{
    std::vector<StoredField> f;
    const auto add = [&](const auto&... fields) {
        (f.push_back({static_cast<std::size_t>(reinterpret_cast<const char*>(&fields) -
                                               reinterpret_cast<const char*>(&r)),
                      sizeof fields}),
         ...);
    };
    const FZAnisotropy& a = r.anisotropy;
    add(r.diffuse, r.highlightStrength, r.highlightSharpness, r.ambient, r.transparency, r.refractiveIndex,
        r.color.r, r.color.g, r.color.b, r.highlightColor.r, r.highlightColor.g, r.highlightColor.b);
    f.push_back({kPaddingField, 2});
    add(r.reflection);
    if (version < 4)
        return f;
    add(r.anisotropic);
    if (r.anisotropic != 0) {
        add(a.type);
        if (a.type >= 1 && a.type <= 3)
            add(a.grooveDepth, a.center[0], a.center[1], a.center[2], a.axis.x, a.axis.y, a.axis.z);
        if (a.type == 2)
            add(a.waveCount, a.amplitude);
        if (a.type == 3)
            add(a.spiralTwist);
        if (version >= 10)
            add(a.depthVariation);
    }
    if (version >= 5)
        add(r.colorTransparency, r.emission);
    if (version >= 6)
        add(r.smoothHighlight, r.smoothWidth);
    if (version >= 7)
        add(r.rainbow, r.stripeSpacing);
    if (version >= 8)
        add(r.incidenceDependence, r.attenuation);
    return f;
}

// The file of the given version holding r, little-endian; padding bytes are
// given as 0xEE by default, which readers must ignore.
inline ByteVector HandBuiltFile(const FZAttributeEx& r, int version, std::uint8_t padding = 0xEE)
{
    char digits[8];
    std::snprintf(digits, sizeof digits, "%04d", version);
    ByteVector b = QvaHeader(digits);
    if (version < 4)
        b.resize(512, 0x5A);
    for (const StoredField& s : StoredFields(r, version)) {
        if (s.offset == kPaddingField) {
            b.insert(b.end(), s.size, padding);
            continue;
        }
        std::uint32_t v = 0;  // the field's value, on this little-endian machine
        std::memcpy(&v, reinterpret_cast<const char*>(&r) + s.offset, s.size);
        for (std::size_t i = 0; i < s.size; ++i)
            b.push_back(static_cast<std::uint8_t>(v >> (8 * i)));
    }
    return b;
}

// What loading that file must give: r's stored fields, the rest at defaults.
inline FZAttributeEx ExpectedAfterLoad(const FZAttributeEx& r, int version)
{
    FZAttributeEx e;
    for (const StoredField& s : StoredFields(r, version))
        if (s.offset != kPaddingField)
            std::memcpy(reinterpret_cast<char*>(&e) + s.offset, reinterpret_cast<const char*>(&r) + s.offset,
                        s.size);
    return e;
}
