#include "planning/planned_clustering.h"

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <utility>
#include <vector>

#include "interface/face_recognition.h"
#include "interface/handle_support.h"
#include "planning/current_clusters.h"
#include "platform/call_boundary.h"
#include "planning/plan_with_links.h"
#include "platform/log.h"

namespace {

constexpr int kDim = xvkfc::kFeatureDim;

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

// What itf_xvk_runClustering would reject in the application's list, which
// a run may never be fed whole.
const char* malformed(const itf_xvk_clusterinfo* existing) {
  if (existing == nullptr) return nullptr;
  if (existing->count < 0) return "negative count";
  if (existing->count > 0 && existing->items == nullptr) return "null items";
  for (int i = 0; i < existing->count; ++i) {
    const itf_xvk_clusteritem& item = existing->items[i];
    if (item.clusterId < -1) return "a cluster id below -1";
    if (item.faceCount < 0) return "a negative faceCount";
    if (item.faceCount > 0 && item.faceIds == nullptr) return "null faceIds";
    if (item.clusterId >= 0 && item.featureDim != 0 && item.featureDim != kDim)
      return "a featureDim neither 0 nor 960";
    if (item.clusterId >= 0 && item.featureDim != 0 && item.feature == nullptr)
      return "a null feature";
  }
  return nullptr;
}

// Drops the faces loaded for a run unless the run took them, so that no
// failure leaves faces queued on the handle.
class QueueGuard {
 public:
  explicit QueueGuard(FaceRecognition& handle) : handle_(handle) {}
  ~QueueGuard() {
    if (!ran_) xvkfc::discardQueuedFaces(&handle_);
  }
  QueueGuard(const QueueGuard&) = delete;
  QueueGuard& operator=(const QueueGuard&) = delete;
  void ran() { ran_ = true; }

 private:
  FaceRecognition& handle_;
  bool ran_ = false;
};

// One import: the faces, the current clusters, the links that tell which
// clusters a run can match, and what was done so far.
class PlannedImport {
 public:
  PlannedImport(FaceRecognition& handle, const float* features, const int* faceIds, int count,
                itf_xvk_clusterinfo* existing, int runSize,
                const std::function<void(const PlannedRunInfo&)>& observe,
                const PlannedProgress& progress)
      : handle_(handle), features_(features), faceIds_(faceIds), count_(count), runSize_(runSize),
        observe_(observe), progress_(progress), current_(faceIds, count, existing) {
    for (int row = 0; row < count; ++row) pending_.push_back(row);
  }

  // Plans and runs the faces still pending. False when the import stopped.
  bool runRound() {
    const int round = ++stats.rounds;
    RunPlan plan;
    detail::FaceLinks links;
    const int runs = planPending(round, plan, links);
    std::size_t offset = 0;
    for (int run = 0; run < runs; ++run) {
      std::vector<int> runIndices(plan.order.begin() + offset,
                                  plan.order.begin() + offset + plan.runSizes[run]);
      offset += plan.runSizes[run];
      runOne(round, run, runs, runIndices, round == 1 ? nullptr : &links);
      if (round == 1) facesDone_ = static_cast<int>(offset);
      if (progress_ && !progress_(facesDone_, count_)) {
        for (std::size_t k = offset; k < plan.order.size(); ++k)
          notRun_.push_back(faceIds_[pending_[plan.order[k]]]);
        stats.stopped = true;
        detail::logDebug("clusterInPlannedRuns: stopped after %d of %d faces", facesDone_, count_);
        return false;
      }
    }
    return true;
  }

  // The pending faces a round put in a cluster; the rest stay pending.
  int clusteredInRound() {
    std::vector<int> left;
    for (int row : pending_)
      if (!current_.isClustered(row)) left.push_back(row);
    const int clustered = static_cast<int>(pending_.size() - left.size());
    pending_ = std::move(left);
    return clustered;
  }
  bool anyPending() const { return !pending_.empty(); }

  bool handOut(itf_xvk_clusterinfo* result) { return current_.handOut(notRun_, result); }

  PlannedClusteringStats stats;

