#include "tools/report/similarity_view.h"

#include <algorithm>
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
  std::vector<int> blockIds;
  for (const ClusterRecord& cluster : clusters) {
    if (cluster.id < 0) continue;
    const size_t before = layout.size();
    place(cluster, static_cast<int>(blockIds.size()));
    if (layout.size() > before) blockIds.push_back(cluster.id);
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

  ClusterOrder order;
  size_t clustered = 0;
  for (; clustered < layout.size() && blockOf[clustered] >= 0; ++clustered) {
    order.rows.push_back(layout[clustered]);
    if (clustered == 0 || blockOf[clustered] != blockOf[clustered - 1]) {
      order.blocks.push_back(0);
      order.blockIds.push_back(blockIds[blockOf[clustered]]);
    }
    ++order.blocks.back();
  }
  const size_t rest = layout.size() - clustered;
  const size_t room =
      std::max<size_t>(1, static_cast<size_t>(maxFaces) > clustered ? maxFaces - clustered : 0);
  const size_t step = std::max<size_t>(1, (rest + room - 1) / room);
  for (size_t i = clustered; i < layout.size(); i += step) order.rows.push_back(layout[i]);
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
