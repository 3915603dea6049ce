#include "qva_reader.h"

#include <QDataStream>
#include <QFile>

namespace {

constexpr char kMagic[] = "<Quorvantel Attribute>";
constexpr int kMagicLength = 22;
constexpr int kCurrentVersion = 10;
// Files before version 4 pad their header with zeros to 512 bytes.
constexpr int kFirstShortHeaderVersion = 4;
constexpr int kLegacyPadding = 512 - kMagicLength - 4;

// The version as four decimal digits, or -1.
int ParseVersion(const QByteArray& digits)
{
    if (digits.size() != 4)
        return -1;
    for (char c : digits) {
        if (c < '0' || c > '9')
            return -1;
    }
    return digits.toInt();
}

void ReadColor(QDataStream& in, FZColor& color)
{
    quint8 r = 0, g = 0, b = 0;
    in >> r >> g >> b;
    color.SetBytes(r, g, b);
}

void ReadBase(QDataStream& in, FZAttribute& m)
{
    in >> m.diffuse >> m.highlightStrength >> m.highlightSharpness >> m.ambient
        >> m.transparency >> m.refractiveIndex;
    ReadColor(in, m.color);
    ReadColor(in, m.highlightColor);
    in.skipRawData(2);  // padding, of no meaning
    in >> m.reflection;
}

// The groove block holds only what the pattern type uses.
void ReadGrooves(QDataStream& in, FZAnisotropy& a, int version)
{
    in >> a.type;
    if (a.type >= 1 && a.type <= 3) {
        in >> a.grooveDepth >> a.center[0] >> a.center[1] >> a.center[2] >> a.axis.x >> a.axis.y
            >> a.axis.z;
        if (a.type == 2)
            in >> a.waveCount >> a.amplitude;
        else if (a.type == 3)
            in >> a.spiralTwist;
    }
    if (version >= 10)
        in >> a.depthVariation;
}

void ReadRecord(QDataStream& in, FZAttributeEx& m, int version)
{
    ReadBase(in, m);
    if (version < 4)
        return;
    in >> m.anisotropic;
    if (m.anisotropic != 0)
        ReadGrooves(in, m.anisotropy, version);
    if (version >= 5)
        in >> m.colorTransparency >> m.emission;
    if (version >= 6)
        in >> m.smoothHighlight >> m.smoothWidth;
    if (version >= 7)
        in >> m.rainbow >> m.stripeSpacing;
    if (version >= 8)
        in >> m.incidenceDependence >> m.attenuation;
}

} // namespace

QString ReadQvaFile(const QString& path, FZAttributeEx& material)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("cannot open %1: %2").arg(path, file.errorString());
    const QByteArray magic = file.read(kMagicLength);
    const QByteArray digits = file.read(4);
    if (digits.size() < 4)
        return QStringLiteral("%1 is too short for an attribute file").arg(path);
    const int version = ParseVersion(digits);
    if (magic != QByteArray(kMagic) || version < 0)
        return QStringLiteral("%1 is not an attribute file").arg(path);
    if (version > kCurrentVersion)
        return QStringLiteral("%1 has version %2; versions up to %3 are known")
            .arg(path)
            .arg(version)
            .arg(kCurrentVersion);

    QDataStream in(&file);
    in.setByteOrder(QDataStream::LittleEndian);
    in.setFloatingPointPrecision(QDataStream::SinglePrecision);
    if (version < kFirstShortHeaderVersion)
        in.skipRawData(kLegacyPadding);
    FZAttributeEx read;
    ReadRecord(in, read, version);
    if (in.status() != QDataStream::Ok)
        return QStringLiteral("%1 ends inside the material").arg(path);
    material = read;
    return {};
}
