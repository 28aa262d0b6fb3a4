// Start here: the public interface of libxvkfcEngineTAVO.
//
// Conventions of every operation below:
//  1. An application creates one FaceRecognition (all members null), calls
//     itf_xvk_Init with the folder of the closed libraries' model files, uses
//     the other itf_xvk_* operations, and ends with itf_xvk_Release. The
//     handle is ready from an itf_xvk_Init that returned 960 until the next
//     itf_xvk_Init or itf_xvk_Release. On a handle that is not ready (never
//     initialised, released, or whose last Init failed) every operation
//     below except itf_xvk_getDim and itf_xvk_releaseClusterInfo logs one
//     line ("<operation>: the handle is not ready ...") and returns its
//     failure value (-1, 0 or null; itf_xvk_getClusterInfo also sets count
//     to 0) without touching the handle's objects.
//  2. Results are plain integers or pointers: 1, a count or 960 for success;
//     0, -1 or null for failure, as each operation states. No exception
//     leaves the library: an unexpected failure is logged and reported as the
//     operation's failure value.
//  2a. Running out of memory never makes the library read or write out of
//     range, and always leaves a log line: the engine's "malloc fail!!!(..."
//     lines where it occurs, or one "<operation> failed: ..." line. A
//     clustering run or a load during which any allocation fails reports
//     failure and changes nothing: no face and no cluster is lost. Other
//     operations end with their failure value or, where stated, the partial
//     result they have.
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
  // less than 1, and the later members keep what they held, but the handle
  // is not ready: the engine no longer uses any recognizer.
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
  // then unchanged). The image is invalid when it is null, a size is not
  // positive, dataLength is shorter than the planar 4:2:0 size,
  // width x height x 3 does not fit in an int, or roi.left + roi.width or
  // roi.top + roi.height does not fit in an int (all checked in 64 bits).
  // When the BGR copy of the image cannot be allocated the result is null
  // and "malloc fail!!!(bgr image in itf_xvk_extractFeature" is logged.
  // `landmarks` is neither read nor written.
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

  // Queues one face for the next clustering run: copies the 960 floats at
  // `feature` under the application's `faceId` (ids should be unique; they
  // are what the cluster lists report). Returns 1; -1 for a null feature
  // (logs "feature == NULL").
  // Out of memory: the face is not queued and -1 is returned, with
  // "malloc fail!!!(zeros in loadFeatureVector" or "malloc fail!!!(add face
  // in loadFeatureVector" logged: load the face again.
  // REQUIRES: feature points to 960 floats.
  int itf_xvk_loadFaceFeature(float* feature, int faceId);

  // Clusters the queued faces, merges the outcome with the application's
  // clusters in `list` (null or count 0 for none), then forgets the queued
  // faces. The application's clusters keep their faces and come first, in
  // clusterId order; the new clusters follow. A queued face that fits no new
  // cluster joins every application cluster whose feature it matches (mapped
  // similarity 0.9 or more), otherwise the bucket -1; but it is left out of
  // every cluster when the joins of all such faces (one per cluster joined)
  // are at least as many as those faces. Clusters whose features match at
  // 0.87 or more are united. The result, read with itf_xvk_getClusterInfo,
  // is numbered 0, 1, 2, ... plus the bucket -1.
  // With no queued faces nothing is clustered: `list` is not merged and the
  // previous result stays as it was.
  // An element with a clusterId of 0 or more and featureDim 0 (what
  // itf_xvk_getClusterInfo hands out for a cluster whose representative ran
  // out of memory) is taken over with its faces but never compared: no
  // queued face joins it, no cluster is united with it; it keeps its place
  // in the numbering. Its feature is not read, nor that of an element with
  // clusterId -1.
  // Returns 1. Returns 0, logs which element is wrong, and changes nothing
  // (the queued faces stay queued) when `list` is malformed: a negative
  // count; null items for a positive count; an element with a clusterId
  // below -1 or above INT_MAX - 2 - (number of queued faces) (the largest
  // id after which the new clusters can still be numbered in an int), a
  // negative faceCount, null faceIds for a positive faceCount, or (clusterId
  // 0 or more) a featureDim other than 0 or 960, or a null feature with
  // featureDim 960. `list` is only read.
  // Out of memory: a run during which any allocation fails returns 0 and
  // changes nothing, as for a malformed list: the previous result stays
  // readable and the queued faces stay queued, so running again later gives
  // the full result. The engine's "malloc fail!!!(..." lines are logged
  // where the failures occur, and the run adds one "itf_xvk_runClustering
  // failed: ..." line. Any other failure during the run ends the same way.
  // A run that returns 1 had no allocation failure.
  int itf_xvk_runClustering(itf_xvk_clusterinfo* list);

  // Writes the result of the last run into `list` and returns the number of
  // clusters, in ascending clusterId order (the bucket -1 first). Every
  // element gets a malloc'd faceIds array (also for 0 ids); an element with
  // a clusterId of 0 or more gets a malloc'd copy of its 960-float feature
  // and its repFaceId, the bucket -1 gets featureDim 0, feature null and
  // repFaceId -1. Give the arrays back with itf_xvk_releaseClusterInfo.
  // A cluster whose representative could not be computed for lack of memory
  // (logged during the run) has featureDim 0; itf_xvk_runClustering takes
  // it back as it is.
  // Before any run the result is the empty bucket: 1 element, 0 face ids.
  // With no clusters, count is set to 0 and items is left as it was. Returns
  // 0 without touching anything for a null `list`, and 0 with count set to 0
  // when malloc fails (logged; nothing is left allocated).
  int itf_xvk_getClusterInfo(itf_xvk_clusterinfo* list);

  // Representative (medoid) feature of `count` consecutive 960-float
  // features at `features`: a malloc'd copy of the one feature most similar
  // on average to the others (ties to the earliest in ascending float
  // order), freed by the caller with free(). Returns null for a null
  // `features` or a count of 0 or less (nothing changes then).
  // Side effect otherwise: the queued faces are discarded, and for a count
  // of 2 or more the given features become the queued faces (ids 0 ..
  // count-1) that the next itf_xvk_runClustering clusters. A count of 1
  // returns a copy of the input without queuing it. Null, with one logged
  // line, when memory runs out.
  float* itf_xvk_getClusterFeature(float* features, int count);

  // The clusterId of the element of `list` whose feature best fits
  // `feature`, scored 921..1023 (a comparator score above 0.8); -1 when none
  // scores that high. Elements with a negative clusterId are skipped; an
  // element with clusterId 0 or more whose feature is null or whose
  // featureDim is not 960 makes the result -1. Ties go to the earlier
  // element. Returns -1 for a null `list`, items or `feature` and for a count
  // below 1. The last argument is not used. `list` is only read.
  int itf_xvk_recommendCluster(itf_xvk_clusterinfo* list, float* feature, int count);

  // Frees the faceIds and feature arrays of every element and the items
  // array that itf_xvk_getClusterInfo put into `list`, then sets count to 0
  // and items to null. Does nothing for a null `list` or a count below 1 (an
  // items array with count 0 is not freed).
  // REQUIRES: the arrays of `list` came from itf_xvk_getClusterInfo (or
  // malloc).
  void itf_xvk_releaseClusterInfo(itf_xvk_clusterinfo* list);
};

#endif  // XVKFC_INTERFACE_FACE_RECOGNITION_H_
