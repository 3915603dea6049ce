// The JSON form of a material record and material loading for the tools
// (tamerisk-qva, tamerisk-render).
//
// The JSON form is one object: "version" first, then every field of
// FZAttributeEx under its name in the code, in declaration order:
//
//   {
//     "version": 10,
//     "diffuse": 0.8, "highlightStrength": 0.5, "highlightSharpness": 1,
//     "ambient": 0.3, "transparency": 0, "refractiveIndex": 1,
//     "color": [255, 255, 255], "highlightColor": [255, 255, 255],
//     "reflection": 0,
//     "anisotropic": 0,
//     "anisotropy": {
//       "type": 1, "grooveDepth": 0.15, "center": [0.5, 0.5, 0],
//       "axis": [0, 0, 30000], "amplitude": 0.1, "waveCount": 4,
//       "spiralTwist": 0.01, "wavePeriod": 30, "depthVariation": 0,
//       "angle": 0, "grooveWidth": 1
//     },
//     "colorTransparency": 0, "emission": 0, "smoothHighlight": 0,
//     "smoothWidth": 2, "rainbow": 0, "stripeSpacing": 1000,
//     "incidenceDependence": 0, "attenuation": 0, "thinGlass": 0,
//     "thickness": 4
//   }
//
// (printed one key a line). Colours are [r, g, b] bytes 0 to 255; "axis" is
// the packed direction as three integers -32768 to 32767; the flags, "type"
// and "waveCount" are 32-bit signed integers. The padding bytes of the record
// have no key.
//
// Floats are printed as the shortest decimal text that reads back to the
// very same float ("0.8", not "0.800000011920929"). Values that JSON numbers
// cannot hold are strings: "inf", "-inf", "nan" (the usual quiet NaN,
// bits 0x7fc00000), and "nan:0x" plus eight hex digits for any other NaN, so
// that every bit of every float survives a dump and a write.
#ifndef TAMERISK_APPS_MATERIAL_JSON_H
#define TAMERISK_APPS_MATERIAL_JSON_H

#include <QByteArray>
#include <QString>

#include <tamerisk/attribute.h>

#include "material/result_codes.h"

// The JSON form of record (UTF-8, ending in a newline). version is printed
// as "version": the version of the file the record came from.
QByteArray MaterialToJson(const FZAttributeEx& record, int version);

// Reads the JSON form. Keys that are missing take the record's defaults;
// "version" is ignored. Returns 0 and replaces record on success. On failure
// record is left as it was and error names the problem:
//   -8  the text is not JSON, or its top level is not an object;
//   -4  an unknown key, a value of the wrong type, or a number out of range
//       (the message names the key, e.g. "anisotropy.waveCount").
FZResult MaterialFromJson(const QByteArray& text, FZAttributeEx& record, QString& error);

// Reads a material from the bytes of a file of either form: an attribute file
// (.qva, recognised by its magic text) or the JSON form (the first character
// that is not white space is '{'). On success returns Ok, replaces record and
// sets *version (when given) to the file's version, 10 for JSON. On failure
// returns the result code (material/result_codes.h) and sets message to the
// code's Japanese message, source and the details, e.g.
//   不適当なﾊﾟﾗﾒｰﾀｰです。 m.json: key "anisotropy.waveCount" must be an integer ...
// record stays as it was. source names where the bytes came from (a path,
// "-" for standard input; may be empty).
FZResult ParseMaterial(const QByteArray& bytes, FZAttributeEx& record, QString& message,
                  int* version = nullptr, const QString& source = QString());

// ParseMaterial on the contents of the file at path. A file that cannot be
// read gives -5, a JSON file over 1 MiB gives -10. Used by
// `tamerisk-render --material PATH` and `tamerisk-qva write`. The path is
// taken as the bytes the system names files by, so that a name need not be
// UTF-8; the QString form encodes it as Qt does.
FZResult LoadMaterial(const QByteArray& path, FZAttributeEx& record, QString& message, int* version = nullptr);
FZResult LoadMaterial(const QString& path, FZAttributeEx& record, QString& message,
                 int* version = nullptr);

// ParseMaterial on what can be read from fd (standard input, a pipe), with
// the same 1 MiB limit for JSON; -6 when reading fails.
FZResult ReadMaterial(int fd, FZAttributeEx& record, QString& message, int* version = nullptr,
                      const QString& source = QString());

// Whether bytes would be read as the JSON form rather than as an attribute
// file: the first character past white space and a byte-order mark could
// start a JSON value.
bool LooksLikeJson(const QByteArray& bytes);

// What the tools print for a failure, in English: source, the code's
// message and detail, those given, joined by ": " ("a.qva: cannot open: No
// such file or directory").
QString ResultText(FZResult code, const QString& source, const QString& detail = QString());

// "error <code>: <message>", the first line the tools print on failure.
QString ErrorLine(FZResult code, const QString& message);

#endif
