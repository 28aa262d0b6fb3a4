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
