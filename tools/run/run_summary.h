// What one clustering run (one batch) produced, for the terminal and the
// report.
#ifndef XVKFC_TOOLS_RUN_RUN_SUMMARY_H_
#define XVKFC_TOOLS_RUN_RUN_SUMMARY_H_

#include <optional>
#include <string>
#include <vector>

#include "evaluation/quality.h"
#include "tools/formats/cluster_json.h"

namespace tool {

struct RunSummary {
  int batch = 0;                               // 1-based
  int facesLoaded = 0;                         // faces of this batch
  int clusters = 0;                            // real clusters (id >= 0) after the batch
  int unclustered = 0;                         // faces in the bucket -1 after the batch
  double seconds = 0.0;                        // loading, clustering and reading the result
  std::optional<evaluation::Quality> quality;  // over every face seen so far, when known
};

// Counts the real clusters and the unclustered faces of `clusters` into
// `summary`.
void countClusters(const std::vector<ClusterRecord>& clusters, RunSummary& summary);

// One line for the terminal: "batch 2: 75 faces, 21 clusters, 6
// unclustered, 0.041 s" with the F-scores appended when known.
std::string describe(const RunSummary& summary);

// "pairwise P 0.981 R 0.874 F 0.924 | BCubed P 0.990 R 0.902 F 0.944".
std::string describe(const evaluation::Quality& quality);

}  // namespace tool

#endif  // XVKFC_TOOLS_RUN_RUN_SUMMARY_H_
