// Step 2 of a plan: finding, for any profile, the profiles that correlate
// with it best without scoring every pair. Profiles are put in cells around
// pivot profiles (every kCellSize-th one, the profile order being fixed); a
// search ranks the pivots and looks only into the kProbedCells cells of the
// best ones. With no more cells than that the search is exhaustive.
#ifndef XVKFC_PLANNING_PROFILE_INDEX_H_
#define XVKFC_PLANNING_PROFILE_INDEX_H_

#include <vector>

#include "planning/score_profiles.h"

namespace detail {

// Profiles per cell on average, and cells a search looks into: a search
// scores about kCellSize * kProbedCells profiles plus one per cell.
inline constexpr int kCellSize = 128;
inline constexpr int kProbedCells = 12;

// An index over profiles 0..count-1 of `profiles` (pointed to, not owned;
// it must outlive the index and may grow after it is built).
class ProfileIndex {
 public:
  ProfileIndex(const ScoreProfiles& profiles, int count);

  // The up to `k` indexed profiles that correlate best with `profile`,
  // best first (ties to the lower index), `self` left out (-1 for none).
  void search(int profile, int self, int k, std::vector<int>& best) const;

 private:
  const ScoreProfiles& profiles_;
  std::vector<int> pivots_;     // profile index of each cell's pivot
  std::vector<int> cellStart_;  // members of cell c: members_[cellStart_[c] .. cellStart_[c + 1])
  std::vector<int> members_;
};

}  // namespace detail

#endif  // XVKFC_PLANNING_PROFILE_INDEX_H_
