// Random material records for the fuzz-style tests and the golden table:
// half random bytes, half an extreme or ordinary value in every field. The
// same seed always gives the same records.
#ifndef TAMERISK_TESTS_PREVIEW_RECORD_MAKER_H
#define TAMERISK_TESTS_PREVIEW_RECORD_MAKER_H

#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <random>

#include <tamerisk/attribute.h>

class RecordMaker {
public:
    explicit RecordMaker(std::uint32_t seed) : rng_(seed) {}

    // Half of the records are random bytes; the other half put an extreme
    // or ordinary value into every field.
    FZAttributeEx Next()
    {
        FZAttributeEx m;
        if (rng_() % 2 == 0) {
            unsigned char bytes[sizeof(FZAttributeEx)];
            for (unsigned char& b : bytes)
                b = static_cast<unsigned char>(rng_());
            std::memcpy(static_cast<void*>(&m), bytes, sizeof bytes);
            return m;
        }
        for (float* f : {&m.diffuse, &m.highlightStrength, &m.highlightSharpness, &m.ambient, &m.transparency,
                         &m.refractiveIndex, &m.reflection, &m.anisotropy.grooveDepth, &m.anisotropy.center[0],
                         &m.anisotropy.center[1], &m.anisotropy.center[2], &m.anisotropy.amplitude,
                         &m.anisotropy.spiralTwist, &m.anisotropy.wavePeriod, &m.anisotropy.depthVariation,
                         &m.anisotropy.angle, &m.anisotropy.grooveWidth, &m.emission, &m.smoothWidth,
                         &m.stripeSpacing, &m.incidenceDependence, &m.attenuation, &m.thickness})
            *f = Float();
        for (std::int32_t* i : {&m.anisotropic, &m.anisotropy.type, &m.anisotropy.waveCount,
                                &m.colorTransparency, &m.smoothHighlight, &m.rainbow, &m.thinGlass})
            *i = Int();
        m.color.SetBytes(Byte(), Byte(), Byte());
        m.highlightColor.SetBytes(Byte(), Byte(), Byte());
        m.anisotropy.axis.x = static_cast<std::int16_t>(rng_());
        m.anisotropy.axis.y = static_cast<std::int16_t>(rng_());
        m.anisotropy.axis.z = static_cast<std::int16_t>(rng_());
        return m;
    }

    std::int32_t Bind() { return static_cast<std::int32_t>(rng_() % 3); }

private:
    float Float()
    {
        using L = std::numeric_limits<float>;
        static const float kSpecial[] = {L::quiet_NaN(), L::infinity(), -L::infinity(), L::max(), -L::max(),
                                         L::denorm_min(), L::min(), -0.0f, 0.0f, 1e30f, -1e30f, 1e-30f,
                                         1.0f, -1.0f, 0.5f, 2.0f, 1e6f, -1e6f, 1e9f, 120.0f};
        const std::uint32_t pick = rng_() % 40;
        if (pick < std::size(kSpecial))
            return kSpecial[pick];
        return std::uniform_real_distribution<float>(-2.0f, 2.0f)(rng_);
    }
    std::int32_t Int()
    {
        static const std::int32_t kSpecial[] = {0, 1, 2, 3, 4, 5, 11, 20, 21, -1, 36, 1000000,
                                                std::numeric_limits<std::int32_t>::min(),
                                                std::numeric_limits<std::int32_t>::max()};
        const std::uint32_t pick = rng_() % 20;
        if (pick < std::size(kSpecial))
            return kSpecial[pick];
        return static_cast<std::int32_t>(rng_());
    }
    std::uint8_t Byte() { return static_cast<std::uint8_t>(rng_()); }

    std::mt19937 rng_;
};


#endif
