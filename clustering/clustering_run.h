// A clustering run that either completes or changes nothing.
#ifndef XVKFC_CLUSTERING_CLUSTERING_RUN_H_
#define XVKFC_CLUSTERING_CLUSTERING_RUN_H_

#include <vector>

#include "clustering/face_clustering_system.h"

namespace detail {

// Runs engine.clusteringFace(existing). When any allocation fails during it,
// caught and logged by the engine or not, the engine is put back as it was
// before the call: the previous clusters stay and the queued faces stay
// queued, since a partial result would lose faces the application handed
// over. Returns true for a completed run, false for a run undone after a
// caught allocation failure; any other failure is rethrown after the undo.
// Throws std::bad_alloc, changing nothing, when the copy it undoes from
// cannot be made.
bool runClusteringOrUndo(FaceClusteringSystem& engine, const std::vector<clusterinfo>& existing);

}  // namespace detail

#endif  // XVKFC_CLUSTERING_CLUSTERING_RUN_H_
