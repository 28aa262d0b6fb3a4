// The clusters whose representatives resemble a face most, for the report's
// figures. With many clusters, scoring every representative against every
// face is the report's largest cost (at 10,000 faces about 1,400 clusters:
// two million comparisons, more time than the clustering run), so beyond a
// few hundred clusters candidates are found by score profiles first, the
// way the planned runs find each face's neighbours, and only those are
// scored.
#ifndef XVKFC_TOOLS_REPORT_NEAR_CLUSTERS_H_
#define XVKFC_TOOLS_REPORT_NEAR_CLUSTERS_H_

#include <cstddef>
#include <utility>
#include <vector>

#include "tools/report/similarity_view.h"

namespace tool {

// Clusters kept per face.
inline constexpr int kNearestClusters = 5;

// Up to this many clusters every representative is scored (exact, cheap).
inline constexpr int kExhaustiveClusters = 256;

// Keeps the k highest-scored blocks offered, the highest first; of equal
// scores the one offered first.
class NearestBlocks {
 public:
  explicit NearestBlocks(size_t k) : k_(k) {}
  void offer(int score, int block);
  const std::vector<std::pair<int, int>>& best() const { return best_; }

 private:
  size_t k_;
  std::vector<std::pair<int, int>> best_;  // (score, block)
};

enum class NearSearch {
  kAuto,        // exhaustive up to kExhaustiveClusters, by profiles beyond
  kExhaustive,  // every representative scored: the reference the profiles are checked against
};

class NearClusters {
 public:
  // `repRows`: the representative row of each cluster (block). `score` must
  // outlive this object.
  NearClusters(const std::vector<int>& repRows, const RowScore& score, NearSearch search);

  // Up to kNearestClusters (score, block) of the clusters whose
  // representatives score highest with `row`, highest first (ties to the
  // lower block). `self`: the block `row` represents, which is left out, or
  // -1 for a face that represents none.
  std::vector<std::pair<int, int>> nearest(int row, int self) const;

 private:
  std::vector<float> profileOf(int row) const;

  const std::vector<int>& repRows_;
  const RowScore& score_;
  bool byProfile_;
  std::vector<int> references_;  // rows whose scores make a profile
  std::vector<float> profiles_;  // one per block, references_.size() floats each
};

}  // namespace tool

#endif  // XVKFC_TOOLS_REPORT_NEAR_CLUSTERS_H_
