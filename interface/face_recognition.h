// Start here: the public interface of libxvkfcEngineTAVO.
//
// Conventions of every operation below:
//  1. An application creates one FaceRecognition (all members null), calls
//     itf_xvk_Init with the folder of the closed libraries' model files, uses
//     the other itf_xvk_* operations, and ends with itf_xvk_Release. Every
//     operation other than Init and Release requires a handle on which
//     itf_xvk_Init returned 960.
//  2. Results are plain integers or pointers: 1, a count or 960 for success;
//     0, -1 or null for failure, as each operation states. No exception
//     leaves the library: an unexpected failure is logged and reported as the
//     operation's failure value.
//  3. Features are 960 floats. Pointers to features are read only and stay
//     the caller's.
//  4. Arrays the library hands out are allocated with malloc: the lists of
//     itf_xvk_getClusterInfo are given back with itf_xvk_releaseClusterInfo,
//     the feature of itf_xvk_getClusterFeature with free(). The pointer from
//     itf_xvk_extractFeature points into the handle and must not be freed.
//  5. Every log line goes to the Android log at debug priority with the tag
//     "FC_Native".
//  6. The library starts no threads and takes no locks; one handle must not
//     be used from two threads at once.
#ifndef XVKFC_INTERFACE_FACE_RECOGNITION_H_
#define XVKFC_INTERFACE_FACE_RECOGNITION_H_

#include "interface/exchange_records.h"
#include "platform/export.h"

class CFRecogInterface;
class CLandmarkInterface;
class FaceClusteringSystem;

// The library's version text, printed by itf_xvk_Init: "__ITF__FACESOLUTION__
// Version : 2016.11.24(M)" followed by zero bytes. Writable, as it always was.
XVKFC_EXPORT extern char itf_FACE_SOLUTION_Version[1000];

// The handle an application uses the library through. Owns the feature
// extractor, the landmark detector, the clustering engine and the feature
// buffer; holds no other state. Not copyable.
class XVKFC_EXPORT FaceRecognition {
 public:
  CFRecogInterface* recognizer = nullptr;          // feature extractor/comparator
  CLandmarkInterface* landmarkDetector = nullptr;  // landmark detector
  FaceClusteringSystem* engine = nullptr;          // clustering engine
  float* featureBuffer = nullptr;  // 960 floats: the result of itf_xvk_extractFeature

  FaceRecognition() = default;
  FaceRecognition(const FaceRecognition&) = delete;
  FaceRecognition& operator=(const FaceRecognition&) = delete;

  // --- Lifecycle ----------------------------------------------------------------

  // Builds, or on a ready handle rebuilds, everything the handle owns, in this
  // order: extractor (Init(960, modelPath)), landmark detector (Init(1,
  // modelPath)), engine, feature buffer. Each object is replaced only after
  // the previous step succeeded. Loaded faces and clusters are dropped.
  // Returns 960 on success; otherwise the first failing step's value, which is
  // less than 1, and the later members keep what they held.
  int itf_xvk_Init(const char* modelPath);

  // Releases everything the handle owns and nulls the members. Always 1; safe
  // on an empty or already released handle.
  int itf_xvk_Release();

  // --- Features -------------------------------------------------------------------

  // Extracts the feature of the face inside `roi` of a planar YUV 4:2:0
  // image (Y plane width x height, then U and V planes of
  // ((width+1)/2) x ((height+1)/2) each, no row padding).
  // Returns featureBuffer holding the 960 floats, overwritten by the next
  // extraction; null when the image is invalid (logs "Invalid Image Data"),
  // when no landmarks are found or when extraction fails (featureBuffer is
  // then unchanged). `landmarks` is neither read nor written.
  // REQUIRES: dataLength >= the planar 4:2:0 size; checked.
  float* itf_xvk_extractFeature(unsigned char* image, int dataLength, int width, int height,
                                itf_xvk_faceroi roi, itf_xvk_landmark* landmarks);
  // The same without the landmark argument.
  float* itf_xvk_extractFeature(unsigned char* image, int dataLength, int width, int height,
                                itf_xvk_faceroi roi);

  // Similarity of two features on 0..1023 (1023 identical, 511 unrelated,
  // 0 opposite); -1 when either pointer is null.
  int itf_xvk_compareFeature(float* reg, float* test);

  // The feature dimension, 960.
  int itf_xvk_getDim();

  // --- Clustering -----------------------------------------------------------------

  // Queues one face for the next clustering run (copies 960 floats).
  // Returns 1; -1 for a null feature.
  int itf_xvk_loadFaceFeature(float* feature, int faceId);

  // Clusters the queued faces together with the application's clusters in
  // `list` (null for none), then forgets the queued faces. Returns 1; 0 when
  // `list` is malformed (nothing changes).
  int itf_xvk_runClustering(itf_xvk_clusterinfo* list);

  // Writes the clusters of the last run into `list` (malloc'd arrays; give
  // them back with itf_xvk_releaseClusterInfo) and returns their number. With
  // no clusters, count is set to 0 and items is left as it was.
  int itf_xvk_getClusterInfo(itf_xvk_clusterinfo* list);

  // Representative (medoid) feature of `count` consecutive features: a
  // malloc'd copy of 960 floats, freed by the caller with free(); null for
  // invalid input. Replaces the queued faces.
  float* itf_xvk_getClusterFeature(float* features, int count);

  // The id of the application cluster in `list` that best fits `feature`
  // (score 921..1023), or -1. The last argument is not used.
  int itf_xvk_recommendCluster(itf_xvk_clusterinfo* list, float* feature, int count);

  // Frees the arrays that itf_xvk_getClusterInfo put into `list` and sets
  // its count to 0 and items to null.
  void itf_xvk_releaseClusterInfo(itf_xvk_clusterinfo* list);
};

#endif  // XVKFC_INTERFACE_FACE_RECOGNITION_H_
