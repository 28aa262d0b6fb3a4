// Clustering quality against known identities, with the measures the
// face-clustering literature uses.
#ifndef XVKFC_EVALUATION_QUALITY_H_
#define XVKFC_EVALUATION_QUALITY_H_

#include <vector>

#include "interface/face_recognition.h"

namespace evaluation {

struct PrecisionRecall {
  double precision = 1.0;
  double recall = 1.0;
  double f = 1.0;  // harmonic mean of the two; 0 when both are 0
};

struct Quality {
  int faces = 0;             // faces measured
  PrecisionRecall pairwise;  // over pairs of faces
  PrecisionRecall bcubed;    // per face, averaged over faces
};

// Measures a partition of faces: `predicted[i]` and `truth[i]` are the
// cluster and the identity of face i. Every face belongs to exactly one
// cluster; an unclustered face must carry a cluster label of its own.
// Pairwise: precision = pairs in the same cluster and the same identity /
// pairs in the same cluster; recall = the same / pairs of the same identity.
// A ratio over no pairs counts as 1 (nothing was claimed, or nothing was to
// be found). BCubed: for face i with cluster C and identity L, precision_i =
// |C and L| / |C|, recall_i = |C and L| / |L|, each averaged over the faces.
// Counts pairs in 64 bits; accumulates in double.
// REQUIRES: predicted.size() == truth.size().
Quality measureQuality(const std::vector<int>& predicted, const std::vector<int>& truth);

// The cluster of each face in `faceIds` according to a cluster list of the
// library (itf_xvk_getClusterInfo): the id of the first real cluster
// (id >= 0) that lists it, in the list's order. Faces in no real cluster
// (unclustered, or left out of the list) each get a label of their own
// below -1, so they count as singletons. The list stays the caller's.
std::vector<int> clusterOfFaces(const itf_xvk_clusterinfo& clusters,
                                const std::vector<int>& faceIds);

}  // namespace evaluation

#endif  // XVKFC_EVALUATION_QUALITY_H_
