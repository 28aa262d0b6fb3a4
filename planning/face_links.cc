#include "planning/face_links.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "interface/face_recognition.h"
#include "planning/profile_index.h"
#include "planning/score_profiles.h"

namespace detail {

namespace {

using Pairs = std::vector<std::pair<int, int>>;

// Candidate pairs (a < b, b a probe node or a face) through score profiles.
Pairs candidatePairs(FaceRecognition& handle, const std::vector<float*>& faceRows,
                     const std::vector<float*>& probeRows, int64_t& comparisons) {
  const int faces = static_cast<int>(faceRows.size());
  ScoreProfiles profiles(handle, faceRows);
  for (float* row : faceRows) profiles.add(row);
  for (float* row : probeRows) profiles.add(row);
  comparisons += profiles.comparisons();

  const ProfileIndex index(profiles, faces);
  Pairs pairs;
  pairs.reserve(static_cast<std::size_t>(profiles.size()) * kCandidates);
  std::vector<int> best;
  for (int node = 0; node < profiles.size(); ++node) {
    index.search(node, node < faces ? node : -1, kCandidates, best);
    for (int other : best) pairs.emplace_back(std::min(node, other), std::max(node, other));
  }
  return pairs;
}

// Every pair of faces, and every probe with every face.
Pairs allPairs(int faces, int probes) {
  Pairs pairs;
  for (int a = 0; a < faces; ++a)
    for (int b = a + 1; b < faces + probes; ++b) pairs.emplace_back(a, b);
  return pairs;
}

}  // namespace

FaceLinks linkFaces(FaceRecognition& handle, const std::vector<float*>& faceRows,
                    const std::vector<float*>& probeRows) {
  const int faces = static_cast<int>(faceRows.size());
  const int probes = static_cast<int>(probeRows.size());
  const int nodes = faces + probes;
  FaceLinks links;
  const int64_t exhaustive = static_cast<int64_t>(faces) * (faces - 1) / 2 + int64_t{faces} * probes;
  Pairs pairs = exhaustive <= int64_t{nodes} * (kProfileLength + kCandidates)
                    ? allPairs(faces, probes)
                    : candidatePairs(handle, faceRows, probeRows, links.comparisons);
  std::sort(pairs.begin(), pairs.end());
  pairs.erase(std::unique(pairs.begin(), pairs.end()), pairs.end());

  auto row = [&](int node) { return node < faces ? faceRows[node] : probeRows[node - faces]; };
  Pairs linked;
  for (const auto& [a, b] : pairs) {
    ++links.comparisons;
    if (handle.itf_xvk_compareFeature(row(a), row(b)) >= kJoinScore) linked.emplace_back(a, b);
  }
  // Both ends, as a counting sort by node.
  links.start.assign(nodes + 1, 0);
  for (const auto& [a, b] : linked) ++links.start[a + 1], ++links.start[b + 1];
  for (int i = 0; i < nodes; ++i) links.start[i + 1] += links.start[i];
  links.to.resize(links.start[nodes]);
  std::vector<int> fill(links.start.begin(), links.start.end() - 1);
  for (const auto& [a, b] : linked) {
    links.to[fill[a]++] = b;
    links.to[fill[b]++] = a;
  }
  for (int i = 0; i < nodes; ++i) std::sort(links.to.begin() + links.start[i], links.to.begin() + links.start[i + 1]);
  return links;
}

}  // namespace detail
