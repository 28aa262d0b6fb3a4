#include "tools/run/engine_session.h"

#include <cstdlib>

#include "tools/tool_error.h"

namespace tool {

EngineSession::EngineSession(const std::string& modelDir) {
  const int status = handle_.itf_xvk_Init(modelDir.c_str());
  if (status != kFeatureDim) {
    handle_.itf_xvk_Release();
    throw ToolError(modelDir +
                    ": the library did not start with this model folder (itf_xvk_Init "
                    "returned " +
                    std::to_string(status) + ")");
  }
}

EngineSession::~EngineSession() { handle_.itf_xvk_Release(); }

void EngineSession::load(const FeatureMatrix& features, const std::vector<int>& faceIds, int begin,
                         int end) {
  for (int i = begin; i < end; ++i) {
    if (handle_.itf_xvk_loadFaceFeature(const_cast<float*>(features.row(i)), faceIds[i]) != 1) {
      throw ToolError("the library refused feature " + std::to_string(i));
    }
  }
}

void EngineSession::run(const std::vector<ClusterRecord>& existing) {
  ExchangeList list(existing);
  if (handle_.itf_xvk_runClustering(list.get()) != 1) {
    throw ToolError("the library rejected the existing clusters");
  }
}

std::vector<ClusterRecord> EngineSession::clusters() {
  itf_xvk_clusterinfo list{0, nullptr};
  handle_.itf_xvk_getClusterInfo(&list);
  std::vector<ClusterRecord> records = recordsOf(list);
  handle_.itf_xvk_releaseClusterInfo(&list);
  return records;
}

int EngineSession::compare(const float* a, const float* b) {
  return handle_.itf_xvk_compareFeature(const_cast<float*>(a), const_cast<float*>(b));
}

std::vector<float> EngineSession::representative(const FeatureMatrix& features) {
  float* feature = handle_.itf_xvk_getClusterFeature(const_cast<float*>(features.values.data()),
                                                     features.rows());
  if (feature == nullptr) throw ToolError("the library found no representative feature");
  std::vector<float> result(feature, feature + kFeatureDim);
  std::free(feature);
  return result;
}

int EngineSession::recommend(const std::vector<ClusterRecord>& clusters, const float* feature) {
  ExchangeList list(clusters);
  return handle_.itf_xvk_recommendCluster(list.get(), const_cast<float*>(feature), 0);
}

std::vector<float> EngineSession::extract(std::vector<unsigned char>& image, int width, int height,
                                          const itf_xvk_faceroi& roi) {
  const float* feature = handle_.itf_xvk_extractFeature(
      image.data(), static_cast<int>(image.size()), width, height, roi);
  if (feature == nullptr) return {};
  return std::vector<float>(feature, feature + kFeatureDim);
}

}  // namespace tool
