#include "tools/report/near_clusters.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "planning/score_profiles.h"

namespace tool {

// Candidates scored per face when searching by profile: eight times the
// clusters kept, so that a cluster whose profile ranks lower than its score
// would place it is still found. On a 10,000-face gallery (1,368 clusters)
// this marks the same clusters and finds the same close matches as scoring
// every representative, with 1.2 rather than 4.2 million comparisons in all.
constexpr int kProfileCandidates = 8 * kNearestClusters;

void NearestBlocks::offer(int score, int block) {
  if (best_.size() == k_ && score <= best_.back().first) return;
  best_.insert(std::upper_bound(best_.begin(), best_.end(), std::make_pair(score, block),
                                [](const auto& a, const auto& b) { return a.first > b.first; }),
               {score, block});
  if (best_.size() > k_) best_.pop_back();
}

NearClusters::NearClusters(const std::vector<int>& repRows, const RowScore& score, NearSearch search)
    : repRows_(repRows),
      score_(score),
      byProfile_(search == NearSearch::kAuto && repRows.size() > size_t{kExhaustiveClusters}) {
  if (!byProfile_) return;
  const int64_t blocks = static_cast<int64_t>(repRows.size());
  for (int64_t r = 0; r < detail::kProfileLength; ++r)
    references_.push_back(repRows[static_cast<size_t>(r * blocks / detail::kProfileLength)]);
  for (int row : repRows) {
    const std::vector<float> profile = profileOf(row);
    profiles_.insert(profiles_.end(), profile.begin(), profile.end());
  }
}

// A row's scores against the references, less their mean, at unit length:
// faces of one person score alike against any third face, so their profiles
// correlate (a flat profile, all zero, correlates with nothing).
std::vector<float> NearClusters::profileOf(int row) const {
  std::vector<float> p;
  double mean = 0.0;
  for (int reference : references_) {
    p.push_back(static_cast<float>(score_(row, reference)));
    mean += p.back();
  }
  mean /= static_cast<double>(p.size());
  double norm = 0.0;
  for (float& v : p) {
    v = static_cast<float>(v - mean);
    norm += static_cast<double>(v) * v;
  }
  const float scale = norm > 0.0 ? static_cast<float>(1.0 / std::sqrt(norm)) : 0.0f;
  for (float& v : p) v *= scale;
  return p;
}

std::vector<std::pair<int, int>> NearClusters::nearest(int row, int self) const {
  const int blocks = static_cast<int>(repRows_.size());
  NearestBlocks nearest(kNearestClusters);
  if (!byProfile_) {
    for (int b = 0; b < blocks; ++b) {
      if (b != self) nearest.offer(score_(row, repRows_[b]), b);
    }
    return nearest.best();
  }
  const int length = static_cast<int>(references_.size());
  const std::vector<float> own = self >= 0 ? std::vector<float>() : profileOf(row);
  const float* profile = self >= 0 ? &profiles_[static_cast<size_t>(self) * length] : own.data();
  // The best-correlated clusters (ties to the lower block), then scored.
  std::vector<std::pair<float, int>> ranked;
  for (int b = 0; b < blocks; ++b) {
    if (b == self) continue;
    ranked.push_back({-detail::profileDot(profile, &profiles_[static_cast<size_t>(b) * length], length), b});
  }
  const size_t kept = std::min(ranked.size(), size_t{kProfileCandidates});
  std::partial_sort(ranked.begin(), ranked.begin() + kept, ranked.end());
  ranked.resize(kept);
  std::sort(ranked.begin(), ranked.end(), [](const auto& a, const auto& b) { return a.second < b.second; });
  for (const auto& [unused, b] : ranked) nearest.offer(score_(row, repRows_[b]), b);
  return nearest.best();
}

}  // namespace tool
