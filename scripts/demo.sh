#!/usr/bin/env bash
# Installs what is missing, builds the release configuration and runs the
# program's demo: a synthetic gallery of face features clustered batch after
# batch, as a photo application would use the library, with a summary here
# and an HTML report to open in a browser.
# Usage: scripts/demo.sh [options of 'xvkfc demo']   e.g. scripts/demo.sh --seed 7 --batches 6
set -u
cd "$(dirname "$0")/.."

scripts/install-deps.sh || exit 1

jobs=$(nproc 2>/dev/null || echo 2)
echo "=== release: configure and build"
if ! cmake --preset release -DXVKFC_BUILD_TOOLS=ON >build-release.log 2>&1 ||
   ! cmake --build build/release -j "$jobs" --target xvkfc >>build-release.log 2>&1; then
  tail -n 60 build-release.log
  echo "=== release: build FAILED (full log: build-release.log)"
  exit 1
fi
rm -f build-release.log

report="$PWD/build/release/demo-report.html"
echo "=== xvkfc demo"
build/release/tools/xvkfc demo --report "$report" -o build/release/demo-clusters.json "$@" || exit 1
echo
echo "Open the report in a browser: file://$report"
echo "The program is $PWD/build/release/tools/xvkfc; to run it as 'xvkfc':"
echo "  export PATH=\"$PWD/build/release/tools:\$PATH\""
