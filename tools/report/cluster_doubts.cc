#include "tools/report/cluster_doubts.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <set>
#include <utility>

#include "interface/handle_support.h"

namespace tool {
namespace {

double kernelValue(int score) { return score / 1023.0; }

std::string twoPlaces(const char* format, double value) {
  char text[64];
  std::snprintf(text, sizeof text, format, value);
  return text;
}

}  // namespace

GalleryFigures measureGallery(const ClusterOrder& order, const std::vector<int>& faceIds,
                              const std::map<int, int>& identities, double level, size_t maxPairs,
                              const RowScore& countedScore, NearSearch search) {
  GalleryFigures out;
  const RowScore score = [&](int a, int b) {
    ++out.comparisons;
    return countedScore(a, b);
  };
  const size_t blocks = order.blocks.size();
  std::vector<int> start(blocks + 1, 0);
  for (size_t b = 0; b < blocks; ++b) start[b + 1] = start[b] + order.blocks[b];
  auto members = [&](size_t b) {
    return std::make_pair(order.rows.begin() + start[b], order.rows.begin() + start[b + 1]);
  };
  // The highest score of `row` to a member of block b, and that member.
  auto bestIn = [&](int row, size_t b) {
    std::pair<int, int> best{-1, -1};
    const auto [first, last] = members(b);
    for (auto it = first; it != last; ++it) best = std::max(best, {score(row, *it), *it});
    return best;
  };

  const NearClusters nearClusters(order.repRows, score, search);
  out.clusters.resize(blocks);
  for (size_t b = 0; b < blocks; ++b) {
    ClusterFigures& f = out.clusters[b];
    f.id = order.blockIds[b];
    f.faces = order.blocks[b];
    const auto [first, last] = members(b);
    double sum = 0.0;
    std::set<int> known;
    for (auto i = first; i != last; ++i) {
      const auto identity = identities.find(faceIds[*i]);
      if (identity != identities.end()) known.insert(identity->second);
      for (auto j = i + 1; j != last; ++j) {
        const double s = kernelValue(score(*i, *j));
        f.lowestInside = std::min(f.lowestInside, s);
        sum += s;
      }
    }
    const double pairs = 0.5 * f.faces * (f.faces - 1);
    if (pairs > 0) f.meanInside = sum / pairs;
    for (const auto& [unused, d] : nearClusters.nearest(order.repRows[b], static_cast<int>(b))) {
      for (auto i = first; i != last; ++i) {
        const double s = kernelValue(bestIn(*i, d).first);
        if (s > f.bestOther) {
          f.bestOther = s;
          f.nearestCluster = order.blockIds[d];
        }
      }
    }
    f.identities = static_cast<int>(known.size());
    if (f.identities > 1) f.doubts.push_back(std::to_string(f.identities) + " identities");
    if (f.lowestInside < xvkfc::kSplitSimilarity)
      f.doubts.push_back(twoPlaces("a pair inside below %.2f", xvkfc::kSplitSimilarity));
    if (f.meanInside < xvkfc::kSplitSimilarity)
      f.doubts.push_back(twoPlaces("mean inside below %.2f", xvkfc::kSplitSimilarity));
    if (f.bestOther >= level) {
      f.doubts.push_back("a face of cluster " + std::to_string(f.nearestCluster) +
                         twoPlaces(" at %.2f or more", level));
    }
  }

  // Every unclustered face: the members of its nearest clusters.
  const size_t n = order.rows.size();
  for (size_t u = order.clustered; u < n; ++u) {
    const int row = order.rows[u];
    CloseMatch best;
    for (const auto& [unused, b] : nearClusters.nearest(row, -1)) {
      const auto [s, match] = bestIn(row, b);
      if (kernelValue(s) > best.similarity)
        best = {faceIds[row], faceIds[match], order.blockIds[b], kernelValue(s)};
    }
    if (best.matchFaceId >= 0 && best.similarity >= level) out.closeMatches.push_back(best);
  }

  // Pairs of unclustered faces: each face joins the groups of its two
  // nearest reference faces (every k-th unclustered face, about sqrt(U) of
  // them), and faces are compared within each group.
  const size_t unclustered = n - order.clustered;
  const size_t step = std::max<size_t>(1, static_cast<size_t>(std::sqrt(double(unclustered))));
  std::vector<int> references;
  for (size_t u = order.clustered; u < n; u += step) references.push_back(order.rows[u]);
  std::vector<std::vector<int>> groups(references.size());
  std::map<int, std::vector<int>> groupsOf;  // row -> its groups, ascending
  for (size_t u = order.clustered; u < n; ++u) {
    NearestBlocks nearest(2);
    for (size_t r = 0; r < references.size(); ++r)
      nearest.offer(order.rows[u] == references[r] ? 1024 : score(order.rows[u], references[r]),
                    static_cast<int>(r));
    for (const auto& [unused, r] : nearest.best()) {
      groups[r].push_back(order.rows[u]);
      groupsOf[order.rows[u]].push_back(r);
    }
    std::sort(groupsOf[order.rows[u]].begin(), groupsOf[order.rows[u]].end());
  }
  // The first group two faces share: where that pair is compared.
  auto firstShared = [&](int a, int b) {
    for (int r : groupsOf[a]) {
      const std::vector<int>& other = groupsOf[b];
      if (std::find(other.begin(), other.end(), r) != other.end()) return r;
    }
    return -1;
  };
  for (size_t r = 0; r < groups.size(); ++r) {
    const std::vector<int>& group = groups[r];
    for (size_t i = 0; i < group.size(); ++i) {
      for (size_t j = i + 1; j < group.size(); ++j) {
        if (firstShared(group[i], group[j]) != static_cast<int>(r)) continue;
        const auto key = std::minmax(group[i], group[j]);
        const double s = kernelValue(score(group[i], group[j]));
        if (s < level) continue;
        ++out.pairsFound;
        out.pairs.push_back({faceIds[key.first], faceIds[key.second], s});
        // Bounded: keep the closest maxPairs, trimmed whenever twice as many.
        if (out.pairs.size() >= 2 * maxPairs + 1) {
          std::nth_element(out.pairs.begin(), out.pairs.begin() + maxPairs, out.pairs.end(),
                           [](const FacePair& a, const FacePair& b) { return a.similarity > b.similarity; });
          out.pairs.resize(maxPairs);
        }
      }
    }
  }
  auto closer = [](const auto& a, const auto& b) { return a.similarity > b.similarity; };
  std::stable_sort(out.closeMatches.begin(), out.closeMatches.end(), closer);
  std::stable_sort(out.pairs.begin(), out.pairs.end(), closer);
  if (out.pairs.size() > maxPairs) out.pairs.resize(maxPairs);
  return out;
}

}  // namespace tool
