// The program's one handle on the library, used only through the public
// interface (FaceRecognition and its itf_xvk_* operations).
#ifndef XVKFC_TOOLS_RUN_ENGINE_SESSION_H_
#define XVKFC_TOOLS_RUN_ENGINE_SESSION_H_

#include <string>
#include <vector>

#include "interface/face_recognition.h"
#include "tools/cluster_records.h"
#include "tools/formats/feature_file.h"

namespace tool {

// Owns one initialised FaceRecognition handle and converts between the
// program's records and the library's exchange records. Not copyable; one
// thread.
class EngineSession {
 public:
  // Initialises the handle with the model folder of the closed libraries.
  // Throws ToolError when itf_xvk_Init does not return 960.
  explicit EngineSession(const std::string& modelDir);
  ~EngineSession();
  EngineSession(const EngineSession&) = delete;
  EngineSession& operator=(const EngineSession&) = delete;

  // Queues rows [begin, end) of `features` under the matching `faceIds`.
  // REQUIRES: faceIds.size() == features.rows(), begin <= end <= rows.
  void load(const FeatureMatrix& features, const std::vector<int>& faceIds, int begin, int end);

  // Clusters the queued faces together with `existing`; throws ToolError when
  // the library rejects the run.
  void run(const std::vector<ClusterRecord>& existing);

  // The clusters of the last run, in the library's order (bucket -1 first).
  std::vector<ClusterRecord> clusters();

  // The handle itself, for operations built on the public interface.
  FaceRecognition* handle() { return &handle_; }

  // itf_xvk_compareFeature: 0..1023.
  int compare(const float* a, const float* b);

  // itf_xvk_getClusterFeature over all rows; throws ToolError on failure.
  std::vector<float> representative(const FeatureMatrix& features);

  // itf_xvk_recommendCluster: the id of the best cluster, or -1.
  int recommend(const std::vector<ClusterRecord>& clusters, const float* feature);

  // itf_xvk_extractFeature; empty when the library finds no face.
  std::vector<float> extract(std::vector<unsigned char>& image, int width, int height,
                             const itf_xvk_faceroi& roi);

 private:
  FaceRecognition handle_;
};

}  // namespace tool

#endif  // XVKFC_TOOLS_RUN_ENGINE_SESSION_H_
