// The report's two pictures.
#ifndef XVKFC_TOOLS_REPORT_CHARTS_H_
#define XVKFC_TOOLS_REPORT_CHARTS_H_

#include <map>
#include <string>
#include <vector>

#include "tools/formats/png_image.h"

namespace tool {

// Similarities of 0..1023 at or below this value share the darkest colour:
// unrelated faces score about 511, so the ramp is spent on the upper half.
inline constexpr int kHeatFloor = 384;

// Colour of a similarity on the heat map's ramp (dark blue to yellow).
Rgb heatColor(int similarity);

// Heat map of an n x n similarity matrix (row-major, values 0..1023) whose
// faces are ordered by cluster: `blocks` gives the sizes of consecutive
// clusters along the diagonal (the rest are unclustered), each outlined.
// Each face takes `scale` pixels. REQUIRES: similarities.size() == n * n.
RgbImage heatMap(const std::vector<int>& similarities, int n, const std::vector<int>& blocks,
                 int scale);

// Bar chart of cluster sizes as inline SVG, so that its text zooms and can
// be searched: one bar per size from 1 to the largest, its height the number
// of clusters of that size (each bar's count as a tooltip, and above it when
// there is room), with both axes titled. `clustersOfSize` maps size to count.
std::string sizeHistogramSvg(const std::map<int, int>& clustersOfSize);

}  // namespace tool

#endif  // XVKFC_TOOLS_REPORT_CHARTS_H_
