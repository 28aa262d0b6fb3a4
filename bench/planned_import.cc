// Cost of importing a whole gallery with clusterInPlannedRuns: comparator
// calls (and their share of the n(n-1)/2 of one run over all faces), CPU
// time, peak memory and quality against the identities, for seeded synthetic
// galleries of the given sizes (default 2,000 to 50,000 faces), runs of 64.
//
//   xvkfc_planned_import [--max-noise X] [FACES...]
//
// Each size runs in a child process of its own, so that its peak resident
// memory (getrusage maxrss) is its own. Every comparator call, the engine's
// and the planner's, is counted by wrapping the stand-in comparator at link
// time (-Wl,--wrap), without touching it.
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <set>
#include <vector>

#include "interface/face_recognition.h"
#include "planning/planned_clustering.h"
#include "bench_gallery.h"
#include "counted_comparator.h"
#include "evaluation/quality.h"
#include "evaluation/synthetic_gallery.h"
#include "interface/handle_support.h"

namespace {

double maxNoise = 1.2;

double cpuSeconds() {
  timespec t{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
  return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9;
}

// Imports a gallery of `faces` faces and prints its table row.
int importAndReport(int faces) {
  const evaluation::Gallery gallery = bench::benchGallery(faces, maxNoise);
  const int n = static_cast<int>(gallery.faceIds.size());
  const int people = static_cast<int>(
      std::set<int>(gallery.identities.begin(), gallery.identities.end()).size());
  FaceRecognition handle;
  if (handle.itf_xvk_Init(".") != xvkfc::kFeatureDim) return 1;
  itf_xvk_clusterinfo result{0, nullptr};
  PlannedClusteringStats stats;
  const double start = cpuSeconds();
  if (clusterInPlannedRuns(&handle, gallery.features.data(), gallery.faceIds.data(), n,
                           nullptr, kDefaultRunSize, kDefaultRounds, &result, &stats) < 0) {
    std::fprintf(stderr, "clusterInPlannedRuns failed at %d faces\n", n);
    return 1;
  }
  const double seconds = cpuSeconds() - start;
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);

  const evaluation::Quality q = evaluation::measureQuality(
      evaluation::clusterOfFaces(result, gallery.faceIds), gallery.identities);
  handle.itf_xvk_releaseClusterInfo(&result);
  handle.itf_xvk_Release();
  const double allPairs = 0.5 * n * (n - 1.0);
  const long long calls = bench::comparatorCalls();
  std::printf("| %6d | %6d | %12lld | %6.2f%% | %8.1f | %6.0f | %.3f / %.3f / %.3f | %.3f / %.3f / %.3f |\n",
              n, people, calls, 100.0 * calls / allPairs,
              seconds, usage.ru_maxrss / 1024.0, q.pairwise.precision, q.pairwise.recall, q.pairwise.f,
              q.bcubed.precision, q.bcubed.recall, q.bcubed.f);
  std::fflush(stdout);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<int> sizes;
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--max-noise") == 0 && i + 1 < argc) {
      maxNoise = std::atof(argv[++i]);
    } else {
      sizes.push_back(std::atoi(argv[i]));
    }
  }
  if (sizes.empty()) sizes = {2000, 5000, 10000, 20000, 50000};
  std::printf("planned import, runs of %d, up to %d rounds, noise 0.3 to %.2f\n", kDefaultRunSize,
              kDefaultRounds, maxNoise);
  std::printf(
      "| faces | people | comparator calls | of n(n-1)/2 | CPU s | peak MiB | pairwise P / R / F | "
      "BCubed P / R / F |\n");
  std::fflush(stdout);
  int failures = 0;
  for (int faces : sizes) {
    const pid_t child = fork();
    if (child == 0) _exit(importAndReport(faces));
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status) ||
        WEXITSTATUS(status) != 0) {
      ++failures;
    }
  }
  return failures == 0 ? 0 : 1;
}
