#include "planning/planned_clustering.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <utility>
#include <vector>

#include "interface/face_recognition.h"
#include "interface/handle_support.h"
#include "planning/guarded_call.h"
#include "platform/log.h"

namespace {

constexpr int kDim = xvkfc::kFeatureDim;

// The handle's current result, read with itf_xvk_getClusterInfo and given
// back when replaced or when this goes out of scope.
class ResultList {
 public:
  explicit ResultList(FaceRecognition& handle) : handle_(handle) {}
  ~ResultList() { handle_.itf_xvk_releaseClusterInfo(&list_); }
  ResultList(const ResultList&) = delete;
  ResultList& operator=(const ResultList&) = delete;

  itf_xvk_clusterinfo* get() { return &list_; }
  void read() {
    handle_.itf_xvk_releaseClusterInfo(&list_);
    list_ = {0, nullptr};
    handle_.itf_xvk_getClusterInfo(&list_);
  }
  itf_xvk_clusterinfo release() { return std::exchange(list_, itf_xvk_clusterinfo{0, nullptr}); }

 private:
  FaceRecognition& handle_;
  itf_xvk_clusterinfo list_{0, nullptr};
};

// Ids of the faces in a cluster of `list` (bucket -1 excluded), sorted.
std::vector<int> clusteredIds(const itf_xvk_clusterinfo& list) {
  std::vector<int> ids;
  for (int i = 0; i < list.count; ++i) {
    const itf_xvk_clusteritem& item = list.items[i];
    if (item.clusterId >= 0) ids.insert(ids.end(), item.faceIds, item.faceIds + item.faceCount);
  }
  std::sort(ids.begin(), ids.end());
  return ids;
}

// Takes the faces whose ids are in `sortedIds` out of the bucket -1.
void removeFromBucket(itf_xvk_clusterinfo& list, const std::vector<int>& sortedIds) {
  for (int i = 0; i < list.count; ++i) {
    itf_xvk_clusteritem& item = list.items[i];
    if (item.clusterId >= 0) continue;
    int kept = 0;
    for (int k = 0; k < item.faceCount; ++k) {
      if (!std::binary_search(sortedIds.begin(), sortedIds.end(), item.faceIds[k]))
        item.faceIds[kept++] = item.faceIds[k];
    }
    item.faceCount = kept;
  }
}

// Lists read from the handle and kept aside until the round's last run.
class AsideLists {
 public:
  explicit AsideLists(FaceRecognition& handle) : handle_(handle) {}
  ~AsideLists() { clear(); }
  AsideLists(const AsideLists&) = delete;
  AsideLists& operator=(const AsideLists&) = delete;

  void readFromHandle() {
    lists_.push_back({0, nullptr});
    handle_.itf_xvk_getClusterInfo(&lists_.back());
  }
  const std::vector<itf_xvk_clusterinfo>& lists() const { return lists_; }
  void clear() {
    for (itf_xvk_clusterinfo& list : lists_) handle_.itf_xvk_releaseClusterInfo(&list);
    lists_.clear();
  }

