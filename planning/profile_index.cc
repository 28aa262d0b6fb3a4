#include "planning/profile_index.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace detail {

namespace {

// Keeps the `k` best (score, index) entries of `best`, best first: higher
// score, then lower index.
void keepBest(std::vector<std::pair<float, int>>& best, std::size_t k, float score, int index) {
  const std::pair<float, int> entry(-score, index);
  if (best.size() == k && !(entry < best.back())) return;
  best.insert(std::upper_bound(best.begin(), best.end(), entry), entry);
  if (best.size() > k) best.pop_back();
}

}  // namespace

ProfileIndex::ProfileIndex(const ScoreProfiles& profiles, int count) : profiles_(profiles) {
  const int cells = std::max(1, count / kCellSize);
  for (int c = 0; c < cells; ++c)
    pivots_.push_back(static_cast<int>(static_cast<int64_t>(c) * count / cells));
  // Each profile goes to the cell of the pivot it correlates with best.
  std::vector<int> cellOf(count);
  std::vector<int> sizes(cells, 0);
  const int length = profiles_.length();
  for (int i = 0; i < count; ++i) {
    int bestCell = 0;
    float bestDot = profileDot(profiles_.profile(i), profiles_.profile(pivots_[0]), length);
    for (int c = 1; c < cells; ++c) {
      const float dot = profileDot(profiles_.profile(i), profiles_.profile(pivots_[c]), length);
      if (dot > bestDot) bestDot = dot, bestCell = c;
    }
    cellOf[i] = bestCell;
    ++sizes[bestCell];
  }
  cellStart_.assign(cells + 1, 0);
  for (int c = 0; c < cells; ++c) cellStart_[c + 1] = cellStart_[c] + sizes[c];
  members_.resize(count);
  std::vector<int> fill(cellStart_.begin(), cellStart_.end() - 1);
  for (int i = 0; i < count; ++i) members_[fill[cellOf[i]]++] = i;
}

void ProfileIndex::search(int profile, int self, int k, std::vector<int>& best) const {
  const int length = profiles_.length();
  const float* query = profiles_.profile(profile);
  const int cells = static_cast<int>(pivots_.size());
  std::vector<std::pair<float, int>> ranked;
  if (cells > kProbedCells) {
    for (int c = 0; c < cells; ++c)
      keepBest(ranked, kProbedCells, profileDot(query, profiles_.profile(pivots_[c]), length), c);
  } else {
    for (int c = 0; c < cells; ++c) ranked.emplace_back(0.0f, c);
  }
  std::vector<std::pair<float, int>> found;
  for (const auto& cell : ranked) {
    for (int m = cellStart_[cell.second]; m < cellStart_[cell.second + 1]; ++m) {
      const int other = members_[m];
      if (other == self) continue;
      keepBest(found, static_cast<std::size_t>(k), profileDot(query, profiles_.profile(other), length),
               other);
    }
  }
  best.clear();
  for (const auto& entry : found) best.push_back(entry.second);
}

}  // namespace detail
