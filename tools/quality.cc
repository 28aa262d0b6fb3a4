#include "tools/quality.h"

#include <cstdint>
#include <string>

#include "tools/tool_error.h"

namespace tool {
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

std::vector<int> clusterOfFaces(const std::vector<ClusterRecord>& clusters,
                                const std::vector<int>& faceIds) {
  std::map<int, int> clusterOf;
  for (const ClusterRecord& cluster : clusters) {
    if (cluster.id < 0) continue;
    for (int face : cluster.faceIds) clusterOf.emplace(face, cluster.id);
  }
  std::vector<int> labels;
  int nextSingleton = -2;
  for (int face : faceIds) {
    const auto it = clusterOf.find(face);
    labels.push_back(it != clusterOf.end() ? it->second : nextSingleton--);
  }
  return labels;
}

std::map<int, int> identityOfFaces(const std::vector<int>& faceIds, const std::vector<int>& labels,
                                   const char* source) {
  if (faceIds.size() != labels.size()) {
    throw ToolError(std::string(source) + ": holds " + std::to_string(labels.size()) +
                    " labels for " + std::to_string(faceIds.size()) + " features");
  }
  std::map<int, int> identity;
  for (size_t i = 0; i < faceIds.size(); ++i) identity[faceIds[i]] = labels[i];
  return identity;
}

}  // namespace tool
