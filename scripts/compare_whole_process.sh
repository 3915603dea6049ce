#!/usr/bin/env bash
# Times tamerisk-render as a whole process, side by side with the
# straightforward single-threaded renderer it started from (commit cafaeb5,
# run with --threads 1), for every benchmark material at 1024 x 1024 on
# shape 1; then a batch of 48 materials at 128 x 128 against 48 separate
# runs. Prints hyperfine's tables and the ratios.
#
#   scripts/compare_whole_process.sh [RUNS]
#
# TAMERISK_MATERIALS="mirror glass" times only the materials named (the
# batch still runs).
#
# The pinned commit is built once into $TMPDIR/tamerisk-cafaeb5 (kept for the
# next run). The current tree's tamerisk-render is taken from build/bin, built
# when missing. Needs hyperfine (Debian package "hyperfine"): installed when
# run as root, asked for otherwise.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD
runs=${1:-10}
pinned=cafaeb5

if ! command -v hyperfine >/dev/null; then
  if [[ $(id -u) -eq 0 ]]; then
    apt-get install -y -qq hyperfine
  else
    echo "hyperfine is needed: sudo apt-get install hyperfine" >&2
    exit 1
  fi
fi

old_tree=${TMPDIR:-/tmp}/tamerisk-$pinned
old=$old_tree/build/bin/tamerisk-render
if [[ ! -x $old ]]; then
  rm -rf "$old_tree"
  mkdir -p "$old_tree"
  git archive "$pinned" | tar -x -C "$old_tree"
  cmake -S "$old_tree" -B "$old_tree/build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
  cmake --build "$old_tree/build" --target tamerisk-render --parallel "${TAMERISK_JOBS:-$(nproc)}"
fi
new=$root/build/bin/tamerisk-render
[[ -x $new ]] || cmake --build build --target tamerisk-render

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The materials of bench/bench_materials.h, in their JSON form.
declare -A materials=(
  [default]='{}'
  [smooth_anisotropic2]='{"smoothHighlight": 1, "smoothWidth": 2, "anisotropic": 1,
                          "anisotropy": {"type": 2, "depthVariation": 0.5}}'
  [refraction]='{"transparency": 0.8, "refractiveIndex": 1.5, "incidenceDependence": 0.5, "attenuation": 0.5}'
  [thin_glass]='{"transparency": 0.8, "refractiveIndex": 1.5, "thinGlass": 1, "thickness": 4}'
  [reflection_rainbow]='{"reflection": 0.6, "rainbow": 1}'
  [emission_red]='{"emission": 0.7, "color": [255, 0, 0]}'
  [grooves_concentric1]='{"anisotropic": 1, "anisotropy": {"type": 1, "depthVariation": 0.5}}'
  [mirror]='{"reflection": 0.8}'
  [glass]='{"transparency": 0.9, "refractiveIndex": 1.5}'
  [grooves_broad_highlight]='{"anisotropic": 1, "highlightStrength": 0.8, "highlightSharpness": 0.6,
                              "color": [150, 150, 160],
                              "anisotropy": {"type": 1, "depthVariation": 1, "grooveWidth": 2.0}}'
)
# The batch keeps to the first six, so that its figures compare with earlier runs.
batch_names=(default smooth_anisotropic2 refraction thin_glass reflection_rainbow emission_red)
names=("${batch_names[@]}" grooves_concentric1 mirror glass grooves_broad_highlight)
for name in "${names[@]}"; do
  echo "${materials[$name]}" >"$work/$name.json"
done
if [[ -n ${TAMERISK_MATERIALS:-} ]]; then
  read -r -a names <<<"$TAMERISK_MATERIALS"
fi
for name in "${names[@]}"; do
  [[ -n ${materials[$name]:-} ]] || { echo "unknown material: $name" >&2; exit 2; }
done

echo "== Whole process, --shape 1 --size 1024 --seed 1 (load: $(cut -d' ' -f1-3 /proc/loadavg))"
for name in "${names[@]}"; do
  args="--shape 1 --size 1024 --seed 1 --material $work/$name.json"
  hyperfine --runs "$runs" --warmup 1 --export-json "$work/$name.times.json" \
    -n "cafaeb5 --threads 1" "$old $args --threads 1 --output $work/old.png" \
    -n "now" "$new $args --output $work/new.png" | grep -v '^ *Range' || true
  python3 - "$name" "$work/$name.times.json" <<'EOF'
import json, sys
r = {x["command"]: x["median"] for x in json.load(open(sys.argv[2]))["results"]}
print(f"{sys.argv[1]}: {r['cafaeb5 --threads 1'] * 1000:.0f} ms -> {r['now'] * 1000:.0f} ms, "
      f"{r['cafaeb5 --threads 1'] / r['now']:.1f}x (medians)")
EOF
done

# 48 materials: the first six above in eight colours each.
mkdir -p "$work/batch" "$work/out"
colours=("255, 0, 0" "0, 255, 0" "0, 0, 255" "255, 255, 0" "0, 255, 255" "255, 0, 255" "128, 128, 128" "255, 255, 255")
for name in "${batch_names[@]}"; do
  for i in "${!colours[@]}"; do
    python3 -c 'import json, sys; m = json.loads(sys.argv[1]); m["color"] = [int(c) for c in sys.argv[2].split(",")]; print(json.dumps(m))' \
      "${materials[$name]}" "${colours[$i]}" >"$work/batch/$name-$i.json"
  done
done
cat >"$work/separate.sh" <<EOF
for f in $work/batch/*.json; do
  "$new" --size 128 --seed 1 --material "\$f" --output "$work/out/\$(basename "\$f" .json).png" || exit 1
done
EOF
echo "== 48 materials at 128 x 128: 48 runs against one batch"
hyperfine --runs "$runs" --warmup 1 --export-json "$work/batch.times.json" \
  -n "48 runs" "bash $work/separate.sh" \
  -n "one batch" "$new --size 128 --seed 1 --output-dir $work/out $work/batch/*.json" | grep -v '^ *Range' || true
python3 - "$work/batch.times.json" <<'EOF'
import json, sys
r = {x["command"]: x["median"] for x in json.load(open(sys.argv[1]))["results"]}
print(f"batch: {r['48 runs'] * 1000:.0f} ms -> {r['one batch'] * 1000:.0f} ms, {r['48 runs'] / r['one batch']:.1f}x (medians)")
EOF
