#include "planning/run_plan.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include "interface/handle_support.h"
#include "platform/call_boundary.h"
#include "planning/plan_with_links.h"
#include "platform/log.h"

namespace {

constexpr int kDim = xvkfc::kFeatureDim;

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

// Faces (canonical positions) in groups: members group after group.
struct Groups {
  std::vector<int> members;
  std::vector<int> sizes;
};

int findRoot(std::vector<int>& parent, int face) {
  while (parent[face] != face) face = parent[face] = parent[parent[face]];
  return face;
}

// Step 4: the faces joined by links, in groups in the order of their lowest
// face, members ascending; faces with no link are groups of one.
Groups groupLinkedFaces(const detail::FaceLinks& links, int n) {
  std::vector<int> parent(n);
  for (int i = 0; i < n; ++i) parent[i] = i;
  for (int a = 0; a < n; ++a) {
    for (int k = links.start[a]; k < links.start[a + 1]; ++k) {
      const int b = links.to[k];
      if (b >= n) continue;  // a probe
      const int ra = findRoot(parent, a), rb = findRoot(parent, b);
      parent[std::max(ra, rb)] = std::min(ra, rb);  // the lowest face is the root
    }
  }
  std::vector<int> size(n, 0), start(n + 1, 0);
  for (int i = 0; i < n; ++i) ++size[findRoot(parent, i)];
  for (int i = 0; i < n; ++i) start[i + 1] = start[i] + size[i];
  Groups groups;
  groups.members.resize(n);
  std::vector<int> fill(start.begin(), start.end() - 1);
  for (int i = 0; i < n; ++i) groups.members[fill[parent[i]]++] = i;
  for (int root = 0; root < n; ++root)
    if (size[root] > 0) groups.sizes.push_back(size[root]);
  return groups;
}

// Step 5: run sizes along the members of `groups`, reordered so that groups of two
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

// The links of canonical positions as links of input indices (`canonical`
// maps the former to the latter; probe nodes keep their numbers).
detail::FaceLinks inInputOrder(const detail::FaceLinks& links, const std::vector<int>& canonical) {
  const int faces = static_cast<int>(canonical.size());
  const int nodes = static_cast<int>(links.start.size()) - 1;
  auto input = [&](int node) { return node < faces ? canonical[node] : node; };
  std::vector<int> from(nodes);  // the canonical node of each input node
  for (int node = 0; node < nodes; ++node) from[input(node)] = node;
  detail::FaceLinks out;
  out.comparisons = links.comparisons;
  out.start.assign(nodes + 1, 0);
  out.to.reserve(links.to.size());
  for (int node = 0; node < nodes; ++node) {
    const int c = from[node];
    for (int k = links.start[c]; k < links.start[c + 1]; ++k) out.to.push_back(input(links.to[k]));
    std::sort(out.to.begin() + out.start[node], out.to.end());
    out.start[node + 1] = static_cast<int>(out.to.size());
  }
  return out;
}

}  // namespace

namespace detail {

int planWithLinks(FaceRecognition& handle, float* rows, int count, int runSize,
                  const std::vector<float*>& probeRows, RunPlan* plan, FaceLinks* links) {
  // Canonical order: ascending float values, so the plan does not depend on
  // the input order. Bit-identical rows tie and are interchangeable.
  std::vector<int> canonical(count);
  for (int i = 0; i < count; ++i) canonical[i] = i;
  std::stable_sort(canonical.begin(), canonical.end(), [&](int a, int b) {
    return rowLess(rows + static_cast<std::size_t>(a) * kDim, rows + static_cast<std::size_t>(b) * kDim);
  });
  std::vector<float*> faceRows(count);
  for (int i = 0; i < count; ++i) faceRows[i] = rows + static_cast<std::size_t>(canonical[i]) * kDim;

  FaceLinks found = linkFaces(handle, faceRows, probeRows);
  Groups groups = groupLinkedFaces(found, count);
  std::vector<int> runSizes = packRuns(groups, runSize);

  RunPlan result;
  result.order.resize(count);
  for (int i = 0; i < count; ++i) result.order[i] = canonical[groups.members[i]];
  result.runSizes = std::move(runSizes);
  result.comparisons = found.comparisons;
  if (links != nullptr) *links = inInputOrder(found, canonical);
  *plan = std::move(result);
  return static_cast<int>(plan->runSizes.size());
}

}  // namespace detail

int planFaceRuns(FaceRecognition* handle, const float* features, int count, int runSize,
                 RunPlan* plan) {
  return detail::guardPublicCall("planFaceRuns", -1, [&] {
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
    // The comparator may write through its pointers, so it sees a copy.
    std::vector<float> rows(features, features + static_cast<std::size_t>(count) * kDim);
    return detail::planWithLinks(*handle, rows.data(), count, runSize, {}, plan, nullptr);
  });
}
