#include "clustering/clustering_run.h"

#include <map>
#include <utility>

#include "platform/alloc_guard.h"

namespace {

// Everything a run changes: the queued faces and the result. The kernel is
// rebuilt by every run and empty outside one, and clusterInfos is rebuilt by
// every read of the result.
struct RunState {
  int initialFaceCount;
  std::vector<Face> faces;
  int clusterCount;
  std::map<int, Cluster> clusters;
  std::vector<Mat<float>> featureMats;

  explicit RunState(const FaceClusteringSystem& engine)
      : initialFaceCount(engine.initialFaceCount),
        faces(engine.faces),
        clusterCount(engine.clusterCount),
        clusters(engine.clusters),
        featureMats(engine.featureMats) {}

  // Moves only: cannot fail.
  void restore(FaceClusteringSystem& engine) {
    engine.initialFaceCount = initialFaceCount;
    engine.faces = std::move(faces);
    engine.clusterCount = clusterCount;
    engine.clusters = std::move(clusters);
    engine.featureMats = std::move(featureMats);
    engine.kernel.clear();
  }
};

}  // namespace

namespace detail {

bool runClusteringOrUndo(FaceClusteringSystem& engine, const std::vector<clusterinfo>& existing) {
  RunState before(engine);
  const unsigned long failuresBefore = caughtAllocFailures();
  try {
    engine.clusteringFace(existing);
  } catch (...) {
    before.restore(engine);
    throw;
  }
  if (caughtAllocFailures() == failuresBefore) return true;
  before.restore(engine);
  return false;
}

}  // namespace detail
