// Attribute files (".qva"): a material record saved behind a short text
// header.
//
// A file starts with the magic text "<Quorvantel Attribute>" (22 characters,
// no terminator) and the format version as four decimal digits ("0010").
// Files of versions 0 to 3 pad that header with zeros to 512 bytes. The
// record follows, little-endian on every host, holding the fields that its
// version knows:
//
//   0..3   the base part: six floats, colour and highlight colour (3 bytes
//          each), 2 padding bytes, reflection
//   4      + anisotropic, and when it is not 0 the groove block by type:
//            1      type, grooveDepth, center[3], axis (3 x int16)
//            2      as 1, then waveCount, amplitude
//            3      as 1, then spiralTwist
//            other  type only
//   5      + colorTransparency, emission
//   6      + smoothHighlight, smoothWidth
//   7      + rainbow, stripeSpacing
//   8, 9   + incidenceDependence, attenuation
//   10     + depthVariation at the end of the groove block
//
// thinGlass, thickness, wavePeriod, angle and grooveWidth are never stored,
// so loading a file gives them their defaults. Saving writes version 10.
//
// Every function returns FZResult::Ok or the reason it failed; the numbers
// below are the result codes.
#ifndef TAMERISK_MATERIAL_ATTRIBUTE_FILE_H
#define TAMERISK_MATERIAL_ATTRIBUTE_FILE_H

#include <cstddef>
#include <cstdio>
#include <string>

#include <tamerisk/attribute.h>

#include "material/result_codes.h"

// What a file header looks like: the magic text, the version written, and how
// many bytes the header takes before the record.
struct FZFileHeader {
    const char* magic;
    int magicLength;
    int headerSize;
    int currentVersion;
    // Files older than legacyBelowVersion have a header of legacyHeaderSize
    // bytes, whatever headerSize says.
    int legacyBelowVersion;
    int legacyHeaderSize;
};

inline constexpr FZFileHeader kAttributeFileHeader{"<Quorvantel Attribute>", 22, 26, 10, 4, 512};

// Writes the magic text, currentVersion as four digits and zeros up to
// headerSize. -7 on a short write; -4 for a version outside 0 to 9999.
FZResult WriteFileHeader(std::FILE* file, const FZFileHeader& header);

// Reads a header and sets version to the file's version. -6 when the file ends
// inside the header (legacy padding included), -8 when the magic text differs
// or the four version characters are not decimal digits, -9 for a version
// newer than currentVersion. The file is left at the start of the record.
FZResult ReadFileHeader(std::FILE* file, const FZFileHeader& header, int& version);

// Writes the fields that the given version stores (0 to 10). Padding bytes
// are written as zeros. -7 on the first short write, -4 for another version.
FZResult Write(std::FILE* file, const FZAttributeEx& record, int version);

// Reads the fields that the given version stores into a default record and
// assigns it to record. -6 when the file ends inside the record, which then
// stays as it was; -4 for a version outside 0 to 10. Bytes after the record
// are not looked at.
FZResult Read(std::FILE* file, FZAttributeEx& record, int version);

// Writes a whole version 10 file to path through ReplaceFile
// (material/file_replace.h): the file it replaces is never lost. -5 when the
// target may not be written or nothing can be created beside it, -7 when
// writing fails; reason (when given) then receives the system's reason.
FZResult SaveAttributeFile(const char* path, const FZAttributeEx& record, std::string* reason = nullptr);

// Reads a whole file (header and record). On success record is replaced by
// what the file holds, with every field it lacks at its default, and *version
// (when given) is set to the file's version. On failure neither changes: -5
// when the file cannot be opened, with the system's reason in reason (when
// given), otherwise as ReadFileHeader and Read.
FZResult LoadAttributeFile(const char* path, FZAttributeEx& record, int* version = nullptr,
                           std::string* reason = nullptr);

// As LoadAttributeFile, from an open file positioned at the header.
FZResult LoadAttributeStream(std::FILE* file, FZAttributeEx& record, int* version = nullptr);

// As LoadAttributeFile, from the bytes of a file held in memory.
FZResult LoadAttributeBytes(const void* data, std::size_t size, FZAttributeEx& record,
                       int* version = nullptr);

#endif
