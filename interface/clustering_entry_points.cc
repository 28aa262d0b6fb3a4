// The clustering operations of FaceRecognition: conversions between the
// exchange records and the engine's clusterinfo list.
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "clustering/clustering_run.h"
#include "clustering/face_clustering_system.h"
#include "clustering/thresholds.h"
#include "interface/face_recognition.h"
#include "interface/handle_readiness.h"
#include "platform/alloc_guard.h"
#include "platform/log.h"

namespace {

// The largest application cluster id whose arithmetic cannot overflow int
// when `queuedFaces` faces are clustered with it: the run's new clusters (at
// most one per face) are numbered after the largest id, up to that id plus
// `queuedFaces`, and the count of ids from -1 to the last one (last + 2)
// must be an int as well.
int64_t largestClusterId(int64_t queuedFaces) { return INT_MAX - 2 - queuedFaces; }

// Logs why `list` cannot be handed to the engine and returns false, or
// returns true when every element can be read as the merge reads it.
bool isWellFormed(const itf_xvk_clusterinfo& list, int queuedFaces) {
  if (list.count < 0) {
    detail::logDebug("itf_xvk_runClustering: rejected: count %d is negative", list.count);
    return false;
  }
  if (list.count > 0 && list.items == nullptr) {
    detail::logDebug("itf_xvk_runClustering: rejected: items is null for count %d", list.count);
    return false;
  }
  for (int i = 0; i < list.count; ++i) {
    const itf_xvk_clusteritem& item = list.items[i];
    const char* why = nullptr;
    if (item.clusterId < -1) {
      why = "cluster id below -1";
    } else if (item.clusterId > largestClusterId(queuedFaces)) {
      why = "cluster id too large to number the new clusters after it";
    } else if (item.faceCount < 0) {
      why = "negative faceCount";
    } else if (item.faceCount > 0 && item.faceIds == nullptr) {
      why = "null faceIds for a positive faceCount";
    } else if (item.clusterId >= 0 && item.featureDim != 0 &&
               item.featureDim != detail::kFeatureDim) {
      why = "featureDim is neither 0 nor 960";
    } else if (item.clusterId >= 0 && item.featureDim != 0 && item.feature == nullptr) {
      why = "null feature";
    }
    if (why != nullptr) {
      detail::logDebug("itf_xvk_runClustering: rejected element %d (cluster id %d): %s", i,
                       item.clusterId, why);
      return false;
    }
  }
  return true;
}

// The engine's form of the application's list. The feature of the bucket of
// unclustered faces is never used, so it is not read, nor that of a cluster
// with featureDim 0 (a cluster whose representative the library could not
// compute): it stays empty, and the merge compares nothing with it.
std::vector<clusterinfo> toEngineList(const itf_xvk_clusterinfo& list) {
  std::vector<clusterinfo> infos(list.count);
  for (int i = 0; i < list.count; ++i) {
    const itf_xvk_clusteritem& item = list.items[i];
    clusterinfo& info = infos[i];
    info.id = item.clusterId;
    if (item.faceCount > 0) info.faceIds.assign(item.faceIds, item.faceIds + item.faceCount);
    if (item.clusterId >= 0 && item.featureDim > 0) {
      info.feature.assign(item.feature, item.feature + item.featureDim);
    }
    info.repFaceId = item.repFaceId;
  }
  return infos;
}

// A malloc'd copy of `count` elements; a block is made even for 0 elements.
// Null only when malloc fails.
template <typename T>
T* mallocCopy(const T* source, std::size_t count) {
  void* block = std::malloc(count * sizeof(T));
  if (block == nullptr && count > 0) return nullptr;
  if (count > 0) std::memcpy(block, source, count * sizeof(T));
  return static_cast<T*>(block);
}

void freeItems(itf_xvk_clusteritem* items, int count) {
  for (int i = 0; i < count; ++i) {
    std::free(items[i].faceIds);
    std::free(items[i].feature);
  }
  std::free(items);
}

// Fills one element from one engine record; false when malloc fails.
bool fillItem(itf_xvk_clusteritem& item, const clusterinfo& info) {
  item.clusterId = info.id;
  item.faceCount = static_cast<int>(info.faceIds.size());
  item.faceIds = mallocCopy(info.faceIds.data(), info.faceIds.size());
  item.featureDim = 0;
  item.feature = nullptr;
  item.repFaceId = -1;  // the bucket of unclustered faces has no representative
  if (info.id >= 0) {
    item.featureDim = static_cast<int>(info.feature.size());
    item.feature = mallocCopy(info.feature.data(), info.feature.size());
    item.repFaceId = info.repFaceId;
    if (item.feature == nullptr && !info.feature.empty()) return false;
  }
  return item.faceIds != nullptr || info.faceIds.empty();
}

}  // namespace

