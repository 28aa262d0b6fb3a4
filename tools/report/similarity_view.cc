#include "tools/report/similarity_view.h"

#include <map>

namespace tool {

ClusterOrder orderByCluster(const std::vector<ClusterRecord>& clusters,
                            const std::vector<int>& faceIds) {
  std::map<int, int> rowOf;
  for (size_t row = 0; row < faceIds.size(); ++row) rowOf[faceIds[row]] = static_cast<int>(row);
  std::vector<bool> placed(faceIds.size(), false);
  ClusterOrder order;
  auto place = [&](const ClusterRecord& cluster) {
    const size_t before = order.rows.size();
    for (int face : cluster.faceIds) {
      const auto it = rowOf.find(face);
      if (it == rowOf.end() || placed[it->second]) continue;
      placed[it->second] = true;
      order.rows.push_back(it->second);
    }
    return static_cast<int>(order.rows.size() - before);
  };
  for (const ClusterRecord& cluster : clusters) {
    if (cluster.id < 0) continue;
    const int first = static_cast<int>(order.rows.size());
    const int size = place(cluster);
    if (size == 0) continue;
    order.blocks.push_back(size);
    order.blockIds.push_back(cluster.id);
    int rep = order.rows[first];
    for (int i = first; i < first + size; ++i) {
      if (faceIds[order.rows[i]] == cluster.repFaceId) rep = order.rows[i];
    }
    order.repRows.push_back(rep);
  }
  order.clustered = static_cast<int>(order.rows.size());
  for (const ClusterRecord& cluster : clusters) {
    if (cluster.id < 0) place(cluster);
  }
  for (size_t row = 0; row < faceIds.size(); ++row) {
    if (!placed[row]) order.rows.push_back(static_cast<int>(row));
  }
  return order;
}

SimilarityView sampleSimilarities(const ClusterOrder& order, int maxShown, const RowScore& score) {
  SimilarityView view;
  const size_t n = order.rows.size();
  const size_t shown = std::min(n, static_cast<size_t>(maxShown));
  for (size_t k = 0; k < shown; ++k) view.shown.push_back(static_cast<int>(k * n / shown));
  view.similarities.assign(shown * shown, 0);
  for (size_t i = 0; i < shown; ++i) {
    for (size_t j = i; j < shown; ++j) {
      const int s = score(order.rows[view.shown[i]], order.rows[view.shown[j]]);
      view.similarities[i * shown + j] = s;
      view.similarities[j * shown + i] = s;
    }
  }
  return view;
}

}  // namespace tool
