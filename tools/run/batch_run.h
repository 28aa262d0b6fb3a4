// Clustering a gallery batch after batch, as a photo application does.
#ifndef XVKFC_TOOLS_RUN_BATCH_RUN_H_
#define XVKFC_TOOLS_RUN_BATCH_RUN_H_

#include <functional>
#include <map>
#include <vector>

#include "tools/formats/cluster_json.h"
#include "tools/formats/feature_file.h"
#include "tools/run/engine_session.h"
#include "tools/run/progress.h"
#include "tools/run/run_summary.h"

namespace tool {

struct BatchPlan {
  int batchSize = 0;  // faces per run; 0 runs all faces at once
  // Identity of each face id, for quality after every batch; empty: unknown.
  std::map<int, int> identities;
  // Called after every batch with what it produced.
  std::function<void(const RunSummary&)> onBatch;
};

// Loads the rows of `features` in file order in batches of plan.batchSize,
// runs clustering on each batch with the clusters that the previous batch
// produced (the first batch with `existing`) and returns the clusters after
// the last batch. Quality after a batch covers every face loaded so far that
// has an identity. Reports each phase through `progress`.
// REQUIRES: faceIds.size() == features.rows() > 0.
std::vector<ClusterRecord> clusterInBatches(EngineSession& session, const FeatureMatrix& features,
                                            const std::vector<int>& faceIds,
                                            std::vector<ClusterRecord> existing,
                                            const BatchPlan& plan, Progress& progress);

}  // namespace tool

#endif  // XVKFC_TOOLS_RUN_BATCH_RUN_H_
