#include "tools/cluster_records.h"

#include <utility>

#include "evaluation/quality.h"

namespace tool {

std::vector<ClusterRecord> recordsOf(const itf_xvk_clusterinfo& list) {
  std::vector<ClusterRecord> records;
  for (int i = 0; i < list.count; ++i) {
    const itf_xvk_clusteritem& item = list.items[i];
    ClusterRecord record;
    record.id = item.clusterId;
    record.faceIds.assign(item.faceIds, item.faceIds + item.faceCount);
    record.repFaceId = item.repFaceId;
    if (item.feature != nullptr)
      record.feature.assign(item.feature, item.feature + item.featureDim);
    records.push_back(std::move(record));
  }
  return records;
}

std::vector<int> clusterOfFaces(const std::vector<ClusterRecord>& clusters,
                                const std::vector<int>& faceIds) {
  ExchangeList list(clusters);
  return evaluation::clusterOfFaces(*list.get(), faceIds);
}

}  // namespace tool
