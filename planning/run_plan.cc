#include "planning/run_plan.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include "interface/face_recognition.h"
#include "interface/handle_support.h"
#include "planning/guarded_call.h"
#include "platform/log.h"

namespace {

constexpr int kDim = xvkfc::kFeatureDim;

// A face joins a pivot's group at a score of 767 or more (mapped similarity
// 0.75): the engine keeps a face in a cluster only when its best similarity
// to the rest is at least 0.75, so faces below that would not stay together
// anyway.
constexpr int kJoinScore = 767;

// Groups per run. One run starts from a single cluster and cuts at most one
// new group per refinement cycle (20 cycles, so at most 21 clusters); 16
// leaves room for groups that hold two people.
constexpr int kGroupsPerRun = 16;

// Total order of float bit patterns (negative NaN first, then -inf ... -0,
// +0 ... +inf, positive NaN), so that any values, NaN included, sort the
// same way every time.
uint32_t orderedBits(float value) {
  uint32_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  return (bits & 0x80000000u) ? ~bits : (bits | 0x80000000u);
}

bool rowLess(const float* a, const float* b) {
  for (int k = 0; k < kDim; ++k) {
    const uint32_t x = orderedBits(a[k]), y = orderedBits(b[k]);
    if (x != y) return x < y;
  }
  return false;
}

// The comparator's score of two faces (rows in canonical order), counted.
class Scorer {
 public:
  Scorer(FaceRecognition& handle, std::vector<float>& rows) : handle_(handle), rows_(rows) {}
  int operator()(int a, int b) {
    ++calls;
    return handle_.itf_xvk_compareFeature(row(a), row(b));
  }
  int64_t calls = 0;

 private:
  float* row(int face) { return &rows_[static_cast<std::size_t>(face) * kDim]; }
  FaceRecognition& handle_;
  std::vector<float>& rows_;
};

// Faces (canonical positions) in groups: members group after group.
struct Groups {
  std::vector<int> members;
  std::vector<int> sizes;
  void add(const int* faces, int count) {
    members.insert(members.end(), faces, faces + count);
    sizes.push_back(count);
  }
};

// Groups `faces` around pivots: the first face not yet in a group is the next
// pivot and takes every remaining face that scores kJoinScore or more against
// it. When the next pivot would take the scorer past `budget` calls, the
// faces left each form a group of one.
void groupAroundPivots(Scorer& score, std::vector<int> faces, int64_t budget, Groups& groups) {
  std::vector<int> group;
  std::size_t begin = 0;  // faces[begin..] are not yet in a group
  while (begin < faces.size()) {
    if (score.calls + static_cast<int64_t>(faces.size() - begin - 1) > budget) break;
    const int pivot = faces[begin++];
    group.assign(1, pivot);
    std::size_t kept = begin;  // stable compaction of the faces that stay
    for (std::size_t j = begin; j < faces.size(); ++j) {
      if (score(pivot, faces[j]) >= kJoinScore) {
        group.push_back(faces[j]);
      } else {
        faces[kept++] = faces[j];
      }
    }
    faces.resize(kept);
    groups.add(group.data(), static_cast<int>(group.size()));
  }
  for (std::size_t j = begin; j < faces.size(); ++j) groups.add(&faces[j], 1);
}

// Reference faces of a score profile, and candidate partners per face. A
// face's profile is its scores against 64 reference faces; faces of one
// person score alike against any third face, so their profiles correlate
// even when neither is a reference. The 10 faces with the most correlated
// profiles are the candidates the comparator checks.
constexpr int kReferences = 64;
constexpr int kCandidates = 10;

int findRoot(std::vector<int>& parent, int face) {
  while (parent[face] != face) face = parent[face] = parent[parent[face]];
  return face;
}

// Links faces whose profiles correlate and whose score passes kJoinScore,
// and returns the faces (ascending) that were linked to none.
std::vector<int> groupByProfiles(Scorer& score, int n, Groups& groups) {
  const int refs = kReferences;
  std::vector<float> profiles(static_cast<std::size_t>(n) * refs);
  for (int i = 0; i < n; ++i) {
    float* p = &profiles[static_cast<std::size_t>(i) * refs];
    double mean = 0.0;
    for (int r = 0; r < refs; ++r) {
      // References spread evenly over the canonical order.
      p[r] = static_cast<float>(score(i, static_cast<int>(static_cast<int64_t>(r) * n / refs)));
      mean += p[r];
    }
    mean /= refs;
    double norm = 0.0;
    for (int r = 0; r < refs; ++r) {
      p[r] = static_cast<float>(p[r] - mean);
      norm += static_cast<double>(p[r]) * p[r];
    }
    // A flat profile (every reference scores alike) correlates with nothing.
    const float scale = norm > 0.0 ? static_cast<float>(1.0 / std::sqrt(norm)) : 0.0f;
    for (int r = 0; r < refs; ++r) p[r] *= scale;
  }

  // Candidate pairs (i < j), best correlation first; ties to the lower index.
  std::vector<std::pair<int, int>> pairs;
  pairs.reserve(static_cast<std::size_t>(n) * kCandidates);
  std::vector<std::pair<float, int>> best;
  for (int i = 0; i < n; ++i) {
    const float* pi = &profiles[static_cast<std::size_t>(i) * refs];
    best.clear();
    for (int j = 0; j < n; ++j) {
      if (j == i) continue;
      const float* pj = &profiles[static_cast<std::size_t>(j) * refs];
      float dot = 0.0f;
      for (int r = 0; r < refs; ++r) dot += pi[r] * pj[r];
      const std::pair<float, int> entry(-dot, j);
      if (best.size() == kCandidates && !(entry < best.back())) continue;
      best.insert(std::upper_bound(best.begin(), best.end(), entry), entry);
      if (best.size() > kCandidates) best.pop_back();
    }
    for (const auto& entry : best)
      pairs.emplace_back(std::min(i, entry.second), std::max(i, entry.second));
  }
  std::sort(pairs.begin(), pairs.end());
  pairs.erase(std::unique(pairs.begin(), pairs.end()), pairs.end());

  std::vector<int> parent(n);
  for (int i = 0; i < n; ++i) parent[i] = i;
  for (const auto& [a, b] : pairs) {
    if (score(a, b) < kJoinScore) continue;
    const int ra = findRoot(parent, a), rb = findRoot(parent, b);
    parent[std::max(ra, rb)] = std::min(ra, rb);  // the lowest face is the root
  }
  // Groups in order of their lowest face, members ascending: a counting sort
  // by root.
  std::vector<int> size(n, 0), start(n + 1, 0), members(n);
  for (int i = 0; i < n; ++i) ++size[findRoot(parent, i)];
  for (int i = 0; i < n; ++i) start[i + 1] = start[i] + size[i];
  std::vector<int> fill(start.begin(), start.end() - 1);
  for (int i = 0; i < n; ++i) members[fill[parent[i]]++] = i;
  std::vector<int> alone;
  for (int root = 0; root < n; ++root) {
    if (size[root] == 1) alone.push_back(root);
    if (size[root] >= 2) groups.add(&members[start[root]], size[root]);
  }
  return alone;
}

Groups groupFaces(Scorer& score, int n) {
  // At most n^2 / 8 comparator calls. Profiles cost n * (kReferences +
  // kCandidates) and pay off only where that is well inside the budget.
  const int64_t budget = static_cast<int64_t>(n) * n / 8;
  Groups groups;
  std::vector<int> rest(n);
  for (int i = 0; i < n; ++i) rest[i] = i;
  if (static_cast<int64_t>(n) * (kReferences + kCandidates) <= budget / 2) {
    rest = groupByProfiles(score, n, groups);
  }
  groupAroundPivots(score, std::move(rest), budget, groups);
  return groups;
}

// Run sizes along the members of `groups`, reordered so that groups of two
// or more come first and faces alone last. A group never straddles two runs
// unless it is larger than a run; a run holds at most kGroupsPerRun groups.
std::vector<int> packRuns(Groups& groups, int runSize) {
  std::vector<int> members, runSizes;
  members.reserve(groups.members.size());
  std::vector<int> alone;
  int fill = 0, groupsInRun = 0;
  std::size_t offset = 0;
  for (int size : groups.sizes) {
    if (size == 1) {
      alone.push_back(groups.members[offset++]);
      continue;
    }
    for (int left = size; left > 0;) {
      const int chunk = std::min(left, runSize);
      if (fill > 0 && (fill + chunk > runSize || groupsInRun == kGroupsPerRun)) {
        runSizes.push_back(fill);
        fill = groupsInRun = 0;
      }
      members.insert(members.end(), groups.members.begin() + offset,
                     groups.members.begin() + offset + chunk);
      offset += chunk;
      left -= chunk;
      fill += chunk;
      ++groupsInRun;
    }
  }
  if (fill > 0) runSizes.push_back(fill);
  for (std::size_t i = 0; i < alone.size(); i += runSize) {
    runSizes.push_back(static_cast<int>(std::min<std::size_t>(runSize, alone.size() - i)));
  }
  members.insert(members.end(), alone.begin(), alone.end());
  groups.members = std::move(members);
  return runSizes;
}

}  // namespace