 private:
  FaceRecognition& handle_;
  std::vector<itf_xvk_clusterinfo> lists_;
};

// One list of `base` (may be null) and the lists set aside: the clusters of
// `base` as they are, the clusters of each aside list renumbered after the
// largest id so far, and one bucket -1 with the faces of every bucket. The
// list points into `items`, `bucket` and the source lists.
itf_xvk_clusterinfo combine(const itf_xvk_clusterinfo* base,
                            const std::vector<itf_xvk_clusterinfo>& aside,
                            std::vector<itf_xvk_clusteritem>& items, std::vector<int>& bucket) {
  items.clear();
  bucket.clear();
  bool hasBucket = false;
  int nextId = 0;
  auto take = [&](const itf_xvk_clusterinfo& list, bool renumber) {
    const int offset = nextId;
    for (int i = 0; i < list.count; ++i) {
      itf_xvk_clusteritem item = list.items[i];
      if (item.clusterId < 0) {
        hasBucket = true;
        bucket.insert(bucket.end(), item.faceIds, item.faceIds + item.faceCount);
        continue;
      }
      if (renumber) item.clusterId += offset;
      nextId = std::max(nextId, item.clusterId + 1);
      items.push_back(item);
    }
  };
  if (base != nullptr && base->count > 0) take(*base, false);
  for (const itf_xvk_clusterinfo& list : aside) take(list, true);
  if (hasBucket) {
    items.push_back(
        itf_xvk_clusteritem{-1, static_cast<int>(bucket.size()), bucket.data(), 0, nullptr, -1});
  }
  return itf_xvk_clusterinfo{static_cast<int>(items.size()), items.data()};
}

// A malloc'd copy of `n` values at `from` (n may be 0); null when malloc fails.
template <typename T>
T* mallocCopy(const T* from, int n) {
  T* copy = static_cast<T*>(std::malloc(sizeof(T) * static_cast<std::size_t>(n > 0 ? n : 1)));
  if (copy != nullptr && n > 0) std::memcpy(copy, from, sizeof(T) * static_cast<std::size_t>(n));
  return copy;
}

// What a stopped import hands out: `current` and the lists set aside
// (combined as the round's last run would be fed them) plus `notRun` in the
// bucket, copied into malloc'd arrays as itf_xvk_getClusterInfo gives them,
// bucket first. False when memory runs out (nothing is left allocated).
bool stoppedResult(const itf_xvk_clusterinfo* current, const std::vector<itf_xvk_clusterinfo>& aside,
                   const std::vector<int>& notRun, itf_xvk_clusterinfo* result) {
  std::vector<itf_xvk_clusteritem> items;
  std::vector<int> bucket;
  const itf_xvk_clusterinfo all = combine(current, aside, items, bucket);
  if (!notRun.empty() && (all.count == 0 || items.back().clusterId >= 0)) {
    items.push_back(itf_xvk_clusteritem{-1, 0, nullptr, 0, nullptr, -1});
  }
  bucket.insert(bucket.end(), notRun.begin(), notRun.end());
  std::stable_partition(items.begin(), items.end(),
                        [](const itf_xvk_clusteritem& item) { return item.clusterId < 0; });
  const int count = static_cast<int>(items.size());
  auto* out = static_cast<itf_xvk_clusteritem*>(
      std::calloc(count > 0 ? count : 1, sizeof(itf_xvk_clusteritem)));
  bool copied = out != nullptr;
  for (int i = 0; copied && i < count; ++i) {
    itf_xvk_clusteritem item = items[i];
    if (item.clusterId < 0) {
      item.faceCount = static_cast<int>(bucket.size());
      item.faceIds = bucket.data();
    }
    out[i] = item;
    out[i].faceIds = mallocCopy(item.faceIds, item.faceCount);
    out[i].feature = item.featureDim > 0 ? mallocCopy(item.feature, item.featureDim) : nullptr;
    copied = out[i].faceIds != nullptr && (item.featureDim <= 0 || out[i].feature != nullptr);
  }
  itf_xvk_clusterinfo list{count, out};
  if (!copied) {
    for (int i = 0; out != nullptr && i < count; ++i) {
      std::free(out[i].faceIds);
      std::free(out[i].feature);
    }
    std::free(out);
    return false;
  }
  *result = list;
  return true;
}

const char* rejection(FaceRecognition* handle, const float* features, const int* faceIds, int count,
                      int runSize, int maxRounds, itf_xvk_clusterinfo* result) {
  if (handle == nullptr) return "null handle";
  if (features == nullptr) return "null features";
  if (faceIds == nullptr) return "null face ids";
  if (result == nullptr) return "null result";
  if (count < 1) return "count below 1";
  if (runSize < 2) return "run size below 2";
  if (maxRounds < 1) return "rounds below 1";
  if (!xvkfc::isHandleReady(handle)) return "handle not initialised";
  return nullptr;
}

}  // namespace