 private:
  // Loads one run's faces (indices into the round's rows), feeds it the
  // clusters linked to them and stitches its result into the current list.
  void runOne(int round, int run, int runs, const std::vector<int>& indices,
              const detail::FaceLinks* roundLinks) {
    std::vector<int> runRows, runIds;
    QueueGuard queued(handle_);
    for (int index : indices) {
      runRows.push_back(pending_[index]);
      runIds.push_back(faceIds_[pending_[index]]);
      handle_.itf_xvk_loadFaceFeature(&rows_[static_cast<std::size_t>(index) * kDim], runIds.back());
    }
    std::vector<int> fed;
    current_.addMatches(runRows, firstLinks_, {}, fed);
    if (roundLinks != nullptr) current_.addMatches(indices, *roundLinks, pending_, fed);
    std::vector<itf_xvk_clusteritem> items;
    itf_xvk_clusterinfo list = current_.feedList(fed, items);
    const int ran = handle_.itf_xvk_runClustering(fed.empty() ? nullptr : &list);
    if (ran != 1) throw std::runtime_error("a run failed");
    queued.ran();
    itf_xvk_clusterinfo result{0, nullptr};
    handle_.itf_xvk_getClusterInfo(&result);
    ++stats.runs;
    try {
      current_.stitch(result, fed);
    } catch (...) {
      handle_.itf_xvk_releaseClusterInfo(&result);
      throw;
    }
    if (observe_) {
      // The round's last run shows the whole list; the others their own result.
      std::vector<int> bucket;
      itf_xvk_clusterinfo whole = run + 1 == runs ? current_.view({}, items, bucket) : result;
      observe_(PlannedRunInfo{round, run + 1, runs, runIds.data(), static_cast<int>(runIds.size()),
                              &whole});
    }
    handle_.itf_xvk_releaseClusterInfo(&result);
  }

  // Takes the pending faces out of the bucket (after round 1), copies them
  // into rows_ and plans them. The application's clusters are linked in the
  // first round; its links between new faces, which cover them all, serve
  // every later round too. Returns the number of runs.
  int planPending(int round, RunPlan& plan, detail::FaceLinks& links) {
    if (round > 1) {
      std::vector<int> ids;
      for (int row : pending_) ids.push_back(faceIds_[row]);
      std::sort(ids.begin(), ids.end());
      current_.takeFromBucket(ids);
    }
    const int n = static_cast<int>(pending_.size());
    rows_.resize(static_cast<std::size_t>(n) * kDim);
    for (int i = 0; i < n; ++i) {
      std::copy_n(features_ + static_cast<std::size_t>(pending_[i]) * kDim, kDim,
                  &rows_[static_cast<std::size_t>(i) * kDim]);
    }
    const int runs = detail::planWithLinks(handle_, rows_.data(), n, runSize_,
                                           round == 1 ? current_.probeRows() : std::vector<float*>{},
                                           &plan, &links);
    stats.planComparisons += plan.comparisons;
    if (round == 1) firstLinks_ = std::move(links);
    return runs;
  }

  FaceRecognition& handle_;
  const float* features_;
  const int* faceIds_;
  int count_;
  int runSize_;
  const std::function<void(const PlannedRunInfo&)>& observe_;
  const PlannedProgress& progress_;
  detail::CurrentClusters current_;
  std::vector<int> pending_;  // rows of the faces still to place
  std::vector<float> rows_;   // the round's faces: the comparator and the engine get copies
  detail::FaceLinks firstLinks_;
  std::vector<int> notRun_;  // ids of the faces a stop left unrun
  int facesDone_ = 0;
};

}  // namespace

int clusterInPlannedRuns(FaceRecognition* handle, const float* features, const int* faceIds,
                         int count, itf_xvk_clusterinfo* existing, int runSize, int maxRounds,
                         itf_xvk_clusterinfo* result, PlannedClusteringStats* stats,
                         const std::function<void(const PlannedRunInfo&)>& observe,
                         const PlannedProgress& progress) {
  return detail::guardPublicCall("clusterInPlannedRuns", -1, [&] {
    const char* why = rejection(handle, features, faceIds, count, runSize, maxRounds, result);
    if (why == nullptr) why = malformed(existing);
    if (why != nullptr) {
      detail::logDebug("clusterInPlannedRuns: rejected: %s", why);
      return -1;
    }
    PlannedImport import(*handle, features, faceIds, count, existing, runSize, observe, progress);
    for (int round = 1; round <= maxRounds && import.anyPending(); ++round) {
      if (!import.runRound()) break;
      if (import.clusteredInRound() == 0) break;
    }
    itf_xvk_clusterinfo list{0, nullptr};
    if (!import.handOut(&list)) {
      detail::logDebug("clusterInPlannedRuns: out of memory for the result");
      return -1;
    }
    *result = list;
    if (stats != nullptr) *stats = import.stats;
    return result->count;
  });
}