int planFaceRuns(FaceRecognition* handle, const float* features, int count, int runSize,
                 RunPlan* plan) {
  return detail::guardPlanningCall("planFaceRuns", -1, [&] {
    const char* why = nullptr;
    if (handle == nullptr) {
      why = "null handle";
    } else if (features == nullptr) {
      why = "null features";
    } else if (plan == nullptr) {
      why = "null plan";
    } else if (count < 1) {
      why = "count below 1";
    } else if (runSize < 2) {
      why = "run size below 2";
    } else if (!xvkfc::isHandleReady(handle)) {
      why = "handle not initialised";
    }
    if (why != nullptr) {
      detail::logDebug("planFaceRuns: rejected: %s", why);
      return -1;
    }

    // Canonical order: ascending float values, so the plan does not depend on
    // the input order. Bit-identical rows tie and are interchangeable.
    std::vector<int> canonical(count);
    for (int i = 0; i < count; ++i) canonical[i] = i;
    std::stable_sort(canonical.begin(), canonical.end(), [&](int a, int b) {
      return rowLess(features + static_cast<std::size_t>(a) * kDim,
                     features + static_cast<std::size_t>(b) * kDim);
    });
    // The comparator may write through its pointers, so it sees a copy.
    std::vector<float> rows(static_cast<std::size_t>(count) * kDim);
    for (int i = 0; i < count; ++i) {
      std::memcpy(&rows[static_cast<std::size_t>(i) * kDim],
                  features + static_cast<std::size_t>(canonical[i]) * kDim, kDim * sizeof(float));
    }

    Scorer score(*handle, rows);
    Groups groups = groupFaces(score, count);
    std::vector<int> runSizes = packRuns(groups, runSize);

    RunPlan result;
    result.order.resize(count);
    for (int i = 0; i < count; ++i) result.order[i] = canonical[groups.members[i]];
    result.runSizes = std::move(runSizes);
    result.comparisons = score.calls;
    *plan = std::move(result);
    return static_cast<int>(plan->runSizes.size());
  });
}