int clusterInPlannedRuns(FaceRecognition* handle, const float* features, const int* faceIds,
                         int count, itf_xvk_clusterinfo* existing, int runSize, int maxRounds,
                         itf_xvk_clusterinfo* result, PlannedClusteringStats* stats,
                         const std::function<void(const PlannedRunInfo&)>& observe,
                         const PlannedProgress& progress) {
  return detail::guardPlanningCall("clusterInPlannedRuns", -1, [&] {
    if (const char* why = rejection(handle, features, faceIds, count, runSize, maxRounds, result)) {
      detail::logDebug("clusterInPlannedRuns: rejected: %s", why);
      return -1;
    }
    FaceRecognition& h = *handle;
    PlannedClusteringStats totals;
    ResultList current(h);
    AsideLists aside(h);
    bool haveResult = false;  // until the first run, the clusters are `existing`

    std::vector<int> pending(count);  // rows of `features` still to place
    for (int i = 0; i < count; ++i) pending[i] = i;
    std::vector<float> rows;
    std::vector<int> runIds, bucket;
    std::vector<itf_xvk_clusteritem> items;
    for (int round = 1; round <= maxRounds && !pending.empty(); ++round) {
      std::vector<int> pendingIds(pending.size());
      for (std::size_t i = 0; i < pending.size(); ++i) pendingIds[i] = faceIds[pending[i]];
      if (haveResult) {
        std::vector<int> sorted = pendingIds;
        std::sort(sorted.begin(), sorted.end());
        removeFromBucket(*current.get(), sorted);
      }
      rows.resize(pending.size() * kDim);
      for (std::size_t i = 0; i < pending.size(); ++i) {
        std::memcpy(&rows[i * kDim], features + static_cast<std::size_t>(pending[i]) * kDim,
                    kDim * sizeof(float));
      }
      RunPlan plan;
      const int runs =
          planFaceRuns(handle, rows.data(), static_cast<int>(pending.size()), runSize, &plan);
      if (runs < 0) return -1;
      totals.planComparisons += plan.comparisons;
      ++totals.rounds;

      std::size_t offset = 0;
      for (int run = 0; run < runs; ++run) {
        runIds.clear();
        for (int k = 0; k < plan.runSizes[run]; ++k, ++offset) {
          const int row = plan.order[offset];
          runIds.push_back(pendingIds[row]);
          h.itf_xvk_loadFaceFeature(&rows[static_cast<std::size_t>(row) * kDim], runIds.back());
        }
        // The first run starts from the application's clusters. Later runs
        // before the round's last are clustered on their own: a planned run
        // rarely shares a person with another, and feeding every run all
        // clusters so far would cost a comparison per pair of clusters per
        // run. The round's last run is fed everything, which links the
        // round's clusters with each other and with the clusters of before.
        const bool last = run + 1 == runs;
        itf_xvk_clusterinfo none{0, nullptr}, fed = none;
        itf_xvk_clusterinfo* input = &none;
        if (!haveResult) {
          input = existing;
        } else if (last) {
          fed = combine(current.get(), aside.lists(), items, bucket);
          input = &fed;
        }
        if (h.itf_xvk_runClustering(input) != 1) {
          // Only the application's clusters can be malformed; drop the
          // queued faces so nothing is left.
          xvkfc::discardQueuedFaces(handle);
          detail::logDebug("clusterInPlannedRuns: the existing clusters were rejected");
          return -1;
        }
        const bool fedRun = input != &none;
        if (fedRun) {
          current.read();
          aside.clear();
          haveResult = true;
        } else {
          aside.readFromHandle();
        }
        ++totals.runs;
        if (observe) {
          observe(PlannedRunInfo{round, run + 1, runs, runIds.data(),
                                 static_cast<int>(runIds.size()),
                                 fedRun ? current.get() : &aside.lists().back()});
        }
        const int facesDone = round == 1 ? static_cast<int>(offset) : count;
        if (progress && !progress(facesDone, count)) {
          std::vector<int> notRun;
          for (std::size_t k = offset; k < plan.order.size(); ++k)
            notRun.push_back(pendingIds[plan.order[k]]);
          itf_xvk_clusterinfo stopped{0, nullptr};
          if (!stoppedResult(current.get(), aside.lists(), notRun, &stopped)) {
            detail::logDebug("clusterInPlannedRuns: out of memory for the stopped result");
            return -1;
          }
          detail::logDebug("clusterInPlannedRuns: stopped after %d of %d faces", facesDone, count);
          *result = stopped;
          totals.stopped = true;
          if (stats != nullptr) *stats = totals;
          return result->count;
        }
      }

      const std::vector<int> clustered = clusteredIds(*current.get());
      std::vector<int> left;
      for (int row : pending) {
        if (!std::binary_search(clustered.begin(), clustered.end(), faceIds[row]))
          left.push_back(row);
      }
      const bool clusteredNone = left.size() == pending.size();
      pending = std::move(left);
      if (clusteredNone) break;
    }

    *result = current.release();
    if (stats != nullptr) *stats = totals;
    return result->count;
  });
}
