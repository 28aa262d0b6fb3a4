#include "tools/report/cluster_doubts.h"

#include <algorithm>
#include <cstdio>
#include <set>

#include "interface/handle_support.h"

namespace tool {
namespace {

double kernelValue(int score) { return score / 1023.0; }

std::string twoPlaces(const char* format, double value) {
  char text[64];
  std::snprintf(text, sizeof text, format, value);
  return text;
}

// The block index of each shown row; -1 after the clusters.
std::vector<int> blockOfRows(const SimilarityView& view) {
  std::vector<int> block(view.faceIds.size(), -1);
  size_t row = 0;
  for (size_t b = 0; b < view.order.blocks.size(); ++b) {
    for (int i = 0; i < view.order.blocks[b]; ++i) block[row++] = static_cast<int>(b);
  }
  return block;
}

}  // namespace

std::vector<ClusterFigures> clusterFigures(const SimilarityView& view,
                                           const std::map<int, int>& identities) {
  const size_t n = view.faceIds.size();
  const std::vector<int> block = blockOfRows(view);
  std::vector<ClusterFigures> figures(view.order.blocks.size());
  std::vector<double> sums(figures.size(), 0.0);
  std::vector<std::set<int>> known(figures.size());
  for (size_t b = 0; b < figures.size(); ++b) {
    figures[b].id = view.order.blockIds[b];
    figures[b].faces = view.order.blocks[b];
  }
  for (size_t i = 0; i < n; ++i) {
    if (block[i] < 0) continue;
    ClusterFigures& own = figures[block[i]];
    const auto identity = identities.find(view.faceIds[i]);
    if (identity != identities.end()) known[block[i]].insert(identity->second);
    for (size_t j = 0; j < n; ++j) {
      if (j == i || block[j] < 0) continue;
      const double similarity = kernelValue(view.similarities[i * n + j]);
      if (block[j] == block[i]) {
        own.lowestInside = std::min(own.lowestInside, similarity);
        if (j > i) sums[block[i]] += similarity;
      } else if (similarity > own.bestOther) {
        own.bestOther = similarity;
        own.nearestCluster = view.order.blockIds[block[j]];
      }
    }
  }
  for (size_t b = 0; b < figures.size(); ++b) {
    ClusterFigures& f = figures[b];
    const double pairs = 0.5 * f.faces * (f.faces - 1);
    if (pairs > 0) f.meanInside = sums[b] / pairs;
    f.identities = static_cast<int>(known[b].size());
    if (f.identities > 1) f.doubts.push_back(std::to_string(f.identities) + " identities");
    if (f.lowestInside < xvkfc::kSplitSimilarity)
      f.doubts.push_back(twoPlaces("a pair inside below %.2f", xvkfc::kSplitSimilarity));
    if (f.meanInside < xvkfc::kSplitSimilarity)
      f.doubts.push_back(twoPlaces("mean inside below %.2f", xvkfc::kSplitSimilarity));
    if (f.bestOther >= xvkfc::kMergeBestPairSimilarity) {
      f.doubts.push_back("a face of cluster " + std::to_string(f.nearestCluster) +
                         twoPlaces(" at %.2f or more", xvkfc::kMergeBestPairSimilarity));
    }
  }
  return figures;
}

std::vector<CloseMatch> closeUnclustered(const SimilarityView& view, double level) {
  const size_t n = view.faceIds.size();
  const std::vector<int> block = blockOfRows(view);
  std::vector<CloseMatch> matches;
  for (size_t i = 0; i < n; ++i) {
    if (block[i] >= 0) continue;
    CloseMatch best;
    for (size_t j = 0; j < n; ++j) {
      const double similarity = kernelValue(view.similarities[i * n + j]);
      if (block[j] < 0 || similarity <= best.similarity) continue;
      best = {view.faceIds[i], view.faceIds[j], view.order.blockIds[block[j]], similarity};
    }
    if (best.matchFaceId >= 0 && best.similarity >= level) matches.push_back(best);
  }
  std::stable_sort(matches.begin(), matches.end(), [](const CloseMatch& a, const CloseMatch& b) {
    return a.similarity > b.similarity;
  });
  return matches;
}

}  // namespace tool
