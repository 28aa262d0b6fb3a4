// Speed of the clustering engine's stages against the number of faces.
#include <benchmark/benchmark.h>

#include <vector>

#include "FRecogInterface.h"
#include "clustering/face_clustering_system.h"
#include "synthetic_gallery.h"

namespace {

constexpr int kFacesPerPerson = 5;

struct LoadedEngine {
  explicit LoadedEngine(int faces) {
    engine.init(&recognizer);
    gallery = bench::syntheticGallery(faces, faces / kFacesPerPerson + 1);
    for (int i = 0; i < faces; ++i) engine.loadFeatureVector(&gallery[size_t(i) * 960], i);
  }
  CFRecogInterface recognizer;
  FaceClusteringSystem engine;
  std::vector<float> gallery;
};

// One call of the comparator the engine is linked with (the host stand-in
// here), on features of a small gallery that stays in cache.
void BM_Comparison(benchmark::State& state) {
  std::vector<float> gallery = bench::syntheticGallery(64, 8);
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
  const int faces = static_cast<int>(state.range(0));
  const std::vector<float> gallery = bench::syntheticGallery(faces, faces / kFacesPerPerson + 1);
  CFRecogInterface recognizer;
  for (auto _ : state) {
    FaceClusteringSystem engine;
    engine.init(&recognizer);
    for (int i = 0; i < faces; ++i) {
      engine.loadFeatureVector(const_cast<float*>(&gallery[size_t(i) * 960]), i);
    }
    benchmark::DoNotOptimize(engine.faces.data());
  }
}
BENCHMARK(BM_LoadFeatures)->Arg(10)->Arg(100)->Arg(300)->Unit(benchmark::kMillisecond);

void BM_KernelBuild(benchmark::State& state) {
  LoadedEngine loaded(static_cast<int>(state.range(0)));
  Mat<int> unused;
  for (auto _ : state) {
    loaded.engine.updateKernelwithFeatureMatching(loaded.engine.featureMats, unused);
    benchmark::DoNotOptimize(loaded.engine.kernel.data());
  }
}
BENCHMARK(BM_KernelBuild)->Arg(10)->Arg(100)->Arg(300)->Unit(benchmark::kMillisecond);

void BM_Refinement(benchmark::State& state) {
  const int faces = static_cast<int>(state.range(0));
  LoadedEngine loaded(faces);
  Mat<int> unused;
  loaded.engine.updateKernelwithFeatureMatching(loaded.engine.featureMats, unused);
  for (auto _ : state) {
    Vec<int> labels(faces, 0);
    loaded.engine.refineClustering(labels, Mat<int>(), 0.7f, true);
    benchmark::DoNotOptimize(labels.data());
  }
}
BENCHMARK(BM_Refinement)->Arg(10)->Arg(100)->Arg(300)->Unit(benchmark::kMillisecond);

// A whole run: kernel, refinement and the merge with no application clusters.
void BM_ClusteringRun(benchmark::State& state) {
  const int faces = static_cast<int>(state.range(0));
  const std::vector<float> gallery = bench::syntheticGallery(faces, faces / kFacesPerPerson + 1);
  CFRecogInterface recognizer;
  FaceClusteringSystem engine;
  engine.init(&recognizer);
  for (auto _ : state) {
    state.PauseTiming();
    for (int i = 0; i < faces; ++i) {
      engine.loadFeatureVector(const_cast<float*>(&gallery[size_t(i) * 960]), i);
    }
    state.ResumeTiming();
    engine.clusteringFace({});
    benchmark::DoNotOptimize(engine.clusters.size());
  }
}
BENCHMARK(BM_ClusteringRun)->Arg(10)->Arg(100)->Arg(300)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
