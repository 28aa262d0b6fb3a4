#include "evaluation/quality.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <utility>

namespace evaluation {
namespace {

int64_t pairsOf(int64_t n) { return n * (n - 1) / 2; }

double ratio(double part, double whole) { return whole == 0.0 ? 1.0 : part / whole; }

PrecisionRecall combine(double precision, double recall) {
  PrecisionRecall result;
  result.precision = precision;
  result.recall = recall;
  result.f = precision + recall == 0.0 ? 0.0 : 2.0 * precision * recall / (precision + recall);
  return result;
}

}  // namespace

Quality measureQuality(const std::vector<int>& predicted, const std::vector<int>& truth) {
  std::map<int, int64_t> clusterSize, identitySize;
  std::map<std::pair<int, int>, int64_t> overlap;
  for (size_t i = 0; i < predicted.size(); ++i) {
    ++clusterSize[predicted[i]];
    ++identitySize[truth[i]];
    ++overlap[{predicted[i], truth[i]}];
  }

  int64_t togetherPairs = 0, samePersonPairs = 0, correctPairs = 0;
  for (const auto& [cluster, size] : clusterSize) togetherPairs += pairsOf(size);
  for (const auto& [identity, size] : identitySize) samePersonPairs += pairsOf(size);
  double bcubedPrecision = 0.0, bcubedRecall = 0.0;
  for (const auto& [key, count] : overlap) {
    correctPairs += pairsOf(count);
    // Each of the `count` faces in this cell has the same two ratios.
    const double n = static_cast<double>(count);
    bcubedPrecision += n * n / static_cast<double>(clusterSize[key.first]);
    bcubedRecall += n * n / static_cast<double>(identitySize[key.second]);
  }

  Quality quality;
  quality.faces = static_cast<int>(predicted.size());
  quality.pairwise =
      combine(ratio(correctPairs, togetherPairs), ratio(correctPairs, samePersonPairs));
  const double faces = static_cast<double>(predicted.size());
  quality.bcubed = combine(ratio(bcubedPrecision, faces), ratio(bcubedRecall, faces));
  return quality;
}

std::vector<int> clusterOfFaces(const itf_xvk_clusterinfo& clusters,
                                const std::vector<int>& faceIds) {
  std::map<int, int> clusterOf;
  for (int c = 0; c < clusters.count; ++c) {
    const itf_xvk_clusteritem& cluster = clusters.items[c];
    if (cluster.clusterId < 0) continue;
    for (int k = 0; k < cluster.faceCount; ++k)
      clusterOf.emplace(cluster.faceIds[k], cluster.clusterId);
  }
  std::vector<int> labels;
  int nextSingleton = -2;
  for (int face : faceIds) {
    const auto it = clusterOf.find(face);
    labels.push_back(it != clusterOf.end() ? it->second : nextSingleton--);
  }
  return labels;
}

}  // namespace evaluation
