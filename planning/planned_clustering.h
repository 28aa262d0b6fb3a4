// Clustering a whole gallery of new faces in planned runs, through the
// public interface of FaceRecognition only.
//
// Conventions as in planning/run_plan.h: plain C++ types, no exception
// leaves, one line logged for every failure.
#ifndef XVKFC_PLANNING_PLANNED_CLUSTERING_H_
#define XVKFC_PLANNING_PLANNED_CLUSTERING_H_

#include <cstdint>
#include <functional>

#include "interface/exchange_records.h"
#include "planning/run_plan.h"
#include "platform/export.h"

class FaceRecognition;

// Rounds when the application has no reason to choose. The second round
// clusters a few more of the faces the first one left over; a third rarely
// finds anything.
inline constexpr int kDefaultRounds = 3;

// What one engine run of clusterInPlannedRuns did, for progress and quality.
struct PlannedRunInfo {
  int round = 0;                 // 1-based
  int run = 0;                   // 1-based within the round
  int runsInRound = 0;           // runs the round's plan holds
  const int* faceIds = nullptr;  // the faces loaded for this run
  int faceCount = 0;
  // After the round's last run, the whole current list as `result` will
  // hold it; after the others, the run's result as the engine gives it: the
  // clusters it was fed (renumbered 0, 1, ...), its own and its bucket.
  const itf_xvk_clusterinfo* clusters = nullptr;
};

struct PlannedClusteringStats {
  int rounds = 0;               // rounds run
  int runs = 0;                 // engine runs over all rounds
  int64_t planComparisons = 0;  // comparator calls of the plans (the engine's not included)
  bool stopped = false;         // the progress callback asked to stop
};

// Progress of clusterInPlannedRuns, called after every run: `facesDone` of
// `facesTotal` new faces have been through a run of the first round (later
// rounds, which retry the faces left unclustered, report facesTotal of
// facesTotal). Returning false stops the import after that run.
using PlannedProgress = std::function<bool(int facesDone, int facesTotal)>;

// Clusters `count` new faces (features: count x 960 floats, row-major;
// faceIds: count ints) into the application's clusters `existing` (null or
// count 0 for none; only read), through the public interface only, in a
// number of comparator calls that grows about linearly with the faces.
// Round 1 plans all new faces (planFaceRuns), linking them with each other
// and with the representatives of the application's clusters, and, run by
// run, loads the run's faces, calls itf_xvk_runClustering and reads the
// result. A run is fed only the clusters that can match its faces: those
// holding a face (or an application cluster) linked to one of them. The
// run's result takes the place of the clusters it was fed: a cluster of the
// result takes the place of the first fed cluster whose faces it holds, the
// others come after the clusters so far, and its bucket joins the bucket.
// So clusters of one person in different runs are united (features at 0.87
// or more) and a run's faces can join clusters of earlier runs.
// Each later round takes the new faces that are in no cluster out of the
// bucket, plans them again and runs them the same way (fed through the links
// of both plans). It stops after `maxRounds` rounds, or after a round that
// put none of its faces into a cluster. The current list is written to
// `result` as itf_xvk_getClusterInfo writes it: the bucket -1 first (the
// application's unclustered faces, then the new ones), then the clusters
// numbered 0, 1, 2, ... (the application's first, in its order, except
// those its faces joined), each face exactly once; the application's
// cluster ids are not kept. It overwrites what `result` held; give it back
// with itf_xvk_releaseClusterInfo.
// `observe`, when set, is called after every run.
// `progress`, when set, is called after every run too; when it returns
// false the import stops there and `result` holds what is clustered so far,
// with every new face not yet run in the bucket -1. Nothing is lost and
// nothing stays queued; stats->stopped tells a stopped import.
// Returns the number of clusters in `result` (bucket included).
// Returns -1, logs one line and changes nothing for a null handle, features,
// faceIds or result, a count below 1, a runSize below 2, maxRounds below 1,
// a handle that is not initialised or an `existing` that
// itf_xvk_runClustering would reject (a cluster id below -1, a negative
// count, null faces, a featureDim neither 0 nor 960, a null feature).
// Returns -1 with `result` unchanged when an allocation fails part way (the
// handle's last result is then that of the last run done; nothing is
// queued).
// REQUIRES: face ids unique and not already in `existing`; no faces queued
// on the handle (they would join the first run).
XVKFC_EXPORT int clusterInPlannedRuns(
    FaceRecognition* handle, const float* features, const int* faceIds, int count,
    itf_xvk_clusterinfo* existing, int runSize, int maxRounds, itf_xvk_clusterinfo* result,
    PlannedClusteringStats* stats = nullptr,
    const std::function<void(const PlannedRunInfo&)>& observe = nullptr,
    const PlannedProgress& progress = nullptr);

#endif  // XVKFC_PLANNING_PLANNED_CLUSTERING_H_
