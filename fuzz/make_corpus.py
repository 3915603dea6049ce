#!/usr/bin/env python3
"""Writes the seed corpus of attribute_file_fuzz: one attribute file for every
version (0 to 10) and groove type, built field by field, and a few files
that the reader refuses. Run from anywhere; it rewrites
fuzz/corpus/attribute_file_fuzz/."""
import pathlib
import shutil
import struct

MAGIC = b"<Quorvantel Attribute>"
OUT = pathlib.Path(__file__).resolve().parent / "corpus" / "attribute_file_fuzz"


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


def main():
    shutil.rmtree(OUT, ignore_errors=True)
    OUT.mkdir(parents=True)
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
    for name, data in seeds.items():
        (OUT / name).write_bytes(data)
    print("%d seeds in %s" % (len(seeds), OUT))


if __name__ == "__main__":
    main()
