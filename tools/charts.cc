#include "tools/charts.h"

#include <algorithm>
#include <string>

namespace tool {
namespace {

constexpr Rgb kRamp[] = {{68, 1, 84}, {59, 82, 139}, {33, 145, 140}, {94, 201, 98}, {253, 231, 37}};
constexpr int kRampStops = 5;
constexpr Rgb kOutline = {255, 64, 64};
constexpr Rgb kWhite = {255, 255, 255};
constexpr Rgb kInk = {40, 40, 40};
constexpr Rgb kBar = {59, 82, 139};

// Histogram geometry, in pixels.
constexpr int kPlotHeight = 160;
constexpr int kMargin = 24;
constexpr int kGlyphScale = 2;

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

RgbImage sizeHistogram(const std::map<int, int>& clustersOfSize) {
  const int largest = clustersOfSize.empty() ? 1 : clustersOfSize.rbegin()->first;
  int highest = 1;
  for (const auto& [size, count] : clustersOfSize) highest = std::max(highest, count);
  const int countWidth = RgbImage::textWidth(std::to_string(highest), kGlyphScale);
  const int sizeWidth = RgbImage::textWidth(std::to_string(largest), kGlyphScale);
  const int barWidth = std::max({countWidth, sizeWidth, 12});
  const int gap = 6;
  const int glyphHeight = 5 * kGlyphScale;
  const int width = 2 * kMargin + largest * (barWidth + gap);
  const int baseline = kMargin + glyphHeight + 4 + kPlotHeight;
  RgbImage image(width, baseline + 4 + glyphHeight + kMargin, kWhite);
  image.fill(kMargin - gap, baseline, width - 2 * kMargin + 2 * gap, 1, kInk);

  // Size labels are thinned out so that neighbouring labels never touch.
  const int labelStep = std::max(1, (sizeWidth + 6 + barWidth + gap - 1) / (barWidth + gap));
  for (int size = 1; size <= largest; ++size) {
    const int x = kMargin + (size - 1) * (barWidth + gap);
    const auto it = clustersOfSize.find(size);
    const int count = it == clustersOfSize.end() ? 0 : it->second;
    const int height = count * kPlotHeight / highest;
    image.fill(x, baseline - height, barWidth, height, kBar);
    if (count > 0) {
      const std::string label = std::to_string(count);
      image.text(x + (barWidth - RgbImage::textWidth(label, kGlyphScale)) / 2,
                 baseline - height - glyphHeight - 4, label, kGlyphScale, kInk);
    }
    if ((size - 1) % labelStep == 0) {
      const std::string label = std::to_string(size);
      image.text(x + (barWidth - RgbImage::textWidth(label, kGlyphScale)) / 2, baseline + 4, label,
                 kGlyphScale, kInk);
    }
  }
  return image;
}

}  // namespace tool
