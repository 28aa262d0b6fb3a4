#include "tools/run/run_summary.h"

#include <cstdio>

namespace tool {

void countClusters(const std::vector<ClusterRecord>& clusters, RunSummary& summary) {
  summary.clusters = 0;
  summary.unclustered = 0;
  for (const ClusterRecord& cluster : clusters) {
    if (cluster.id >= 0) {
      ++summary.clusters;
    } else {
      summary.unclustered += static_cast<int>(cluster.faceIds.size());
    }
  }
}

std::string describe(const evaluation::Quality& quality) {
  char text[160];
  std::snprintf(text, sizeof text, "pairwise P %.3f R %.3f F %.3f | BCubed P %.3f R %.3f F %.3f",
                quality.pairwise.precision, quality.pairwise.recall, quality.pairwise.f,
                quality.bcubed.precision, quality.bcubed.recall, quality.bcubed.f);
  return text;
}

std::string describe(const RunSummary& summary) {
  char text[160];
  std::snprintf(text, sizeof text, "batch %d: %d faces loaded, %d clusters, %d unclustered, %.3f s",
                summary.batch, summary.facesLoaded, summary.clusters, summary.unclustered,
                summary.seconds);
  std::string line = text;
  if (summary.quality) line += "; " + describe(*summary.quality);
  return line;
}

}  // namespace tool
