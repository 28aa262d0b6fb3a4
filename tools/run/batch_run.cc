#include "tools/run/batch_run.h"

#include <algorithm>
#include <string>

#include "tools/cluster_records.h"

namespace tool {

std::vector<ClusterRecord> clusterInBatches(EngineSession& session, const FeatureMatrix& features,
                                            const std::vector<int>& faceIds,
                                            std::vector<ClusterRecord> existing,
                                            const BatchPlan& plan, Progress& progress) {
  const int rows = features.rows();
  // A batch size of 0 or of at least every face is one run; clamping it here
  // also keeps begin + batchSize below INT_MAX.
  const int batchSize = plan.batchSize > 0 && plan.batchSize < rows ? plan.batchSize : rows;
  const int batches = (rows + batchSize - 1) / batchSize;
  std::vector<int> measuredFaces, identities;
  for (int batch = 0; batch < batches; ++batch) {
    const int begin = batch * batchSize;
    const int end = std::min(rows, begin + batchSize);
    const std::string name = "batch " + std::to_string(batch + 1) + "/" + std::to_string(batches);
    RunSummary summary;
    summary.batch = batch + 1;
    summary.facesLoaded = end - begin;

    progress.begin(name + ": loading " + std::to_string(end - begin) + " faces");
    session.load(features, faceIds, begin, end);
    summary.seconds += progress.end();

    int existingClusters = 0;
    for (const ClusterRecord& cluster : existing) existingClusters += cluster.id >= 0;
    progress.begin(name + (existing.empty()
                               ? ": clustering"
                               : ": clustering and merging into " +
                                     std::to_string(existingClusters) + " existing clusters"));
    session.run(existing);
    summary.seconds += progress.end();

    progress.begin(name + ": reading results");
    existing = session.clusters();
    summary.seconds += progress.end();

    countClusters(existing, summary);
    for (int i = begin; i < end; ++i) {
      const auto it = plan.identities.find(faceIds[i]);
      if (it == plan.identities.end()) continue;
      measuredFaces.push_back(faceIds[i]);
      identities.push_back(it->second);
    }
    if (!measuredFaces.empty()) {
      summary.quality =
          evaluation::measureQuality(clusterOfFaces(existing, measuredFaces), identities);
    }
    if (plan.onBatch) plan.onBatch(summary);
  }
  return existing;
}

}  // namespace tool
