#include "material/attribute_file.h"

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>

#include "material/file_replace.h"

namespace {

// The first version that stores each group of fields.
constexpr int kVersionAnisotropy = 4;
constexpr int kVersionEmission = 5;
constexpr int kVersionSmoothHighlight = 6;
constexpr int kVersionRainbow = 7;
constexpr int kVersionTransmission = 8;
constexpr int kVersionDepthVariation = 10;

constexpr int kVersionDigits = 4;

bool IsSupportedVersion(int version)
{
    return version >= 0 && version <= kAttributeFileHeader.currentVersion;
}

// Little-endian encoding done byte by byte, so that files are the same on
// every host whatever its own byte order.
class FieldWriter {
public:
    explicit FieldWriter(std::FILE* file) : file_(file) {}

    bool Int32(std::int32_t v) { return Unsigned(static_cast<std::uint32_t>(v), 4); }
    bool Int16(std::int16_t v) { return Unsigned(static_cast<std::uint16_t>(v), 2); }
    bool Float(float v)
    {
        std::uint32_t bits;
        std::memcpy(&bits, &v, sizeof bits);
        return Unsigned(bits, 4);
    }
    bool Color(const FZColor& c)
    {
        const std::uint8_t rgb[3] = {c.r, c.g, c.b};
        return Bytes(rgb, 3);
    }
    // Padding is written as zeros rather than as the bytes that happen to lie
    // in memory: the same record then always gives the same file, and nothing
    // of the host's memory ends up on disk. Readers ignore these bytes.
    bool Padding(std::size_t n)
    {
        const std::uint8_t zeros[4] = {0, 0, 0, 0};
        return n <= sizeof zeros && Bytes(zeros, n);
    }

private:
    bool Unsigned(std::uint32_t v, std::size_t n)
    {
        std::uint8_t b[4];
        for (std::size_t i = 0; i < n; ++i)
            b[i] = static_cast<std::uint8_t>(v >> (8 * i));
        return Bytes(b, n);
    }
    bool Bytes(const std::uint8_t* p, std::size_t n) { return std::fwrite(p, 1, n, file_) == n; }

    std::FILE* file_;
};

class FieldReader {
public:
    explicit FieldReader(std::FILE* file) : file_(file) {}

    bool Int32(std::int32_t& v)
    {
        std::uint32_t u;
        if (!Unsigned(u, 4))
            return false;
        v = static_cast<std::int32_t>(u);
        return true;
    }
    bool Int16(std::int16_t& v)
    {
        std::uint32_t u;
        if (!Unsigned(u, 2))
            return false;
        v = static_cast<std::int16_t>(static_cast<std::uint16_t>(u));
        return true;
    }
    bool Float(float& v)
    {
        std::uint32_t bits;
        if (!Unsigned(bits, 4))
            return false;
        std::memcpy(&v, &bits, sizeof v);
        return true;
    }
    bool Color(FZColor& c)
    {
        std::uint8_t rgb[3];
        if (!Bytes(rgb, 3))
            return false;
        c.SetBytes(rgb[0], rgb[1], rgb[2]);
        return true;
    }
    bool Padding(std::size_t n)
    {
        std::uint8_t ignored[4];
        return n <= sizeof ignored && Bytes(ignored, n);
    }

private:
    bool Unsigned(std::uint32_t& v, std::size_t n)
    {
        std::uint8_t b[4];
        if (!Bytes(b, n))
            return false;
        v = 0;
        for (std::size_t i = 0; i < n; ++i)
            v |= static_cast<std::uint32_t>(b[i]) << (8 * i);
        return true;
    }
    bool Bytes(std::uint8_t* p, std::size_t n) { return std::fread(p, 1, n, file_) == n; }

