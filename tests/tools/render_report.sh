#!/bin/sh
# Renders a report of a 10,000-face gallery in headless Chromium: the page
# stays under 5 MB, the rendered document holds the cluster table before the
# sampled similarity picture, the picture's cluster overlay, the table of
# matching unclustered pairs and the size histogram, and a screenshot of the
# page shows more than a blank page.
# Usage: render_report.sh XVKFC CHROMIUM
set -eu
xvkfc=$1
chromium=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# 9,959 faces: 1,500 people (300 of them look-alikes) with 2 to 10 faces,
# 900 lone faces and 100 duplicates, clustered in planned runs.
"$xvkfc" -q demo --people 1500 --min-faces 2 --max-faces 10 --look-alikes 300 --lone 900 \
  --duplicates 100 --batches 40 --save-gallery "$work/gallery" > /dev/null
"$xvkfc" -q cluster "$work/gallery/features.npy" --ids "$work/gallery/face_ids.txt" \
  --labels "$work/gallery/labels.txt" -o "$work/clusters.json" --report "$work/report.html" \
  > /dev/null
bytes=$(wc -c < "$work/report.html")
if [ "$bytes" -gt 5000000 ]; then
  echo "the report of 10,000 faces has $bytes bytes"
  exit 1
fi

render() {
  timeout 120 "$chromium" --headless --no-sandbox --disable-gpu --disable-quic --no-first-run \
    --disable-background-networking --disable-component-update --disable-sync \
    --user-data-dir="$work/profile" "$@" "file://$work/report.html" 2> "$work/chromium.log"
}
render --dump-dom > "$work/dom.html"
for part in 'The picture shows 1000 of the' 'class="overlay"' 'that match each other' \
            'class="histogram"' '<tr class="doubt">'; do
  if ! grep -q "$part" "$work/dom.html"; then
    echo "the rendered report lacks $part"
    exit 1
  fi
done
clusters=$(grep -n '<h2>Clusters</h2>' "$work/dom.html" | cut -d: -f1)
picture=$(grep -n '<h2>Similarity matrix</h2>' "$work/dom.html" | cut -d: -f1)
if [ "$clusters" -gt "$picture" ]; then
  echo "the cluster table comes after the picture"
  exit 1
fi
render --window-size=1280,2400 --screenshot="$work/page.png" > /dev/null
# A blank or failed page compresses to a few kilobytes.
shot=$(wc -c < "$work/page.png")
if [ "$shot" -lt 30000 ]; then
  echo "the screenshot has only $shot bytes: the page did not render"
  exit 1
fi
echo "report of 10,000 faces rendered: $bytes bytes, $shot-byte screenshot"
