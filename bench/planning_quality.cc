// Quality and comparator cost of clustering a whole gallery: planned runs
// (clusterInPlannedRuns) against runs sorted by true identity (the best any
// order can do), runs in arrival order, and one run over all faces. Prints
// one table row per way, for synthetic galleries of the given sizes.
//
//   xvkfc_planning_quality [--single] [--run-size N] [--rounds N] [--max-noise X]
//                          [--look-alikes PER_100_PEOPLE] FACES...
//
// The comparator calls are counted by wrapping the stand-in comparator at
// link time (-Wl,--wrap), so every call of the engine and the planner counts.
#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <numeric>
#include <set>
#include <string>
#include <vector>

#include "evaluation/quality.h"
#include "evaluation/synthetic_gallery.h"
#include "interface/face_recognition.h"
#include "interface/handle_support.h"
#include "planning/planned_clustering.h"
#include "bench_gallery.h"
#include "counted_comparator.h"

namespace {

struct Outcome {
  std::vector<int> clusterOfFace;  // per gallery row
  int clusters = 0;
  int unclustered = 0;
  int64_t calls = 0;
  double seconds = 0.0;
  int runs = 0;
  int rounds = 1;
};

void recordResult(const itf_xvk_clusterinfo& list, const evaluation::Gallery& gallery,
                  Outcome& outcome) {
  outcome.clusterOfFace = evaluation::clusterOfFaces(list, gallery.faceIds);
  for (int i = 0; i < list.count; ++i) {
    if (list.items[i].clusterId >= 0)
      ++outcome.clusters;
    else
      outcome.unclustered += list.items[i].faceCount;
  }
}

double secondsSince(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Runs of `runSize` faces in the given order, each fed the previous result.
Outcome runInOrder(FaceRecognition& handle, const evaluation::Gallery& gallery,
                   const std::vector<int>& order, int runSize) {
  Outcome outcome;
  const int64_t callsBefore = bench::comparatorCalls();
  const auto start = std::chrono::steady_clock::now();
  itf_xvk_clusterinfo current{0, nullptr};
  for (std::size_t begin = 0; begin < order.size(); begin += runSize) {
    const std::size_t end = std::min(order.size(), begin + runSize);
    for (std::size_t k = begin; k < end; ++k) {
      const int row = order[k];
      handle.itf_xvk_loadFaceFeature(const_cast<float*>(gallery.row(row)), gallery.faceIds[row]);
    }
    handle.itf_xvk_runClustering(outcome.runs == 0 ? nullptr : &current);
    handle.itf_xvk_releaseClusterInfo(&current);
    handle.itf_xvk_getClusterInfo(&current);
    ++outcome.runs;
  }
  outcome.seconds = secondsSince(start);
  outcome.calls = bench::comparatorCalls() - callsBefore;
  recordResult(current, gallery, outcome);
  handle.itf_xvk_releaseClusterInfo(&current);
  return outcome;
}

Outcome runPlanned(FaceRecognition& handle, const evaluation::Gallery& gallery, int runSize,
                   int rounds) {
  Outcome outcome;
  const int64_t callsBefore = bench::comparatorCalls();
  const auto start = std::chrono::steady_clock::now();
  itf_xvk_clusterinfo result{0, nullptr};
  PlannedClusteringStats stats;
  if (clusterInPlannedRuns(&handle, gallery.features.data(), gallery.faceIds.data(),
                           gallery.faces(), nullptr, runSize, rounds, &result, &stats) < 0) {
    std::fprintf(stderr, "clusterInPlannedRuns failed\n");
    std::exit(1);
  }
  outcome.seconds = secondsSince(start);
  outcome.calls = bench::comparatorCalls() - callsBefore;
  recordResult(result, gallery, outcome);
  outcome.runs = stats.runs;
  outcome.rounds = stats.rounds;
  std::printf("  (plan comparisons %lld of the total)\n",
              static_cast<long long>(stats.planComparisons));
  handle.itf_xvk_releaseClusterInfo(&result);
  return outcome;
}

void printRow(const char* name, const Outcome& outcome, const evaluation::Gallery& gallery) {
  const evaluation::Quality q =
      evaluation::measureQuality(outcome.clusterOfFace, gallery.identities);
  std::printf("| %-16s | %.3f %.3f %.3f | %.3f %.3f %.3f | %5d | %5d | %4d/%d | %11lld | %7.1f |\n",
              name, q.pairwise.precision, q.pairwise.recall, q.pairwise.f, q.bcubed.precision,
              q.bcubed.recall, q.bcubed.f, outcome.clusters, outcome.unclustered, outcome.runs,
              outcome.rounds, static_cast<long long>(outcome.calls), outcome.seconds);
  std::fflush(stdout);
}

double maxNoise = 0.9;
int lookAlikesPer100People = 0;

}  // namespace

int main(int argc, char** argv) {
  bool single = false;
  int runSize = kDefaultRunSize, rounds = kDefaultRounds;
  std::vector<int> sizes;
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--single") == 0) {
      single = true;
    } else if (std::strcmp(argv[i], "--run-size") == 0 && i + 1 < argc) {
      runSize = std::atoi(argv[++i]);
    } else if (std::strcmp(argv[i], "--max-noise") == 0 && i + 1 < argc) {
      maxNoise = std::atof(argv[++i]);
    } else if (std::strcmp(argv[i], "--look-alikes") == 0 && i + 1 < argc) {
      lookAlikesPer100People = std::atoi(argv[++i]);
    } else if (std::strcmp(argv[i], "--rounds") == 0 && i + 1 < argc) {
      rounds = std::atoi(argv[++i]);
    } else {
      sizes.push_back(std::atoi(argv[i]));
    }
  }
  if (sizes.empty()) sizes = {2000};

  FaceRecognition handle;
  if (handle.itf_xvk_Init(".") != xvkfc::kFeatureDim) {
    std::fprintf(stderr, "itf_xvk_Init failed\n");
    return 1;
  }
  for (int faces : sizes) {
    const evaluation::Gallery gallery = bench::benchGallery(faces, maxNoise, lookAlikesPer100People);
    const int people = static_cast<int>(
        std::set<int>(gallery.identities.begin(), gallery.identities.end()).size());
    std::printf(
        "\n%d faces of %d people (noise 0.3 to %.2f, %d%% look-alikes), runs of %d, up to %d "
        "rounds\n",
        gallery.faces(), people, maxNoise, lookAlikesPer100People, runSize, rounds);
    std::printf(
        "| way              | pairwise P R F    | BCubed P R F      | clust | uncl. | runs/rd | "
        "comparisons | seconds |\n");
    std::vector<int> arrival(gallery.faces());
    std::iota(arrival.begin(), arrival.end(), 0);
    std::vector<int> byIdentity = arrival;
    std::stable_sort(byIdentity.begin(), byIdentity.end(),
                     [&](int a, int b) { return gallery.identities[a] < gallery.identities[b]; });

    printRow("planned", runPlanned(handle, gallery, runSize, rounds), gallery);
    printRow("identity-sorted", runInOrder(handle, gallery, byIdentity, runSize), gallery);
    printRow("in order", runInOrder(handle, gallery, arrival, runSize), gallery);
    if (single) {
      printRow("one run", runInOrder(handle, gallery, arrival, gallery.faces()), gallery);
    }
  }
  handle.itf_xvk_Release();
  return 0;
}
