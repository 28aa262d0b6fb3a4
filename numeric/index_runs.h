// An index list read as runs of consecutive indices, so that a gather through
// the list becomes contiguous loads.
#ifndef XVKFC_NUMERIC_INDEX_RUNS_H_
#define XVKFC_NUMERIC_INDEX_RUNS_H_

#include <vector>

#include "numeric/vec.h"

namespace detail {

// Entries first .. first+length-1 of the list are the indices
// start .. start+length-1.
struct Run {
  int first;
  int start;
  int length;
};

// The runs of consecutive indices of `index`, in order (empty for an empty
// list).
void findRuns(const Vec<int>& index, std::vector<Run>& runs);

}  // namespace detail

#endif  // XVKFC_NUMERIC_INDEX_RUNS_H_
