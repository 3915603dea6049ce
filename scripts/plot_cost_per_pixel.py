#!/usr/bin/env python3
"""Draws the renderer's cost per pixel against the frame size as an SVG.

    TAMERISK_BENCH_SIZES=120,256,512,1024,2048 \\
        build/bin/render_bench --benchmark_filter='threads:[2-9]' \\
        --benchmark_format=json > bench.json
    scripts/plot_cost_per_pixel.py bench.json docs/cost_per_pixel.svg

One line per benchmark (ApplyMaterial per material, BuildSampleShape per
shape) of the parallel runs; both axes are logarithmic. Needs nothing but
Python's standard library.
"""
import json
import math
import sys

WIDTH, HEIGHT = 760, 400
LEFT, RIGHT, TOP, BOTTOM = 70, 270, 20, 50
COLOURS = ["#1f77b4", "#ff7f0e", "#2ca02c", "#d62728", "#9467bd", "#8c564b",
           "#e377c2", "#7f7f7f", "#bcbd22", "#17becf", "#393b79", "#ad494a",
           "#637939", "#843c39"]


def read_series(path):
    """{name: [(size, nanoseconds per pixel)]} of the parallel runs."""
    series = {}
    for run in json.load(open(path))["benchmarks"]:
        if run.get("run_type") == "aggregate" or "per_pixel" not in run:
            continue
        parts = dict(p.split(":", 1) for p in run["name"].split("/") if ":" in p)
        if "size" not in parts or int(parts.get("threads", "1")) < 2:
            continue
        name = "/".join(p for p in run["name"].split("/") if ":" not in p and p != "real_time")
        series.setdefault(name, []).append((int(parts["size"]), run["per_pixel"] * 1e9))
    return {k: sorted(v) for k, v in series.items()}


def svg(series):
    sizes = sorted({s for points in series.values() for s, _ in points})
    costs = [c for points in series.values() for _, c in points]
    x0, x1 = math.log10(sizes[0]), math.log10(sizes[-1])
    y0 = math.floor(math.log10(min(costs)))
    y1 = math.ceil(math.log10(max(costs)))
    if x1 == x0:
        x1 = x0 + 1

    def px(size):
        return LEFT + (math.log10(size) - x0) / (x1 - x0) * (WIDTH - LEFT - RIGHT)

    def py(cost):
        return HEIGHT - BOTTOM - (math.log10(cost) - y0) / (y1 - y0) * (HEIGHT - TOP - BOTTOM)

    out = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH}" height="{HEIGHT}" '
           'font-family="sans-serif" font-size="11">',
           f'<rect width="{WIDTH}" height="{HEIGHT}" fill="white"/>']
    for size in sizes:
        out.append(f'<line x1="{px(size):.1f}" y1="{TOP}" x2="{px(size):.1f}" y2="{HEIGHT - BOTTOM}" stroke="#ddd"/>')
        out.append(f'<text x="{px(size):.1f}" y="{HEIGHT - BOTTOM + 15}" text-anchor="middle">{size}</text>')
    for e in range(y0, y1 + 1):
        y = py(10 ** e)
        out.append(f'<line x1="{LEFT}" y1="{y:.1f}" x2="{WIDTH - RIGHT}" y2="{y:.1f}" stroke="#ddd"/>')
        out.append(f'<text x="{LEFT - 6}" y="{y + 4:.1f}" text-anchor="end">{10 ** e:g} ns</text>')
    out.append(f'<text x="{(LEFT + WIDTH - RIGHT) / 2}" y="{HEIGHT - 12}" text-anchor="middle">'
               'frame side (pixels)</text>')
    out.append(f'<text x="14" y="{(TOP + HEIGHT - BOTTOM) / 2}" text-anchor="middle" '
               f'transform="rotate(-90 14 {(TOP + HEIGHT - BOTTOM) / 2})">time per pixel</text>')
    for i, (name, points) in enumerate(sorted(series.items())):
        colour = COLOURS[i % len(COLOURS)]
        path = " ".join(f"{px(s):.1f},{py(c):.1f}" for s, c in points)
        out.append(f'<polyline points="{path}" fill="none" stroke="{colour}" stroke-width="2"/>')
        y = TOP + 14 * i + 8
        out.append(f'<line x1="{WIDTH - RIGHT + 10}" y1="{y}" x2="{WIDTH - RIGHT + 28}" y2="{y}" '
                   f'stroke="{colour}" stroke-width="2"/>')
        out.append(f'<text x="{WIDTH - RIGHT + 32}" y="{y + 4}">{name}</text>')
    out.append("</svg>")
    return "\n".join(out) + "\n"


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    series = read_series(sys.argv[1])
    if not series:
        sys.exit("no parallel runs with a per_pixel counter in " + sys.argv[1])
    with open(sys.argv[2], "w") as f:
        f.write(svg(series))


if __name__ == "__main__":
    main()
