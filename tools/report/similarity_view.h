// The faces of a report in cluster order, and the sample of them that the
// similarity picture shows.
#ifndef XVKFC_TOOLS_REPORT_SIMILARITY_VIEW_H_
#define XVKFC_TOOLS_REPORT_SIMILARITY_VIEW_H_

#include <functional>
#include <vector>

#include "tools/formats/cluster_json.h"

namespace tool {

// The library's similarity (0..1023) of two rows of the feature matrix.
using RowScore = std::function<int(int rowA, int rowB)>;

// Faces laid out by cluster: the members of each real cluster in turn (in
// list order), then the unclustered faces, then faces that no cluster lists.
struct ClusterOrder {
  std::vector<int> rows;      // rows of the feature matrix, in display order
  std::vector<int> blocks;    // sizes of the consecutive real-cluster runs
  std::vector<int> blockIds;  // the cluster id of each block
  std::vector<int> repRows;   // each block's representative face, or its first member
  int clustered = 0;          // faces in blocks (the first rows)
};

// Lays out rows 0..faceIds.size()-1 by the clusters that list their face
// ids. A face listed by two clusters is shown with the first.
ClusterOrder orderByCluster(const std::vector<ClusterRecord>& clusters,
                            const std::vector<int>& faceIds);

// The similarity picture: at most maxShown faces, evenly spaced along the
// order, every shown pair scored once (the diagonal too).
struct SimilarityView {
  std::vector<int> shown;         // positions in order.rows of the pictured faces, ascending
  std::vector<int> similarities;  // shown.size()^2 scores, row-major
};

// REQUIRES: maxShown > 0.
SimilarityView sampleSimilarities(const ClusterOrder& order, int maxShown, const RowScore& score);

}  // namespace tool

#endif  // XVKFC_TOOLS_REPORT_SIMILARITY_VIEW_H_