int FaceRecognition::itf_xvk_loadFaceFeature(float* feature, int faceId) {
  return detail::callOnReadyHandle(*this, "itf_xvk_loadFaceFeature", -1, [&] {
    if (feature == nullptr) {
      detail::logDebug("feature == NULL\n");
      return -1;
    }
    // A load that runs out of memory queues nothing and logs why.
    const unsigned long failures = detail::caughtAllocFailures();
    engine->loadFeatureVector(feature, faceId);
    return detail::caughtAllocFailures() == failures ? 1 : -1;
  });
}

int FaceRecognition::itf_xvk_runClustering(itf_xvk_clusterinfo* list) {
  return detail::callOnReadyHandle(*this, "itf_xvk_runClustering", 0, [&] {
    const int queuedFaces = engine->featureMats.empty() ? 0 : engine->featureMats[0].rowCount();
    std::vector<clusterinfo> existing;
    if (list != nullptr) {
      if (!isWellFormed(*list, queuedFaces)) return 0;
      existing = toEngineList(*list);
    }
    // Any other failure is logged by the boundary as the run's failure.
    if (detail::runClusteringOrUndo(*engine, existing)) return 1;
    detail::logDebug("itf_xvk_runClustering failed: out of memory; nothing changed");
    return 0;
  });
}

int FaceRecognition::itf_xvk_getClusterInfo(itf_xvk_clusterinfo* list) {
  if (list != nullptr) list->count = 0;  // also what any failure leaves
  return detail::callOnReadyHandle(*this, "itf_xvk_getClusterInfo", 0, [&] {
    if (list == nullptr) return 0;
    const std::vector<clusterinfo> infos = engine->getClusterInfo();
    const int count = static_cast<int>(infos.size());
    list->count = count;
    if (count == 0) return 0;

    auto* items =
        static_cast<itf_xvk_clusteritem*>(std::calloc(count, sizeof(itf_xvk_clusteritem)));
    bool filled = items != nullptr;
    for (int i = 0; filled && i < count; ++i) filled = fillItem(items[i], infos[i]);
    if (!filled) {
      if (items != nullptr) freeItems(items, count);
      detail::logDebug("itf_xvk_getClusterInfo: out of memory for %d clusters", count);
      list->count = 0;
      return 0;
    }
    list->items = items;
    return count;
  });
}

float* FaceRecognition::itf_xvk_getClusterFeature(float* features, int count) {
  return detail::callOnReadyHandle(*this, "itf_xvk_getClusterFeature",
                                   static_cast<float*>(nullptr), [&]() -> float* {
    if (features == nullptr || count <= 0) return nullptr;
    const Vec<float> representative = engine->getClusterFeature(features, count);
    if (representative.empty()) return nullptr;
    float* copy = mallocCopy(representative.data(), representative.size());
    if (copy == nullptr) detail::logDebug("malloc fail!!!(copy in itf_xvk_getClusterFeature");
    return copy;
  });
}

int FaceRecognition::itf_xvk_recommendCluster(itf_xvk_clusterinfo* list, float* feature,
                                              int /*count*/) {
  return detail::callOnReadyHandle(*this, "itf_xvk_recommendCluster", -1, [&] {
    if (list == nullptr || list->items == nullptr || feature == nullptr || list->count < 1) {
      return -1;
    }
    int best = -1;
    int bestScore = 0;
    for (int i = 0; i < list->count; ++i) {
      const itf_xvk_clusteritem& item = list->items[i];
      if (item.clusterId < 0) continue;
      // The engine reads 960 floats of the cluster's feature.
      if (item.feature == nullptr || item.featureDim != detail::kFeatureDim) return -1;
      const int score = engine->recommendCluster(item.feature, feature, 0);
      if (score > bestScore) {
        best = item.clusterId;
        bestScore = score;
      }
    }
    return best;
  });
}

void FaceRecognition::itf_xvk_releaseClusterInfo(itf_xvk_clusterinfo* list) {
  detail::guardPublicCall("itf_xvk_releaseClusterInfo", 0, [&] {
    // An items array with a count of 0 is not the library's to free.
    if (list == nullptr || list->count < 1) return 0;
    freeItems(list->items, list->count);
    list->items = nullptr;
    list->count = 0;
    return 0;
  });
}
