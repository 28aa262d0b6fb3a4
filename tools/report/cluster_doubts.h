// Figures that show which clusters of a run to doubt, from the similarities
// of the report's heat map (every clustered face is in it).
#ifndef XVKFC_TOOLS_REPORT_CLUSTER_DOUBTS_H_
#define XVKFC_TOOLS_REPORT_CLUSTER_DOUBTS_H_

#include <map>
#include <string>
#include <vector>

#include "tools/report/similarity_view.h"

namespace tool {

// Similarities here are the engine's kernel values, 0..1: a score of the
// 0..1023 scale divided by 1023 (within 0.001 of the kernel value).
struct ClusterFigures {
  int id = -1;
  int faces = 0;                    // faces shown
  double lowestInside = 1.0;        // lowest similarity of two members; 1 for one face
  double meanInside = 1.0;          // mean over pairs of members; 1 for one face
  double bestOther = 0.0;           // highest similarity of a member to a face of another cluster
  int nearestCluster = -1;          // the cluster of that face; -1 without other clusters
  int identities = 0;               // distinct known identities among members
  std::vector<std::string> doubts;  // why the cluster is marked; empty when not
};

// Figures of every block of `view`, in block order, marked against the
// engine's own levels: a pair inside below the split level 0.69, a mean
// inside below it, a face of another cluster at the best-pair merge level
// 0.74 or more, and, when `identities` are known, more than one identity.
std::vector<ClusterFigures> clusterFigures(const SimilarityView& view,
                                           const std::map<int, int>& identities);

// An unclustered face and its most similar clustered face.
struct CloseMatch {
  int faceId = -1;
  int matchFaceId = -1;
  int clusterId = -1;
  double similarity = 0.0;
};

// Unclustered faces of `view` whose most similar clustered face reaches
// `level`, the closest first.
std::vector<CloseMatch> closeUnclustered(const SimilarityView& view, double level);

}  // namespace tool

#endif  // XVKFC_TOOLS_REPORT_CLUSTER_DOUBTS_H_