    std::FILE* file_;
};

// The file layout, walked in file order by the writer (Record is const) and
// by the reader alike, so that the two can never disagree. Each returns false
// at the first field that cannot be transferred.
template <class Io, class Base>
bool TransferBase(Io& io, Base& a)
{
    return io.Float(a.diffuse) && io.Float(a.highlightStrength) && io.Float(a.highlightSharpness)
           && io.Float(a.ambient) && io.Float(a.transparency) && io.Float(a.refractiveIndex)
           && io.Color(a.color) && io.Color(a.highlightColor) && io.Padding(2)
           && io.Float(a.reflection);
}

// The groove block. Which fields follow the type depends on the type just
// transferred; types outside 1 to 3 keep nothing but depthVariation.
template <class Io, class Anisotropy>
bool TransferAnisotropy(Io& io, Anisotropy& a, int version)
{
    if (!io.Int32(a.type))
        return false;
    if (a.type >= 1 && a.type <= 3) {
        if (!(io.Float(a.grooveDepth) && io.Float(a.center[0]) && io.Float(a.center[1])
              && io.Float(a.center[2]) && io.Int16(a.axis.x) && io.Int16(a.axis.y)
              && io.Int16(a.axis.z)))
            return false;
    }
    // waveCount comes before amplitude, the reverse of their order in memory.
    if (a.type == 2 && !(io.Int32(a.waveCount) && io.Float(a.amplitude)))
        return false;
    if (a.type == 3 && !io.Float(a.spiralTwist))
        return false;
    return version < kVersionDepthVariation || io.Float(a.depthVariation);
}

template <class Io, class Record>
bool TransferRecord(Io& io, Record& r, int version)
{
    if (!TransferBase(io, r))
        return false;
    if (version < kVersionAnisotropy)
        return true;
    if (!io.Int32(r.anisotropic))
        return false;
    if (r.anisotropic != 0 && !TransferAnisotropy(io, r.anisotropy, version))
        return false;
    return (version < kVersionEmission || (io.Int32(r.colorTransparency) && io.Float(r.emission)))
           && (version < kVersionSmoothHighlight
               || (io.Int32(r.smoothHighlight) && io.Float(r.smoothWidth)))
           && (version < kVersionRainbow || (io.Int32(r.rainbow) && io.Float(r.stripeSpacing)))
           && (version < kVersionTransmission
               || (io.Float(r.incidenceDependence) && io.Float(r.attenuation)));
}

// Skips count bytes; false when the file ends first.
bool SkipBytes(std::FILE* file, long count)
{
    std::uint8_t scratch[256];
    while (count > 0) {
        const std::size_t n = count < static_cast<long>(sizeof scratch) ? static_cast<std::size_t>(count)
                                                                         : sizeof scratch;
        if (std::fread(scratch, 1, n, file) != n)
            return false;
        count -= static_cast<long>(n);
    }
    return true;
}

// Four decimal digits, nothing else: every writer of the format produced
// "%04d" of a non-negative version, so anything else is not one of our files.
bool ParseVersion(const char text[kVersionDigits], int& version)
{
    int value = 0;
    for (int i = 0; i < kVersionDigits; ++i) {
        if (text[i] < '0' || text[i] > '9')
            return false;
        value = value * 10 + (text[i] - '0');
    }
    version = value;
    return true;
}

// The whole version 10 file, built in memory so that it reaches the disk in
// one checked write.
FZResult EncodeFile(const FZAttributeEx& record, std::string& bytes)
{
    char* buffer = nullptr;
    std::size_t size = 0;
    std::FILE* file = ::open_memstream(&buffer, &size);
    if (file == nullptr)
        return FZResult::OutOfMemory;
    FZResult rc = WriteFileHeader(file, kAttributeFileHeader);
    if (rc == FZResult::Ok)
        rc = Write(file, record, kAttributeFileHeader.currentVersion);
    if (std::fclose(file) != 0 && rc == FZResult::Ok)
        rc = FZResult::OutOfMemory;
    if (rc == FZResult::Ok)
        bytes.assign(buffer, size);
    std::free(buffer);
    return rc;
}

}  // namespace

FZResult WriteFileHeader(std::FILE* file, const FZFileHeader& header)
{
    if (header.currentVersion < 0 || header.currentVersion > 9999)
        return FZResult::BadParameter;
    char digits[kVersionDigits + 1];
    std::snprintf(digits, sizeof digits, "%04d", header.currentVersion);
    const std::size_t magicLength = static_cast<std::size_t>(header.magicLength);
    if (std::fwrite(header.magic, 1, magicLength, file) != magicLength
        || std::fwrite(digits, 1, kVersionDigits, file) != kVersionDigits)
        return FZResult::WriteFailed;
    for (int i = header.magicLength + kVersionDigits; i < header.headerSize; ++i) {
        if (std::fputc(0, file) == EOF)
            return FZResult::WriteFailed;
    }
    return FZResult::Ok;
}

