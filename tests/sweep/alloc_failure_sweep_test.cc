// An application's whole cycle with each of its allocations failing once in
// turn: operator new throws, malloc and calloc return null. The application
// retries once whatever reports failure. For every failed allocation:
//  - nothing crashes, no exception escapes, nothing leaks (LeakSanitizer
//    checks at exit), and the failure leaves a log line;
//  - a load that reports failure queued nothing;
//  - a run that reports failure left the previous result and the queue as
//    they were; a run that reports success kept every face it was given and
//    every face of the application's clusters;
//  - with the retries the cycle ends with the normal outcome.
//
// XVKFC_SWEEP_STRIDE=n fails only every n-th allocation, for slow runs.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "clustering/face_clustering_system.h"
#include "interface/face_recognition.h"
#include "support/alloc_failure.h"
#include "support/log_capture.h"
#include "support/scripted_closed_libs.h"
#include "support/similarities.h"

namespace {

using testing_support::scripted;
using testing_support::taggedFeature;

void scriptDoubles() {
  alloc_failure::Suspended notTheEngines;
  testing_support::resetScripted();
  scripted().fallback = testing_support::tensDigitPeople;
  static float points[10] = {2, 2, 5, 2, 4, 4, 2, 6, 5, 6};
  scripted().landmarksToReport = points;
  scripted().featureToExtract = taggedFeature(13);
}

// The allocation made to fail, counted from the start of the cycle (0:
// none), and the operation it fell in, for the messages.
long cycleStart = 0;
long failing = 0;
const char* failedIn = "";

// Runs one operation of the library with its allocations counted (the
// test's own are not), and once more when it returns `failure`.
template <typename Call, typename Result>
auto library(const char* name, Result failure, Call call) {
  alloc_failure::Resumed counted;
  const char* earlier = failedIn;
  failedIn = name;  // kept if an exception escapes
  const long before = alloc_failure::allocationsSoFar() - cycleStart;
  auto result = call();
  if (result == failure) result = call();
  const long after = alloc_failure::allocationsSoFar() - cycleStart;
  if (failing <= before || failing > after) failedIn = earlier;
  return result;
}

// The list as text; its face ids are added to `ids` when given.
std::string describe(const itf_xvk_clusterinfo& list, std::set<int>* ids = nullptr) {
  std::string text;
  for (int i = 0; i < list.count; ++i) {
    const itf_xvk_clusteritem& item = list.items[i];
    text += " [" + std::to_string(item.clusterId) + ":";
    for (int f = 0; f < item.faceCount; ++f) text += " " + std::to_string(item.faceIds[f]);
    text += " rep " + std::to_string(item.repFaceId) + "/" + std::to_string(item.featureDim) + "]";
    if (ids) ids->insert(item.faceIds, item.faceIds + item.faceCount);
  }
  return text;
}

// Everything the application can see of a handle: the result and the queue
// (row and record counts, which only the next run shows otherwise).
std::string visibleState(FaceRecognition& handle) {
  alloc_failure::Suspended notCounted;
  itf_xvk_clusterinfo list = {0, nullptr};
  handle.itf_xvk_getClusterInfo(&list);
  std::string state = describe(list);
  handle.itf_xvk_releaseClusterInfo(&list);
  const FaceClusteringSystem& engine = *handle.engine;
  const std::size_t rows = engine.featureMats.empty() ? 0 : engine.featureMats[0].rows.size();
  return state + " queue " + std::to_string(engine.faces.size()) + "/" + std::to_string(rows);
}

// Init, an extraction, loads, a run with the application's clusters, its
// result, a representative, a recommendation, a second run fed the first
// result, Release. Returns what the application would keep. A failed load
// must queue nothing, a failed run change nothing the application sees, and
// a run that reports success keep every face it was given.
std::string applicationCycle() {
  alloc_failure::Suspended notTheLibrarys;
  std::string outcome;
  FaceRecognition handle;
  outcome += std::to_string(
      library("itf_xvk_Init", 0, [&] { return handle.itf_xvk_Init("/models") == 960 ? 1 : 0; }));
  std::vector<unsigned char> image(8 * 8 + 2 * 4 * 4, 0x80);
  for (int i = 0; i < 64; ++i) image[i] = static_cast<unsigned char>(i * 37);
  const float* extracted = library("itf_xvk_extractFeature", static_cast<float*>(nullptr), [&] {
    return handle.itf_xvk_extractFeature(image.data(), static_cast<int>(image.size()), 8, 8,
                                         itf_xvk_faceroi{0, 0, 8, 8});
  });
  outcome += extracted ? " feature" : " no-feature";

  std::set<int> given;  // face ids the next run must report
  auto unchangedOnFailure = [&](const char* name, auto call) {
    const std::string before = visibleState(handle);
    return library(name, 0, [&] {
      const int status = call();
      EXPECT_TRUE(status == 1 || visibleState(handle) == before)
          << "allocation " << failing << ": a failed " << name << " changed the handle";
      return status == 1 ? 1 : 0;
    });
  };
  auto load = [&](std::vector<float> feature, int faceId) {
    if (unchangedOnFailure("itf_xvk_loadFaceFeature", [&] {
          return handle.itf_xvk_loadFaceFeature(feature.data(), faceId);
        })) {
      given.insert(faceId);
    }
  };
  if (extracted) load(std::vector<float>(extracted, extracted + 960), 13);
  for (int tag : {10, 11, 12, 20, 21, 30, 40}) load(taggedFeature(tag), tag);

  auto runAndRead = [&](itf_xvk_clusterinfo* list, itf_xvk_clusterinfo* result) {
    describe(*list, &given);
    const int status = unchangedOnFailure("itf_xvk_runClustering",
                                          [&] { return handle.itf_xvk_runClustering(list); });
    const int count = library("itf_xvk_getClusterInfo", 0,
                              [&] { return handle.itf_xvk_getClusterInfo(result); });
    std::set<int> reported;
    const std::string text = describe(*result, &reported);
    if (status) {
      EXPECT_TRUE(std::includes(reported.begin(), reported.end(), given.begin(), given.end()))
          << "allocation " << failing << ": a run lost faces";
      given.clear();
    }
    outcome += " " + std::to_string(status) + " " + std::to_string(count) + text;
  };
  std::vector<float> f14 = taggedFeature(14), f50 = taggedFeature(50);
  int ids1[] = {101, 102}, ids5[] = {105}, bucket[] = {900};
  itf_xvk_clusteritem items[] = {{-1, 1, bucket, 0, nullptr, -1},
                                 {1, 2, ids1, 960, f14.data(), 101},
                                 {5, 1, ids5, 960, f50.data(), 105}};
  itf_xvk_clusterinfo existing = {3, items};
  itf_xvk_clusterinfo first = {0, nullptr}, second = {0, nullptr};
  runAndRead(&existing, &first);

  std::vector<float> three = testing_support::taggedFeatures({60, 61, 62});
  float* representative = library("itf_xvk_getClusterFeature", static_cast<float*>(nullptr),
                                  [&] { return handle.itf_xvk_getClusterFeature(three.data(), 3); });
  outcome += " rep " + (representative ? std::to_string(representative[0]) : "null");
  std::free(representative);
  std::vector<float> query = taggedFeature(22);
  outcome += " recommend " + std::to_string(library("itf_xvk_recommendCluster", -2, [&] {
               return handle.itf_xvk_recommendCluster(&first, query.data(), 0);
             }));

  for (int tag : {22, 31, 41, 51, 70}) load(taggedFeature(tag), tag);
  runAndRead(&first, &second);
  library("itf_xvk_releaseClusterInfo and itf_xvk_Release", -1, [&] {
    handle.itf_xvk_releaseClusterInfo(&first);
    handle.itf_xvk_releaseClusterInfo(&second);
    return handle.itf_xvk_Release();
  });
  return outcome;
}

bool explainsAFailure(const std::string& line) {
  for (const char* reason : {"malloc fail", "failed", "out of memory"}) {
    if (line.find(reason) != std::string::npos) return true;
  }
  return false;
}

// The out-of-memory lines of the engine and the facade (beginnings); the
// sweep must see each of them at least once.
const char* const kOutOfMemoryLines[] = {
    "malloc fail!!!(zeros in loadFeatureVector",
    "malloc fail!!!(add face in loadFeatureVector",
    "malloc fail!!!(in updateKernel",
    "malloc fail!!!(in ClusterSplit",
    "malloc fail!!!(alloc members in MergeCluster(mat, ivec)",
    "malloc fail!!!(add members in MergeCluster(mat, ivec)",
    "malloc fail!!!(add members vector in refineClustering",
    "malloc fail!!!(in getClusterFeature(Cluster, ivec)",
    "malloc fail!!!(features assign in getClusterFeature(float*, int, ivec, int*)",
    "malloc fail!!!(add members in getClusterFeature(float*, int, ivec, int*)",
    "malloc fail!!!(in getClusterFeature(float*, int)",
    "malloc fail!!!(add members in getClusterInfo",
    "malloc fail!!!(add cluster in getClusterInfo",
    "malloc fail!!!(existing cluster in mergeCluster)",
    "malloc fail!!!(add survive in mergeInitialCluster",
    "malloc fail!!!(merge outlier in mergeInitialCluster",
    "malloc fail!!!(cid assign in mergeCluster",
    "malloc fail!!!(merge members in mergeInitialCluster",
    "malloc fail!!!(update cFeature in mergeCluster)",
    "malloc fail!!!(update cFeature2 in mergeInitialCluster",
    "malloc fail!!!(init labels in clusteringFace",
    "malloc fail!!!(in clusteringFace",
    "malloc fail!!!(in init()",
    "malloc fail!!!(bgr image in itf_xvk_extractFeature",
    "malloc fail!!!(copy in itf_xvk_getClusterFeature",
    "itf_xvk_getClusterInfo: out of memory for ",
    "itf_xvk_runClustering failed: ",
    "itf_xvk_Init failed: std::bad_alloc",
};

TEST(AllocationFailureSweep, NothingIsLostAndEveryFailureIsLogged) {
  scriptDoubles();
  std::string normal;
  long allocations = 0;
  {
    testing_support::LogCapture log;
    allocations = alloc_failure::countAllocations([&] { normal = applicationCycle(); });
    for (const std::string& line : log.messages()) ASSERT_FALSE(explainsAFailure(line)) << line;
  }
  ASSERT_NE(normal.find("recommend 2 "), std::string::npos) << normal;
  const char* strideText = std::getenv("XVKFC_SWEEP_STRIDE");
  const long stride = strideText ? std::max(1L, std::atol(strideText)) : 1;

  std::set<std::string> seen;
  for (long k = 1; k <= allocations; k += stride) {
    scriptDoubles();
    testing_support::LogCapture log;
    alloc_failure::failNth(k);
    cycleStart = alloc_failure::allocationsSoFar();
    failing = k;
    failedIn = "";
    std::string outcome;
    try {
      outcome = applicationCycle();
    } catch (...) {
      ADD_FAILURE() << "allocation " << k << " in " << failedIn << ": an exception escaped";
    }
    alloc_failure::disarm();
    failing = 0;
    const std::vector<std::string> lines = log.messages();
    seen.insert(lines.begin(), lines.end());
    EXPECT_TRUE(std::any_of(lines.begin(), lines.end(), explainsAFailure))
        << "allocation " << k << " in " << failedIn << " failed silently";
    EXPECT_EQ(outcome, normal) << "allocation " << k << " in " << failedIn;
  }
  std::printf("%ld allocations swept (1 in %ld)\n", allocations, stride);
  for (const std::string line : kOutOfMemoryLines) {
    const auto next = seen.lower_bound(line);
    EXPECT_TRUE(stride > 1 || (next != seen.end() && next->rfind(line, 0) == 0))
        << "never logged: " << line;
  }
}

}  // namespace
