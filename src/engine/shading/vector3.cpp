#include "engine/shading/vector3.h"

#include <cmath>

namespace {

double LengthOf(const FZVector3& v)
{
    return std::sqrt(static_cast<double>(v.x) * v.x + static_cast<double>(v.y) * v.y
                     + static_cast<double>(v.z) * v.z);
}

// The axis a x b, normalised.
FZDirection3 AxisOf(const FZVector3& a, const FZVector3& b)
{
    return FZDirection3(static_cast<float>(static_cast<double>(a.y) * b.z - static_cast<double>(a.z) * b.y),
                        static_cast<float>(static_cast<double>(a.z) * b.x - static_cast<double>(a.x) * b.z),
                        static_cast<float>(static_cast<double>(a.x) * b.y - static_cast<double>(a.y) * b.x));
}

} // namespace

void FZVector3::SetDifference(const float from[3], const float to[3])
{
    x = static_cast<float>(static_cast<double>(to[0]) - from[0]);
    y = static_cast<float>(static_cast<double>(to[1]) - from[1]);
    z = static_cast<float>(static_cast<double>(to[2]) - from[2]);
}

void FZVector3::Set(const float v[3])
{
    x = v[0];
    y = v[1];
    z = v[2];
}

void FZVector3::Set(float vx, float vy, float vz)
{
    x = vx;
    y = vy;
    z = vz;
}

void FZDirection3::SetDifference(const float from[3], const float to[3])
{
    FZVector3::SetDifference(from, to);
    Normalise();
}

void FZDirection3::Set(const float v[3])
{
    FZVector3::Set(v);
    Normalise();
}

void FZDirection3::Set(float vx, float vy, float vz)
{
    FZVector3::Set(vx, vy, vz);
    Normalise();
}

void FZDirection3::Normalise()
{
    double length = LengthOf(*this);
    if (length < 1e-10)
        length = 1e-10;
    x = static_cast<float>(x / length);
    y = static_cast<float>(y / length);
    z = static_cast<float>(z / length);
}

void FZMatrix4::SetIdentity()
{
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            m[i][j] = i == j ? 1.0f : 0.0f;
    kind = kIdentity;
}

void FZMatrix4::SetTranslation(float tx, float ty, float tz)
{
    SetIdentity();
    m[3][0] = tx;
    m[3][1] = ty;
    m[3][2] = tz;
    kind = kTranslation;
}

void FZMatrix4::SetProduct(const FZMatrix4& a, const FZMatrix4& b)
{
    if (a.kind == kIdentity && b.kind == kIdentity) {
        SetIdentity();
        return;
    }
    if (a.kind == kTranslation && b.kind == kTranslation) {
        SetTranslation(static_cast<float>(static_cast<double>(a.m[3][0]) + b.m[3][0]),
                       static_cast<float>(static_cast<double>(a.m[3][1]) + b.m[3][1]),
                       static_cast<float>(static_cast<double>(a.m[3][2]) + b.m[3][2]));
        return;
    }
    // Into a scratch copy first: this may be a or b.
    float product[4][4];
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            double sum = 0.0;
            for (int k = 0; k < 4; ++k)
                sum += static_cast<double>(a.m[i][k]) * b.m[k][j];
            product[i][j] = static_cast<float>(sum);
        }
    }
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            m[i][j] = product[i][j];
    kind = kGeneral;
}

void FZMatrix4::SetAxisRotation(double sine, double cosine, const FZDirection3& axis)
{
    const double ax = axis.x;
    const double ay = axis.y;
    const double az = axis.z;
    const double t = 1.0 - cosine;
    // The column-vector matrix R of Rodrigues' formula, stored transposed
    // because points are row vectors here (p x M = (R p^T)^T).
    const double r[3][3] = {
        {cosine + ax * ax * t, ax * ay * t - az * sine, ax * az * t + ay * sine},
        {ay * ax * t + az * sine, cosine + ay * ay * t, ay * az * t - ax * sine},
        {az * ax * t - ay * sine, az * ay * t + ax * sine, cosine + az * az * t},
    };
    SetIdentity();
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            m[i][j] = static_cast<float>(r[j][i]);
    kind = kGeneral;
}

void FZMatrix4::SetRotation(double sine, double cosine, const FZDirection3& axis, const float point[3])
{
    FZMatrix4 rotation;
    rotation.SetAxisRotation(sine, cosine, axis);
    FZMatrix4 toOrigin;
    FZMatrix4 back;
    toOrigin.SetTranslation(-point[0], -point[1], -point[2]);
    back.SetTranslation(point[0], point[1], point[2]);
    FZMatrix4 first;
    first.SetProduct(toOrigin, rotation);
    SetProduct(first, back);
}

bool FZMatrix4::SetRotationOnto(const FZVector3& a, const FZVector3& b)
{
    return RotateOnto(a, b, false);
}

bool FZMatrix4::SetRotationOntoDirect(const FZVector3& a, const FZVector3& b)
{
    return RotateOnto(a, b, true);
}

bool FZMatrix4::RotateOnto(const FZVector3& a, const FZVector3& b, bool direct)
{
    // The direct form works the axis out first, whether it is needed or
    // not, so that the processor overlaps it with the angle.
    FZDirection3 early;
    if (direct)
        early = AxisOf(a, b);
    const double lengthA = LengthOf(a);
    const double lengthB = LengthOf(b);
    // Kept in double: for opposite directions sin(acos(-1)) must come out
    // below 1e-10, which a float angle would not.
    double gamma = 0.0;
    if (!(lengthA < 1e-10 || lengthB < 1e-10)) {
        double c = (static_cast<double>(a.x) * b.x + static_cast<double>(a.y) * b.y
                    + static_cast<double>(a.z) * b.z) / (lengthA * lengthB);
        c = c > 1.0 ? 1.0 : (c < -1.0 ? -1.0 : c);
        gamma = std::acos(c);
    }
    const double sine = std::sin(gamma);
    const double cosine = std::cos(gamma);
    if (std::fabs(sine) >= 1e-10) {
        if (!direct) {
            const float origin[3] = {0.0f, 0.0f, 0.0f};
            SetRotation(sine, cosine, AxisOf(a, b), origin);
            return true;
        }
        SetAxisRotation(sine, cosine, early);
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j)
                m[i][j] += 0.0f;  // -0 becomes +0, as in the products
        return true;
    }
    if (cosine >= 0.0) {
        SetIdentity();
        return true;
    }
    return false;
}

void FZMatrix4::Transform(const FZDirection3& in, FZDirection3& out) const
{
    if (kind == kIdentity) {
        out = in;
        return;
    }
    float v[3];
    for (int j = 0; j < 3; ++j)
        v[j] = static_cast<float>(static_cast<double>(in.x) * m[0][j] + static_cast<double>(in.y) * m[1][j]
                                  + static_cast<double>(in.z) * m[2][j] + m[3][j]);
    out.Set(v);
}
