#!/usr/bin/env python3
"""Writes tests/preview/golden_frames.txt, the checksums of the frames the
golden test renders (every benchmark material and 256 random records on the
four sample shapes at 120 x 120 and 97 x 61), from the renderer as built in
build/. Run it only when the pictures are meant to change; the golden test
then holds the renderer to the new table.

    scripts/make_goldens.py [--build build]
"""
import argparse
import os
import subprocess
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--build", default=os.path.join(ROOT, "build"))
    args = parser.parse_args()
    subprocess.run(["cmake", "--build", args.build, "--target", "test_preview"], check=True)
    env = dict(os.environ, TAMERISK_WRITE_GOLDENS="1")
    test = os.path.join(args.build, "bin", "test_preview")
    subprocess.run([test, "--gtest_filter=Goldens.*"], env=env, check=True)
    # Read back, so that a table the test can match is what was written.
    subprocess.run([test, "--gtest_filter=Goldens.*"], check=True)
    table = os.path.join(ROOT, "tests", "preview", "golden_frames.txt")
    with open(table) as f:
        print(f"{table}: {sum(1 for line in f if not line.startswith('#'))} frames")
    return 0


if __name__ == "__main__":
    sys.exit(main())
