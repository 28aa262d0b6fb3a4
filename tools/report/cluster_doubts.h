// Figures that show which clusters of a run to doubt and which unclustered
// faces deserve another look, from the library's similarities of the faces.
// Bounded work and memory: no n x n matrix; a face is compared with the
// members of only the few clusters whose representatives are nearest it.
#ifndef XVKFC_TOOLS_REPORT_CLUSTER_DOUBTS_H_
#define XVKFC_TOOLS_REPORT_CLUSTER_DOUBTS_H_

#include <map>
#include <string>
#include <vector>

#include "tools/report/near_clusters.h"
#include "tools/report/similarity_view.h"

namespace tool {

// Similarities here are the engine's kernel values, 0..1: a score of the
// 0..1023 scale divided by 1023 (within 0.001 of the kernel value).
struct ClusterFigures {
  int id = -1;
  int faces = 0;                    // members with features
  double lowestInside = 1.0;        // lowest similarity of two members; 1 for one face
  double meanInside = 1.0;          // mean over pairs of members; 1 for one face
  double bestOther = 0.0;           // highest similarity of a member to a face of a near cluster
  int nearestCluster = -1;          // the cluster of that face; -1 without other clusters
  int identities = 0;               // distinct known identities among members
  std::vector<std::string> doubts;  // why the cluster is marked; empty when not
};

// An unclustered face and its most similar clustered face.
struct CloseMatch {
  int faceId = -1;
  int matchFaceId = -1;
  int clusterId = -1;
  double similarity = 0.0;
};

// Two unclustered faces that resemble each other.
struct FacePair {
  int faceA = -1, faceB = -1;
  double similarity = 0.0;
};

struct GalleryFigures {
  std::vector<ClusterFigures> clusters;  // one per block of the order, in block order
  std::vector<CloseMatch> closeMatches;  // every unclustered face at `level` or more, closest first
  std::vector<FacePair> pairs;           // the closest unclustered pairs at `level`, at most maxPairs
  long pairsFound = 0;                   // unclustered pairs at `level` or more in all
  long comparisons = 0;                  // scores asked for
};

// Figures of every block of `order` (faceIds: the face id of each row),
// marked against the engine's own levels: a pair inside below the split
// level 0.69, a mean inside below it, a face of a near cluster at `level`
// (the best-pair merge level 0.74) or more, and, when `identities` are
// known, more than one identity. Every unclustered face is matched against
// the members of its kNearestClusters nearest clusters (by representative,
// found as `search` says); pairs of unclustered faces are sought among the
// faces that share one of their two nearest reference faces (every k-th
// unclustered face, k about the square root of their count), so a pair far
// from every reference face may be missed.
GalleryFigures measureGallery(const ClusterOrder& order, const std::vector<int>& faceIds,
                              const std::map<int, int>& identities, double level, size_t maxPairs,
                              const RowScore& score, NearSearch search = NearSearch::kAuto);

}  // namespace tool

#endif  // XVKFC_TOOLS_REPORT_CLUSTER_DOUBTS_H_