FZResult ReadFileHeader(std::FILE* file, const FZFileHeader& header, int& version)
{
    const std::size_t magicLength = static_cast<std::size_t>(header.magicLength);
    std::string magic(magicLength, '\0');
    if (std::fread(magic.data(), 1, magicLength, file) != magicLength)
        return FZResult::ReadFailed;
    if (std::memcmp(magic.data(), header.magic, magicLength) != 0)
        return FZResult::BadFormat;
    char digits[kVersionDigits];
    if (std::fread(digits, 1, kVersionDigits, file) != kVersionDigits)
        return FZResult::ReadFailed;
    int fileVersion = 0;
    if (!ParseVersion(digits, fileVersion))
        return FZResult::BadFormat;
    if (fileVersion > header.currentVersion)
        return FZResult::BadVersion;
    const int size = fileVersion < header.legacyBelowVersion ? header.legacyHeaderSize : header.headerSize;
    if (!SkipBytes(file, static_cast<long>(size) - header.magicLength - kVersionDigits))
        return FZResult::ReadFailed;
    version = fileVersion;
    return FZResult::Ok;
}

FZResult Write(std::FILE* file, const FZAttributeEx& record, int version)
{
    if (!IsSupportedVersion(version))
        return FZResult::BadParameter;
    FieldWriter writer(file);
    return TransferRecord(writer, record, version) ? FZResult::Ok : FZResult::WriteFailed;
}

FZResult Read(std::FILE* file, FZAttributeEx& record, int version)
{
    if (!IsSupportedVersion(version))
        return FZResult::BadParameter;
    // Fields an older file lacks keep these defaults; a file that ends inside
    // the record leaves the caller's record alone.
    FZAttributeEx loaded;
    FieldReader reader(file);
    if (!TransferRecord(reader, loaded, version))
        return FZResult::ReadFailed;
    record = loaded;
    return FZResult::Ok;
}

FZResult SaveAttributeFile(const char* path, const FZAttributeEx& record, std::string* reason)
{
    std::string bytes;
    const FZResult encoded = EncodeFile(record, bytes);
    if (encoded != FZResult::Ok)
        return encoded;
    FileWriteResult written = ReplaceFile(path, bytes.data(), bytes.size());
    if (reason != nullptr)
        *reason = std::move(written.reason);
    return written.code;
}

FZResult LoadAttributeStream(std::FILE* file, FZAttributeEx& record, int* version)
{
    int fileVersion = 0;
    FZResult rc = ReadFileHeader(file, kAttributeFileHeader, fileVersion);
    if (rc == FZResult::Ok)
        rc = Read(file, record, fileVersion);
    if (rc == FZResult::Ok && version != nullptr)
        *version = fileVersion;
    return rc;
}

FZResult LoadAttributeFile(const char* path, FZAttributeEx& record, int* version, std::string* reason)
{
    std::FILE* file = path != nullptr ? std::fopen(path, "rb") : nullptr;
    if (file == nullptr) {
        if (reason != nullptr && path != nullptr)
            *reason = std::strerror(errno);
        return FZResult::OpenFailed;
    }
    const FZResult rc = LoadAttributeStream(file, record, version);
    std::fclose(file);
    return rc;
}

FZResult LoadAttributeBytes(const void* data, std::size_t size, FZAttributeEx& record, int* version)
{
    // An empty buffer is an empty file; fmemopen wants a buffer all the same.
    static char empty = '\0';
    std::FILE* file = ::fmemopen(size > 0 ? const_cast<void*>(data) : &empty, size, "rb");
    if (file == nullptr)
        return FZResult::OutOfMemory;
    const FZResult rc = LoadAttributeStream(file, record, version);
    std::fclose(file);
    return rc;
}
