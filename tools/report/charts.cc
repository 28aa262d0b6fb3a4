#include "tools/report/charts.h"

#include <algorithm>
#include <string>

namespace tool {
namespace {

constexpr Rgb kRamp[] = {{68, 1, 84}, {59, 82, 139}, {33, 145, 140}, {94, 201, 98}, {253, 231, 37}};
constexpr int kRampStops = 5;
constexpr Rgb kOutline = {255, 64, 64};
constexpr Rgb kWhite = {255, 255, 255};

// Height of the histogram's plot, in pixels.
constexpr int kPlotHeight = 160;

uint8_t mix(uint8_t a, uint8_t b, double t) { return static_cast<uint8_t>(a + (b - a) * t + 0.5); }

}  // namespace

Rgb heatColor(int similarity) {
  const double t = std::clamp((similarity - kHeatFloor) / double(1023 - kHeatFloor), 0.0, 1.0);
  const double position = t * (kRampStops - 1);
  const int stop = std::min(static_cast<int>(position), kRampStops - 2);
  const double within = position - stop;
  const Rgb& a = kRamp[stop];
  const Rgb& b = kRamp[stop + 1];
  return {mix(a.r, b.r, within), mix(a.g, b.g, within), mix(a.b, b.b, within)};
}

RgbImage heatMap(const std::vector<int>& similarities, int n, const std::vector<int>& blocks,
                 int scale) {
  RgbImage image(std::max(n, 1) * scale, std::max(n, 1) * scale, kWhite);
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < n; ++j) {
      image.fill(j * scale, i * scale, scale, scale,
                 heatColor(similarities[static_cast<size_t>(i) * n + j]));
    }
  }
  int start = 0;
  for (int size : blocks) {
    const int x = start * scale, extent = size * scale;
    image.fill(x, x, extent, 1, kOutline);
    image.fill(x, x + extent - 1, extent, 1, kOutline);
    image.fill(x, x, 1, extent, kOutline);
    image.fill(x + extent - 1, x, 1, extent, kOutline);
    start += size;
  }
  return image;
}

std::string sizeHistogramSvg(const std::map<int, int>& clustersOfSize) {
  const int largest = clustersOfSize.empty() ? 1 : clustersOfSize.rbegin()->first;
  int highest = 1;
  for (const auto& [size, count] : clustersOfSize) highest = std::max(highest, count);
  // Bars of at least 6 pixels, the plot about 480 wide.
  const int bar = std::max(6, 480 / largest);
  const int left = 56, top = 16, plotHeight = kPlotHeight, bottom = 48;
  const int width = left + largest * bar + 16, height = top + plotHeight + bottom;
  const int baseline = top + plotHeight;
  std::string svg = "<svg class=\"histogram\" width=\"" + std::to_string(width) + "\" height=\"" +
                    std::to_string(height) + "\" viewBox=\"0 0 " + std::to_string(width) + " " +
                    std::to_string(height) +
                    "\" role=\"img\" font-family=\"sans-serif\" font-size=\"11\">\n"
                    "<title>Number of clusters of each size</title>\n";
  auto text = [&svg](int x, int y, const std::string& anchor, const std::string& content,
                     const std::string& extra = "") {
    svg += "<text x=\"" + std::to_string(x) + "\" y=\"" + std::to_string(y) + "\" text-anchor=\"" +
           anchor + "\"" + extra + ">" + content + "</text>\n";
  };
  const int labelStep = std::max(1, 28 / bar);
  for (int size = 1; size <= largest; ++size) {
    const auto it = clustersOfSize.find(size);
    const int count = it == clustersOfSize.end() ? 0 : it->second;
    const int x = left + (size - 1) * bar;
    const int h = count * plotHeight / highest;
    if (count > 0) {
      svg += "<rect x=\"" + std::to_string(x + 1) + "\" y=\"" + std::to_string(baseline - h) +
             "\" width=\"" + std::to_string(bar - 2) + "\" height=\"" + std::to_string(h) +
             "\" fill=\"#3b528b\"><title>" + std::to_string(count) + " cluster" +
             (count == 1 ? "" : "s") + " of " + std::to_string(size) + " face" +
             (size == 1 ? "" : "s") + "</title></rect>\n";
      if (bar >= 14) text(x + bar / 2, baseline - h - 3, "middle", std::to_string(count));
    }
    if ((size - 1) % labelStep == 0)
      text(x + bar / 2, baseline + 14, "middle", std::to_string(size));
  }
  // Axes, ticks of the count axis, and the two axis titles.
  svg += "<path d=\"M" + std::to_string(left) + " " + std::to_string(top) + "V" +
         std::to_string(baseline) + "H" + std::to_string(left + largest * bar) +
         "\" fill=\"none\" stroke=\"#282828\"></path>\n";
  for (int tick : {0, highest / 2, highest}) {
    if (tick == highest / 2 && (tick == 0 || tick == highest)) continue;
    text(left - 5, baseline - tick * plotHeight / highest + 4, "end", std::to_string(tick));
  }
  text(left + largest * bar / 2, height - 8, "middle", "faces in the cluster");
  const int middle = top + plotHeight / 2;
  text(14, middle, "middle", "clusters",
       " transform=\"rotate(-90 14 " + std::to_string(middle) + ")\"");
  svg += "</svg>";
  return svg;
}

}  // namespace tool
