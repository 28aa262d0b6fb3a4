#include "tools/similarity_view.h"

#include <map>
#include <string>

namespace tool {

ClusterOrder orderByCluster(const std::vector<ClusterRecord>& clusters,
                            const std::vector<int>& faceIds, int maxFaces) {
  std::map<int, int> rowOf;
  for (size_t row = 0; row < faceIds.size(); ++row) rowOf[faceIds[row]] = static_cast<int>(row);
  std::vector<bool> placed(faceIds.size(), false);
  std::vector<int> layout;
  std::vector<int> blockOf;  // index of the real cluster of each laid-out face; -1 for none

  auto place = [&](const ClusterRecord& cluster, int block) {
    for (int face : cluster.faceIds) {
      const auto it = rowOf.find(face);
      if (it == rowOf.end() || placed[it->second]) continue;
      placed[it->second] = true;
      layout.push_back(it->second);
      blockOf.push_back(block);
    }
  };
  int block = 0;
  for (const ClusterRecord& cluster : clusters) {
    if (cluster.id >= 0) place(cluster, block++);
  }
  for (const ClusterRecord& cluster : clusters) {
    if (cluster.id < 0) place(cluster, -1);
  }
  for (size_t row = 0; row < faceIds.size(); ++row) {
    if (!placed[row]) {
      layout.push_back(static_cast<int>(row));
      blockOf.push_back(-1);
    }
  }

  const size_t step = (layout.size() + maxFaces - 1) / maxFaces;
  ClusterOrder order;
  int lastBlock = -1;
  for (size_t i = 0; i < layout.size(); i += std::max<size_t>(step, 1)) {
    order.rows.push_back(layout[i]);
    if (blockOf[i] < 0) continue;
    if (blockOf[i] != lastBlock) order.blocks.push_back(0);
    ++order.blocks.back();
    lastBlock = blockOf[i];
  }
  return order;
}

SimilarityView buildSimilarityView(EngineSession& session, const FeatureMatrix& features,
                                   const std::vector<int>& faceIds,
                                   const std::vector<ClusterRecord>& clusters, int maxFaces,
                                   Progress& progress) {
  SimilarityView view;
  view.facesWithFeatures = features.rows();
  view.order = orderByCluster(clusters, faceIds, maxFaces);
  const size_t n = view.order.rows.size();
  progress.begin("report: comparing " + std::to_string(n * (n - 1) / 2) + " pairs of faces");
  view.similarities.assign(n * n, 0);
  for (size_t i = 0; i < n; ++i) {
    view.faceIds.push_back(faceIds[view.order.rows[i]]);
    for (size_t j = i; j < n; ++j) {
      const int score =
          session.compare(features.row(view.order.rows[i]), features.row(view.order.rows[j]));
      view.similarities[i * n + j] = score;
      view.similarities[j * n + i] = score;
    }
  }
  progress.end();
  return view;
}

}  // namespace tool
