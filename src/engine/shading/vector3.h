// The small vector and matrix types of the engine, used to turn groove
// facets into the frame of a tilted surface normal.
//
// Floats are stored, doubles are used in between.
#ifndef TAMERISK_ENGINE_SHADING_VECTOR3_H
#define TAMERISK_ENGINE_SHADING_VECTOR3_H

#include <cstdint>

// Three floats with three setters; the direction subclass normalises in each.
class FZVector3 {
public:
    float x = 0.0f;
    float y = 0.0f;
    float z = 0.0f;

    FZVector3() = default;
    FZVector3(const FZVector3&) = default;
    FZVector3& operator=(const FZVector3&) = default;
    virtual ~FZVector3() = default;

    // to - from, each point as a float triple.
    virtual void SetDifference(const float from[3], const float to[3]);
    virtual void Set(const float v[3]);
    virtual void Set(float vx, float vy, float vz);
};

// A vector kept at unit length: every setter normalises after storing. The
// length is raised to 1e-10 before dividing, so a zero vector stays zero.
class FZDirection3 : public FZVector3 {
public:
    FZDirection3() = default;
    FZDirection3(float vx, float vy, float vz) { FZDirection3::Set(vx, vy, vz); }

    void SetDifference(const float from[3], const float to[3]) override;
    void Set(const float v[3]) override;
    void Set(float vx, float vy, float vz) override;

private:
    void Normalise();
};

// A 4 x 4 matrix for row vectors: a point p maps to p x M, and row 3 holds
// the translation. The kind lets products and transforms skip work:
// 0 identity, 1 translation only, 4 general.
class FZMatrix4 {
public:
    static constexpr std::int16_t kIdentity = 0;
    static constexpr std::int16_t kTranslation = 1;
    static constexpr std::int16_t kGeneral = 4;

    float m[4][4];  // left unset by the constructor, like any plain array
    std::int16_t kind = kGeneral;

    void SetIdentity();
    void SetTranslation(float tx, float ty, float tz);
    // this = a x b (apply a first, then b). Two identities stay an identity,
    // two translations add; anything else is the full product.
    void SetProduct(const FZMatrix4& a, const FZMatrix4& b);
    // Right-handed rotation by the angle whose sine and cosine are given,
    // about the (unit) axis through the point.
    void SetRotation(double sine, double cosine, const FZDirection3& axis, const float point[3]);
    // The rotation that carries the direction of a onto that of b. False
    // when a and b point in opposite directions (the matrix is then unset).
    bool SetRotationOnto(const FZVector3& a, const FZVector3& b);
    // The same matrix, built directly: SetRotationOnto turns about the
    // origin between two translations by zero, whose products change no
    // element but turn a -0 into +0, which this does too.
    bool SetRotationOntoDirect(const FZVector3& a, const FZVector3& b);
    // in x M with the translation row included, renormalised; an identity
    // copies.
    void Transform(const FZDirection3& in, FZDirection3& out) const;

private:
    // The rotation about the origin (kind general).
    void SetAxisRotation(double sine, double cosine, const FZDirection3& axis);
    bool RotateOnto(const FZVector3& a, const FZVector3& b, bool direct);
};

#endif
