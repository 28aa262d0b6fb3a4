// Resetting the engine's loaded faces between runs.
#ifndef XVKFC_CLUSTERING_FEATURE_RESET_H_
#define XVKFC_CLUSTERING_FEATURE_RESET_H_

#include <vector>

#include "clustering/face_clustering_system.h"
#include "numeric/mat.h"

namespace detail {

// Destroys every feature matrix, gives their storage back, and leaves exactly
// one copy of `empty`. Releasing first means the reset always allocates anew,
// so it is the one step of a reset that can run out of memory.
inline void resetFeatureMats(std::vector<Mat<float>>& featureMats, const Mat<float>& empty) {
  std::vector<Mat<float>>().swap(featureMats);
  featureMats.assign(1, empty);
}

// Forgets the loaded faces: their records, the kernel and the feature rows,
// leaving one empty matrix. Throws std::bad_alloc when that matrix cannot be
// made; no face stays loaded either way.
inline void dropLoadedFaces(FaceClusteringSystem& engine) {
  engine.faces.clear();
  engine.kernel.clear();
  resetFeatureMats(engine.featureMats, engine.emptyFeatureMat);
}

}  // namespace detail

#endif  // XVKFC_CLUSTERING_FEATURE_RESET_H_
