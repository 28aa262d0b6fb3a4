#!/bin/sh
# Renders the demo's report in headless Chromium: the rendered document must
# hold the size histogram, the heat map's cluster overlay and the cluster
# table, and a screenshot of the page must show more than a blank page.
# Usage: render_report.sh XVKFC CHROMIUM
set -eu
xvkfc=$1
chromium=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$xvkfc" -q demo --report "$work/report.html" > /dev/null
render() {
  timeout 120 "$chromium" --headless --no-sandbox --disable-gpu --disable-quic --no-first-run \
    --disable-background-networking --disable-component-update --disable-sync \
    --user-data-dir="$work/profile" "$@" "file://$work/report.html" 2> "$work/chromium.log"
}
render --dump-dom > "$work/dom.html"
for part in 'class="histogram"' 'class="overlay"' '<table'; do
  if ! grep -q "$part" "$work/dom.html"; then
    echo "the rendered report lacks $part"
    exit 1
  fi
done
render --window-size=1280,2400 --screenshot="$work/page.png" > /dev/null
# A blank or failed page compresses to a few kilobytes.
bytes=$(wc -c < "$work/page.png")
if [ "$bytes" -lt 30000 ]; then
  echo "the screenshot has only $bytes bytes: the page did not render"
  exit 1
fi
echo "report rendered: $bytes-byte screenshot"

# A gallery past the picture's 1,000 faces (1,300 faces: 10,000 take minutes
# in the debug build): the picture is sampled, the page stays small, the
# cluster table comes before the picture, and the pair table is there.
"$xvkfc" -q demo --people 120 --min-faces 2 --max-faces 14 --lone 350 --report "$work/report.html" \
  > /dev/null
bytes=$(wc -c < "$work/report.html")
if [ "$bytes" -gt 5000000 ]; then
  echo "the large report has $bytes bytes"
  exit 1
fi
render --dump-dom > "$work/dom.html"
for part in 'The picture shows 1000 of the' 'class="overlay"' 'that match each other'; do
  if ! grep -q "$part" "$work/dom.html"; then
    echo "the rendered large report lacks $part"
    exit 1
  fi
done
clusters=$(grep -n '<h2>Clusters</h2>' "$work/dom.html" | cut -d: -f1)
picture=$(grep -n '<h2>Similarity matrix</h2>' "$work/dom.html" | cut -d: -f1)
if [ "$clusters" -gt "$picture" ]; then
  echo "the cluster table comes after the picture"
  exit 1
fi
echo "large report rendered: $bytes bytes"
