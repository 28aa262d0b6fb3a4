// FaceClusteringSystem: the clustering engine behind one FaceRecognition
// handle.
#ifndef XVKFC_CLUSTERING_FACE_CLUSTERING_SYSTEM_H_
#define XVKFC_CLUSTERING_FACE_CLUSTERING_SYSTEM_H_

#include <map>
#include <vector>

#include "clustering/records.h"
#include "numeric/mat.h"
#include "numeric/vec.h"
#include "platform/export.h"

// Holds the faces loaded for the next clustering run, their similarity
// kernel, and the cluster map of the last run. Owns every member except
// `recognizer` (the handle's CFRecogInterface, used for comparisons).
// Starts no threads; one engine must not be used from two threads at once.
//
// Allocation failures are caught where the operations below say so, logged
// with a fixed "malloc fail!!!(..." line, and end the operation quietly with
// an empty or partial result. Other failures propagate. A clustering run is
// all or nothing through detail::runClusteringOrUndo
// (clustering/clustering_run.h), which puts the engine back after a run
// during which any allocation failed.
class XVKFC_EXPORT FaceClusteringSystem {
 public:
  // Members in declaration order; public, as the exported interface shows
  // them.
  Mat<float> emptyFeatureMat;  // always empty: what featureMats resets to
  int initialFaceCount = 0;    // faces that arrived inside application clusters
  std::vector<Face> faces;     // one per loaded face, in feature row order
  int clusterCount = 0;        // entries of `clusters` after the last refine/merge
  std::map<int, Cluster> clusters;        // cluster id -> cluster, ascending
  std::vector<clusterinfo> clusterInfos;  // result list, rebuilt by getClusterInfo
  // Element 0 holds the loaded features, one 960-float row per face. Outside
  // a run it holds exactly one matrix.
  std::vector<Mat<float>> featureMats;
  // n x n similarities of the loaded faces, in row order.
  std::vector<Vec<float>> kernel;
  void* recognizer = nullptr;  // CFRecogInterface*, not owned

  FaceClusteringSystem() = default;
  FaceClusteringSystem(const FaceClusteringSystem&) = delete;
  FaceClusteringSystem& operator=(const FaceClusteringSystem&) = delete;
  // Destroys the members in reverse order; does not touch `recognizer`.
  ~FaceClusteringSystem() = default;

  // (Re)starts the engine on `recognizer`: counters 0, faces, clusters,
  // result list and kernel emptied, the cluster map left with the bucket of
  // unclustered faces (key -1, id -1), featureMats one empty matrix.
  // Returns 1; 0 for a null recognizer (nothing changed) or when resetting
  // featureMats runs out of memory (logs "malloc fail!!!(in init()").
  int init(void* recognizer);

  // --- Loading and kernel ---------------------------------------------------

  // Copies 960 floats from `feature` as a new row with a Face of `faceId`,
  // keeping the rows in ascending lexicographic order of their floats; row i
  // is always faces[i]. Out of memory, nothing is added (logged).
  void loadFeatureVector(float* feature, int faceId);
  // Replaces `kernel` by the similarities of the rows of features[0]. The
  // Mat<int> is not used.
  void updateKernelwithFeatureMatching(std::vector<Mat<float>>& features, Mat<int>& unused);

  // --- Clustering run ---------------------------------------------------------

  // One clustering run over the loaded faces, merged with `existing`; then
  // the loaded faces are cleared. With no loaded faces the cluster map is
  // kept as it is and `existing` is not merged. Failures other than the
  // caught allocation failures propagate and leave the engine part-way;
  // detail::runClusteringOrUndo puts it back after either.
  void clusteringFace(std::vector<clusterinfo> existing);
  // Split-and-merge cycles, outlier pruning and the rebuild of `clusters`.
  // The Mat<int> is not read.
  void refineClustering(Vec<int>& labels, Mat<int> unused, float threshold,
                        bool splitAndMerge);
  // Cuts in two every cluster that is not tight enough.
  void ClusterSplit(Vec<int>& labels);
  // Joins clusters until a pass joins nothing, then renumbers.
  void MergeClusters(Vec<int>& labels, bool dropSingletons);
  // Merges the run's clusters with the application's clusters.
  // A cluster with an id of 0 or more and no feature is kept but never
  // compared.
  // REQUIRES: every id in `existing` is -1 or more, the largest id plus the
  // number of the run's clusters fits in an int, and every feature is empty
  // or 960 floats (the facade checks all three).
  void mergeInitialCluster(std::vector<clusterinfo> existing);

  // --- Spectral path ------------------------------------------------------------

  // Labels every face of the kernel from scratch: -1 for faces whose best
  // similarity is below `threshold`, spectral cluster numbers for the rest.
  void clustering(Vec<int>& labels, float threshold);

  // --- Results ------------------------------------------------------------------

  // Appends the face ids of `indices` to cluster.members and sets its
  // feature and repFaceId from the medoid of those faces.
  void getClusterFeature(Cluster& cluster, Vec<int> indices);
  // Representative (medoid) feature of `count` features of 960 floats, loaded
  // as faces with the given ids; writes the chosen id to *repFaceId. The
  // loaded faces are discarded first, and for count >= 2 these features stay
  // loaded afterwards. Empty for null features or count <= 0; count 1
  // returns the feature without loading it or writing *repFaceId.
  // REQUIRES: ids has at least `count` entries.
  Vec<float> getClusterFeature(float* features, int count, Vec<int> ids, int* repFaceId);
  // The same with ids 0 .. count-1.
  Vec<float> getClusterFeature(float* features, int count);
  // The cluster map as clusterinfo records, in ascending id order.
  std::vector<clusterinfo> getClusterInfo();
  // 921..1023 when the two features match well enough, otherwise -1.
  int recommendCluster(float* clusterFeature, float* feature, int count);
};

#endif  // XVKFC_CLUSTERING_FACE_CLUSTERING_SYSTEM_H_
