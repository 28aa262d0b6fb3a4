// Clustering a whole file of faces in planned runs (the library's
// clusterInPlannedRuns), round after round.
#ifndef XVKFC_TOOLS_RUN_PLANNED_RUN_H_
#define XVKFC_TOOLS_RUN_PLANNED_RUN_H_

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "tools/formats/cluster_json.h"
#include "tools/formats/feature_file.h"
#include "tools/run/engine_session.h"
#include "tools/run/progress.h"
#include "tools/run/run_summary.h"

namespace tool {

struct PlannedRunOptions {
  int runSize = 0;  // faces per run; 0: the library's default
  int rounds = 0;   // rounds at most; 0: the library's default
  // Identity of each face id, for quality after every round; empty: unknown.
  std::map<int, int> identities;
  // Called after the call with what every round produced (batch = round
  // number, facesLoaded = faces the round fed) and its number of runs.
  std::function<void(const RunSummary&, int runs)> onRound;
};

// Clusters every row of `features` into `existing` in planned runs and
// returns the clusters. Sets `runs` to the number of engine runs. Throws
// ToolError when the library fails (for example, rejects `existing`).
// REQUIRES: faceIds.size() == features.rows() > 0.
std::vector<ClusterRecord> clusterPlanned(EngineSession& session, const FeatureMatrix& features,
                                          const std::vector<int>& faceIds,
                                          const std::vector<ClusterRecord>& existing,
                                          const PlannedRunOptions& options, Progress& progress,
                                          int& runs);

// "round 2: 130 faces in 3 runs, 21 clusters, 6 unclustered, 0.041 s" with
// the F-scores appended when known.
std::string describeRound(const RunSummary& summary, int runs);

}  // namespace tool

#endif  // XVKFC_TOOLS_RUN_PLANNED_RUN_H_
