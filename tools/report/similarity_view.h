// The faces and similarities that the report's heat map shows.
#ifndef XVKFC_TOOLS_REPORT_SIMILARITY_VIEW_H_
#define XVKFC_TOOLS_REPORT_SIMILARITY_VIEW_H_

#include <vector>

#include "tools/formats/cluster_json.h"
#include "tools/formats/feature_file.h"
#include "tools/run/engine_session.h"
#include "tools/run/progress.h"

namespace tool {

// Faces laid out by cluster: the members of each real cluster in turn (in
// list order), then the unclustered faces, then faces that no cluster lists.
struct ClusterOrder {
  std::vector<int> rows;      // rows of the feature matrix, in display order
  std::vector<int> blocks;    // sizes of the consecutive real-cluster runs
  std::vector<int> blockIds;  // the cluster id of each block
};

// Lays out rows 0..faceIds.size()-1 by the clusters that list their face
// ids. A face listed by two clusters is shown with the first. Every face of
// a real cluster is kept, so that no cluster's figures are estimated; when
// more than `maxFaces` rows would be shown, only the faces after the
// clusters are thinned out, to every k-th (k the smallest step that leaves
// at most maxFaces minus the clustered faces, and at least one).
// REQUIRES: maxFaces > 0.
ClusterOrder orderByCluster(const std::vector<ClusterRecord>& clusters,
                            const std::vector<int>& faceIds, int maxFaces);

struct SimilarityView {
  ClusterOrder order;
  std::vector<int> faceIds;       // face id of each shown face
  std::vector<int> similarities;  // n x n itf_xvk_compareFeature scores, row-major
  int facesWithFeatures = 0;      // faces before thinning out
};

// Orders the faces by cluster and scores every shown pair with the
// library's comparison (each unordered pair once; the diagonal too).
SimilarityView buildSimilarityView(EngineSession& session, const FeatureMatrix& features,
                                   const std::vector<int>& faceIds,
                                   const std::vector<ClusterRecord>& clusters, int maxFaces,
                                   Progress& progress);

}  // namespace tool

#endif  // XVKFC_TOOLS_REPORT_SIMILARITY_VIEW_H_
