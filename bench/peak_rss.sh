#!/bin/sh
# Time and peak memory of `xvkfc cluster --in-order` (all faces in one run) on the synthetic
# gallery, per size. Needs a build with benchmarks and tools (the bench
# preset) and GNU time:
#   cmake --preset bench && cmake --build build/bench -j2
#   bench/peak_rss.sh [BUILD_DIR] [FACES...]      (default: build/bench 2000 5000 10000)
# Prints one Markdown table row per size: faces, wall seconds, CPU seconds
# (user + system), peak RSS, and the bound 1.25 x (4n^2 + 2 x 3840n) + 16 MiB
# (one kernel, the engine's feature rows and the program's own copy of the
# features, plus the process itself).
set -eu
build=${1:-build/bench}
[ $# -gt 0 ] && shift
sizes=${*:-2000 5000 10000}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

echo "| faces | wall s | CPU s | peak RSS MiB | bound MiB |"
echo "|---|---|---|---|---|"
for n in $sizes; do
  "$build/bench/xvkfc_bench_gallery" "$n" "$work/features.f32"
  /usr/bin/time -f '%e %U %S %M' -o "$work/time.txt" \
    "$build/tools/xvkfc" -q cluster --in-order "$work/features.f32" -o "$work/clusters.json" > /dev/null
  read -r wall user sys rss_kib < "$work/time.txt"
  awk -v n="$n" -v wall="$wall" -v user="$user" -v sys="$sys" -v rss="$rss_kib" 'BEGIN {
    bound = (1.25 * (4 * n * n + 2 * 3840 * n) + 16 * 1048576) / 1048576
    printf "| %d | %.2f | %.2f | %.0f | %.0f |\n", n, wall, user + sys, rss / 1024, bound
  }'
done
