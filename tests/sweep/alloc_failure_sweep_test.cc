// An application's whole cycle with each of its allocations failing once in
// turn: operator new throws, malloc and calloc return null. Every cycle must
// end without a crash, an escaped exception or (under LeakSanitizer, which
// checks at exit) a leak, and must log why it fell short; a fresh cycle
// afterwards must give the normal result.
//
// XVKFC_SWEEP_STRIDE=n fails only every n-th allocation, for slow runs.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "interface/face_recognition.h"
#include "support/alloc_failure.h"
#include "support/log_capture.h"
#include "support/scripted_closed_libs.h"
#include "support/similarities.h"

namespace {

using testing_support::scripted;
using testing_support::taggedFeature;

// Tags with the same tens digit are one person.
void scriptDoubles() {
  alloc_failure::Suspended notTheEngines;
  testing_support::resetScripted();
  scripted().fallback = [](const float* a, const float* b) {
    return static_cast<int>(a[0]) / 10 == static_cast<int>(b[0]) / 10 ? 0.9f : -0.4f;
  };
  static float points[10] = {2, 2, 5, 2, 4, 4, 2, 6, 5, 6};
  scripted().landmarksToReport = points;
  scripted().featureToExtract = taggedFeature(13);
}

std::string describe(const itf_xvk_clusterinfo& list) {
  std::string text;
  for (int i = 0; i < list.count; ++i) {
    const itf_xvk_clusteritem& item = list.items[i];
    text += " [" + std::to_string(item.clusterId) + ":";
    for (int f = 0; f < item.faceCount; ++f) text += " " + std::to_string(item.faceIds[f]);
    text += " rep " + std::to_string(item.repFaceId) + "/" + std::to_string(item.featureDim) + "]";
  }
  return text;
}

// The allocation made to fail, counted from the start of the cycle (0:
// none), and the operation it fell in, for the messages.
long cycleStart = 0;
long failing = 0;
const char* failedIn = "";

// Runs one operation of the library with its allocations counted; the
// test's own are not.
template <typename Call>
auto library(const char* name, Call call) {
  alloc_failure::Resumed counted;
  const long before = alloc_failure::allocationsSoFar() - cycleStart;
  const char* earlier = failedIn;
  failedIn = name;  // kept if an exception escapes
  const auto result = call();
  const long after = alloc_failure::allocationsSoFar() - cycleStart;
  if (failing <= before || failing > after) failedIn = earlier;
  return result;
}

// Init, an extraction, loads, a run with the application's clusters, its
// result, a representative, a recommendation, a second run fed the first
// result, Release. Returns what the application would keep.
std::string applicationCycle() {
  alloc_failure::Suspended notTheLibrarys;
  std::string outcome;
  FaceRecognition handle;
  outcome += std::to_string(library("itf_xvk_Init", [&] { return handle.itf_xvk_Init("/models"); }));

  std::vector<unsigned char> image(8 * 8 + 2 * 4 * 4, 0x80);
  for (int i = 0; i < 64; ++i) image[i] = static_cast<unsigned char>(i * 37);
  const float* extracted = library("itf_xvk_extractFeature", [&] { return handle.itf_xvk_extractFeature(image.data(), static_cast<int>(image.size()), 8, 8,
                                         itf_xvk_faceroi{0, 0, 8, 8});
  });
  std::vector<float> face13;
  if (extracted) face13.assign(extracted, extracted + 960);
  outcome += face13.empty() ? " no-feature" : " feature";
  if (!face13.empty()) library("itf_xvk_loadFaceFeature", [&] { return handle.itf_xvk_loadFaceFeature(face13.data(), 13); });
  auto load = [&](std::initializer_list<int> tags) {
    for (int tag : tags) {
      std::vector<float> feature = taggedFeature(tag);
      library("itf_xvk_loadFaceFeature", [&] { return handle.itf_xvk_loadFaceFeature(feature.data(), tag); });
    }
  };
  load({10, 11, 12, 20, 21, 30, 40});

  std::vector<float> f14 = taggedFeature(14), f50 = taggedFeature(50);
  int ids1[] = {101, 102}, ids5[] = {105}, bucket[] = {900};
  itf_xvk_clusteritem items[] = {{-1, 1, bucket, 0, nullptr, -1},
                                 {1, 2, ids1, 960, f14.data(), 101},
                                 {5, 1, ids5, 960, f50.data(), 105}};
  itf_xvk_clusterinfo existing = {3, items};
  itf_xvk_clusterinfo first = {0, nullptr}, second = {0, nullptr};
  auto runAndRead = [&](itf_xvk_clusterinfo* given, itf_xvk_clusterinfo* result) {
    outcome += " " + std::to_string(library("itf_xvk_runClustering", [&] { return handle.itf_xvk_runClustering(given); }));
    outcome += " " + std::to_string(library("itf_xvk_getClusterInfo", [&] { return handle.itf_xvk_getClusterInfo(result); }));
    outcome += describe(*result);
  };
  runAndRead(&existing, &first);

  std::vector<float> three;
  for (int tag : {60, 61, 62}) {
    const std::vector<float> f = taggedFeature(tag);
    three.insert(three.end(), f.begin(), f.end());
  }
  float* representative =
      library("itf_xvk_getClusterFeature", [&] { return handle.itf_xvk_getClusterFeature(three.data(), 3); });
  outcome += " rep " + (representative ? std::to_string(representative[0]) : "null");
  std::free(representative);
  std::vector<float> query = taggedFeature(22);
  const int recommended =
      library("itf_xvk_recommendCluster", [&] { return handle.itf_xvk_recommendCluster(&first, query.data(), 0); });
  outcome += " recommend " + std::to_string(recommended);

  load({22, 31, 41, 51});
  runAndRead(&first, &second);
  library("itf_xvk_releaseClusterInfo and itf_xvk_Release", [&] {
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

TEST(AllocationFailureSweep, EveryFailedAllocationEndsCleanlyAndIsLogged) {
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
  std::printf("%ld allocations in a cycle; failing 1 in %ld of them\n", allocations, stride);

  for (long k = 1; k <= allocations; k += stride) {
    scriptDoubles();
    testing_support::LogCapture log;
    alloc_failure::failNth(k);
    cycleStart = alloc_failure::allocationsSoFar();
    failing = k;
    failedIn = "";
    try {
      applicationCycle();
    } catch (const std::exception& e) {
      ADD_FAILURE() << "allocation " << k << " in " << failedIn << ": " << e.what()
                    << " escaped";
    } catch (...) {
      ADD_FAILURE() << "allocation " << k << " in " << failedIn << ": an exception escaped";
    }
    alloc_failure::disarm();
    failing = 0;
    bool explained = false;
    for (const std::string& line : log.messages()) explained |= explainsAFailure(line);
    EXPECT_TRUE(explained) << "allocation " << k << " in " << failedIn
                           << " failed without a log line";

    scriptDoubles();
    EXPECT_EQ(applicationCycle(), normal) << "after allocation " << k << " failed";
    log.lines.clear();
  }
}

}  // namespace
