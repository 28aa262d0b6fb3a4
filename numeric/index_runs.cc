#include "numeric/index_runs.h"

#include <cstddef>

namespace detail {

void findRuns(const Vec<int>& index, std::vector<Run>& runs) {
  runs.clear();
  for (std::size_t v = 0; v < index.size(); ++v) {
    if (!runs.empty() && index[v] == runs.back().start + runs.back().length) {
      ++runs.back().length;
    } else {
      runs.push_back({static_cast<int>(v), index[v], 1});
    }
  }
}

}  // namespace detail
