#!/usr/bin/env python3
"""Writes the seed corpora of the fuzz targets. attribute_file_fuzz: one
attribute file for every version (0 to 10) and groove type, built field by
field, and a few files that the reader refuses. json_reader_fuzz: a material
in its JSON form and texts for each corner of the grammar. settings_reader_fuzz:
settings files as hosts and hands leave them. Run from anywhere; it rewrites
fuzz/corpus/<target>/ for each."""
import pathlib
import shutil
import struct

MAGIC = b"<Quorvantel Attribute>"
CORPUS = pathlib.Path(__file__).resolve().parent / "corpus"


def base_part():
    # diffuse .. refractiveIndex, colour, highlight colour, padding, reflection
    return (struct.pack("<6f", 0.8, 0.5, 1.0, 0.3, 0.25, 1.5)
            + bytes([200, 100, 50, 255, 255, 255, 0, 0]) + struct.pack("<f", 0.1))


def groove_block(kind, version):
    block = struct.pack("<i", kind)
    if 1 <= kind <= 3:
        block += struct.pack("<4f3h", 0.15, 0.5, 0.5, 0.0, 0, 0, 30000)
    if kind == 2:
        block += struct.pack("<if", 6, 0.2)   # waveCount before amplitude
    if kind == 3:
        block += struct.pack("<f", 0.02)
    if version >= 10:
        block += struct.pack("<f", 0.4)
    return block


def attribute_file(version, kind):
    data = MAGIC + b"%04d" % version
    if version < 4:
        data += bytes(512 - len(data))
    data += base_part()
    if version >= 4:
        data += struct.pack("<i", 1 if kind else 0)
        if kind:
            data += groove_block(kind, version)
    if version >= 5:
        data += struct.pack("<if", 1, 0.05)   # colorTransparency, emission
    if version >= 6:
        data += struct.pack("<if", 1, 2.0)    # smoothHighlight, smoothWidth
    if version >= 7:
        data += struct.pack("<if", 1, 1500.0)  # rainbow, stripeSpacing
    if version >= 8:
        data += struct.pack("<2f", 0.3, 0.6)  # incidenceDependence, attenuation
    return data


def attribute_seeds():
    seeds = {}
    for version in range(0, 11):
        kinds = [0] if version < 4 else [0, 1, 2, 3, 5]
        for kind in kinds:
            seeds["v%02d-type%d.qva" % (version, kind)] = attribute_file(version, kind)
    good = attribute_file(10, 2)
    seeds["refused-short-header.qva"] = MAGIC[:10]
    seeds["refused-cut-record.qva"] = good[:-3]
    seeds["refused-magic.qva"] = b"<Quorvantel Attributes" + good[22:]
    seeds["refused-digits.qva"] = MAGIC + b"00x9" + good[26:]
    seeds["refused-v11.qva"] = MAGIC + b"0011" + good[26:]
    return seeds


MATERIAL_JSON = b"""{
  "version": 10,
  "diffuse": 0.8, "highlightStrength": 0.5, "highlightSharpness": 1,
  "ambient": 0.3, "transparency": 0, "refractiveIndex": 1,
  "color": [255, 255, 255], "highlightColor": [255, 255, 255],
  "reflection": "nan:0x7fc00123", "anisotropic": 1,
  "anisotropy": {
    "type": 2, "grooveDepth": 0.15, "center": [0.5, 0.5, 0],
    "axis": [0, 0, 30000], "amplitude": 0.1, "waveCount": 4,
    "spiralTwist": 0.01, "wavePeriod": 30, "depthVariation": 0,
    "angle": 0, "grooveWidth": 1
  },
  "colorTransparency": 0, "emission": "inf", "smoothHighlight": 1,
  "smoothWidth": 1e9, "rainbow": 0, "stripeSpacing": 1000,
  "incidenceDependence": 0, "attenuation": -0.0, "thinGlass": 0,
  "thickness": 4
}
"""


def json_seeds():
    return {
        "material.json": MATERIAL_JSON,
        "scalars.json": b'[null, true, false, 0, -0, 12.5e-3, -1E+308, "", "x"]',
        "escapes.json": b'{"a\\b": "\\"\\/\\b\\f\\n\\r\\t\\u00e9\\ud83d\\ude00", "raw": "\xc3\xa9\xff"}',
        "duplicates.json": b'{"k": 1, "k": [], "k": {}}',
        "deep.json": b"[" * 64 + b"]" * 64,
        "refused-too-deep.json": b"[" * 70 + b"]" * 70,
        "refused-trailing-comma.json": b'{"a": 1,}',
        "refused-unterminated.json": b'{"a": "text',
        "refused-lone-surrogate.json": b'["\\udc00"]',
        "refused-number.json": b"[01, 1., -]",
        "refused-after-value.json": b"{} {}",
    }


def settings_seeds():
    return {
        "tamerisk.ini": b"[Window]\nTop=40\nLeft=-50\nDisplay=1\n[LargePreview]\nWidth=700\nHeight=300\n",
        "crlf.ini": b"[Window]\r\nTop=1\r\nLeft=2\r\n\r\n[Other]\r\nName=kept\r\n",
        "hand-edited.ini": b"; comment\n  [ window ]  \n top = 12px\nLeft=abc\nDisplay=+7\n[Window]\nTop=9\n",
        "not-utf8.ini": b"[\xff\xfe]\nName=\x80\x81\n[Window]\nTop=99999999999999999999\nLeft=-99999999999",
        "no-section.ini": b"Top=5\n[]\nTop=6\n[LargePreview]",
        "empty.ini": b"",
        # A lone carriage return ends no line; the last line keeps it.
        "last-line-cr.ini": b"[W]\r\n[]\r\nTop=5\r\r",
        "last-line-cr-lf-file.ini": b"[W]\n[]\nTop=5\r",
    }


def write(target, seeds):
    out = CORPUS / target
    shutil.rmtree(out, ignore_errors=True)
    out.mkdir(parents=True)
    for name, data in seeds.items():
        (out / name).write_bytes(data)
    print("%d seeds in %s" % (len(seeds), out))


def main():
    write("attribute_file_fuzz", attribute_seeds())
    write("json_reader_fuzz", json_seeds())
    write("settings_reader_fuzz", settings_seeds())


if __name__ == "__main__":
    main()
