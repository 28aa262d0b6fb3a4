// Resetting the engine's feature matrices between runs.
#ifndef XVKFC_CLUSTERING_FEATURE_RESET_H_
#define XVKFC_CLUSTERING_FEATURE_RESET_H_

#include <vector>

#include "numeric/mat.h"

namespace detail {

// Destroys every feature matrix, gives their storage back, and leaves exactly
// one copy of `empty`. Releasing first means the reset always allocates anew,
// so it is the one step of a reset that can run out of memory.
inline void resetFeatureMats(std::vector<Mat<float>>& featureMats, const Mat<float>& empty) {
  std::vector<Mat<float>>().swap(featureMats);
  featureMats.assign(1, empty);
}

}  // namespace detail

#endif  // XVKFC_CLUSTERING_FEATURE_RESET_H_
