// Speed of the clustering engine's stages against the number of faces, up to
// gallery scale (10,000 faces in one run). Stages after the kernel build run
// on one kernel per size, built once and kept for the whole program: at
// 10,000 faces that is 400 MB, plus 400 MB more while a merge benchmark
// restores it. Run the large sizes alone, e.g.
//   xvkfc_bench_clustering --benchmark_filter='/5000$'
#include <benchmark/benchmark.h>

#include <map>
#include <memory>
#include <vector>

#include "FRecogInterface.h"
#include "clustering/face_clustering_system.h"
#include "synthetic_gallery.h"

namespace {

constexpr int kFacesPerPerson = 5;

void gallerySizes(benchmark::internal::Benchmark* b) {
  for (int faces : {100, 1000, 2000, 5000, 10000}) b->Arg(faces);
  b->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();
}

std::vector<float> galleryOf(int faces) {
  return bench::syntheticGallery(faces, faces / kFacesPerPerson + 1);
}

void loadAll(FaceClusteringSystem& engine, std::vector<float>& gallery) {
  const int faces = static_cast<int>(gallery.size() / 960);
  for (int i = 0; i < faces; ++i) engine.loadFeatureVector(&gallery[size_t(i) * 960], i);
}

// An engine with `faces` loaded faces and their kernel, and the labels that
// split-and-merge leaves for pruning; built once per size.
struct Prepared {
  CFRecogInterface recognizer;
  FaceClusteringSystem engine;
  std::vector<float> gallery;
  Vec<int> splitMerged;
};

Prepared& prepared(int faces) {
  static std::map<int, std::unique_ptr<Prepared>> cache;
  std::unique_ptr<Prepared>& entry = cache[faces];
  if (!entry) {
    entry = std::make_unique<Prepared>();
    entry->engine.init(&entry->recognizer);
    entry->gallery = galleryOf(faces);
    loadAll(entry->engine, entry->gallery);
    Mat<int> unused;
    entry->engine.updateKernelwithFeatureMatching(entry->engine.featureMats, unused);
    entry->splitMerged.assign(faces, 0);
    for (int cycle = 0; cycle < 20; ++cycle) {
      entry->engine.ClusterSplit(entry->splitMerged);
      entry->engine.MergeClusters(entry->splitMerged, true);
    }
  }
  return *entry;
}

// One call of the comparator the engine is linked with (the host stand-in
// here), on features of a small gallery that stays in cache.
void BM_Comparison(benchmark::State& state) {
  std::vector<float> gallery = galleryOf(64);
  CFRecogInterface recognizer;
  int pair = 0;
  for (auto _ : state) {
    float* first = &gallery[size_t(pair % 64) * 960];
    float* second = &gallery[size_t((pair * 7 + 1) % 64) * 960];
    benchmark::DoNotOptimize(recognizer.RunComparison(first, second));
    ++pair;
  }
}
BENCHMARK(BM_Comparison);

void BM_LoadFeatures(benchmark::State& state) {
  std::vector<float> gallery = galleryOf(static_cast<int>(state.range(0)));
  CFRecogInterface recognizer;
  for (auto _ : state) {
    FaceClusteringSystem engine;
    engine.init(&recognizer);
    loadAll(engine, gallery);
    benchmark::DoNotOptimize(engine.faces.data());
  }
}
BENCHMARK(BM_LoadFeatures)->Apply(gallerySizes);

// The n(n-1)/2 comparisons, each on two private copies, and the n x n kernel.
void BM_KernelBuild(benchmark::State& state) {
  Prepared& p = prepared(static_cast<int>(state.range(0)));
  Mat<int> unused;
  for (auto _ : state) {
    p.engine.updateKernelwithFeatureMatching(p.engine.featureMats, unused);
    benchmark::DoNotOptimize(p.engine.kernel.data());
  }
}
BENCHMARK(BM_KernelBuild)->Apply(gallerySizes);

// Twenty split-and-merge cycles, pruning and the rebuild of the cluster map.
void BM_Refinement(benchmark::State& state) {
  const int faces = static_cast<int>(state.range(0));
  Prepared& p = prepared(faces);
  for (auto _ : state) {
    Vec<int> labels(faces, 0);
    p.engine.refineClustering(labels, Mat<int>(), 0.7f, true);
    benchmark::DoNotOptimize(labels.data());
  }
}
BENCHMARK(BM_Refinement)->Apply(gallerySizes);

// Pruning and the rebuild alone, on the labels split-and-merge leaves.
void BM_Pruning(benchmark::State& state) {
  Prepared& p = prepared(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    Vec<int> labels = p.splitMerged;
    p.engine.refineClustering(labels, Mat<int>(), 0.7f, false);
    benchmark::DoNotOptimize(labels.data());
  }
}
BENCHMARK(BM_Pruning)->Apply(gallerySizes);

// The merge of the run's clusters with `applicationClusters` clusters the
// application holds, each a face of another gallery as its representative.
// The merge may replace the loaded faces and the kernel (when it unites
// clusters), so both are restored between iterations, untimed.
void BM_MergeWithApplication(benchmark::State& state) {
  const int faces = static_cast<int>(state.range(0));
  const int applicationClusters = static_cast<int>(state.range(1));
  Prepared& p = prepared(faces);
  Vec<int> labels(faces, 0);
  p.engine.refineClustering(labels, Mat<int>(), 0.7f, true);
  const std::map<int, Cluster> runClusters = p.engine.clusters;
  const std::vector<Face> loadedFaces = p.engine.faces;
  const std::vector<Mat<float>> loadedFeatures = p.engine.featureMats;
  const std::vector<float> other =
      bench::syntheticGallery(applicationClusters, applicationClusters, 301);
  std::vector<clusterinfo> existing(applicationClusters);
  for (int c = 0; c < applicationClusters; ++c) {
    existing[c].id = c;
    existing[c].faceIds = {1000000 + c};
    existing[c].feature.assign(&other[size_t(c) * 960], &other[size_t(c + 1) * 960]);
    existing[c].repFaceId = 1000000 + c;
  }
  std::vector<Vec<float>> kernel = p.engine.kernel;
  for (auto _ : state) {
    p.engine.mergeInitialCluster(existing);
    state.PauseTiming();
    p.engine.clusters = runClusters;
    p.engine.faces = loadedFaces;
    p.engine.featureMats = loadedFeatures;
    if (p.engine.kernel.size() != kernel.size()) p.engine.kernel = kernel;
    p.engine.initialFaceCount = 0;
    state.ResumeTiming();
  }
}
BENCHMARK(BM_MergeWithApplication)
    ->ArgsProduct({{1000, 2000, 5000, 10000}, {0, 100, 2000}})
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();

// A whole run as the application makes it: loading, kernel, refinement and
// the merge with no application clusters.
void BM_ClusteringRun(benchmark::State& state) {
  std::vector<float> gallery = galleryOf(static_cast<int>(state.range(0)));
  CFRecogInterface recognizer;
  FaceClusteringSystem engine;
  engine.init(&recognizer);
  for (auto _ : state) {
    loadAll(engine, gallery);
    engine.clusteringFace({});
    benchmark::DoNotOptimize(engine.clusters.size());
  }
}
BENCHMARK(BM_ClusteringRun)->Apply(gallerySizes);

}  // namespace

BENCHMARK_MAIN();
