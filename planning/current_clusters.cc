#include "planning/current_clusters.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "interface/handle_support.h"

namespace detail {

namespace {

// A malloc'd copy of `n` values at `from` (n may be 0); null when malloc fails.
template <typename T>
T* mallocCopy(const T* from, std::size_t n) {
  T* copy = static_cast<T*>(std::malloc(sizeof(T) * (n > 0 ? n : 1)));
  if (copy != nullptr && n > 0) std::memcpy(copy, from, sizeof(T) * n);
  return copy;
}

}  // namespace

CurrentClusters::CurrentClusters(const int* faceIds, int faces, const itf_xvk_clusterinfo* existing)
    : faces_(faces), clusterOf_(faces, -1) {
  for (int row = 0; row < faces; ++row) nodeOfFace_[faceIds[row]] = row;
  const int count = existing == nullptr ? 0 : existing->count;
  for (int i = 0; i < count; ++i) {
    const itf_xvk_clusteritem& item = existing->items[i];
    if (item.clusterId < 0) {
      bucket_.insert(bucket_.end(), item.faceIds, item.faceIds + item.faceCount);
      continue;
    }
    const int slot = static_cast<int>(clusters_.size());
    clusters_.emplace_back();
    setCluster(slot, item);
    // Only a cluster with a representative can match anything.
    if (clusters_[slot].feature.empty()) continue;
    const int node = faces_ + static_cast<int>(probeSlot_.size());
    probeSlot_.push_back(slot);
    clusterOf_.push_back(slot);
    for (int k = 0; k < item.faceCount; ++k) nodeOfFace_[item.faceIds[k]] = node;
  }
}

void CurrentClusters::setCluster(int slot, const itf_xvk_clusteritem& item) {
  Cluster& c = clusters_[slot];
  c.faceIds.assign(item.faceIds, item.faceIds + item.faceCount);
  if (item.featureDim == xvkfc::kFeatureDim && item.feature != nullptr) {
    c.feature.assign(item.feature, item.feature + item.featureDim);
  } else {
    c.feature.clear();
  }
  c.repFaceId = item.repFaceId;
  c.alive = true;
}

std::vector<float*> CurrentClusters::probeRows() {
  std::vector<float*> rows;
  for (int slot : probeSlot_) rows.push_back(clusters_[slot].feature.data());
  return rows;
}

void CurrentClusters::addMatches(const std::vector<int>& rows, const FaceLinks& links,
                                 const std::vector<int>& nodeOf, std::vector<int>& slots) const {
  for (int row : rows) {
    for (int k = links.start[row]; k < links.start[row + 1]; ++k) {
      const int linked = links.to[k];
      const int node = nodeOf.empty() || linked >= static_cast<int>(nodeOf.size()) ? linked : nodeOf[linked];
      if (node < static_cast<int>(clusterOf_.size()) && clusterOf_[node] >= 0)
        slots.push_back(clusterOf_[node]);
    }
  }
  std::sort(slots.begin(), slots.end());
  slots.erase(std::unique(slots.begin(), slots.end()), slots.end());
}

itf_xvk_clusterinfo CurrentClusters::feedList(const std::vector<int>& slots,
                                              std::vector<itf_xvk_clusteritem>& items) {
  items.clear();
  for (int slot : slots) {
    Cluster& c = clusters_[slot];
    const int dim = c.feature.empty() ? 0 : xvkfc::kFeatureDim;
    items.push_back({static_cast<int>(items.size()), static_cast<int>(c.faceIds.size()),
                     c.faceIds.data(), dim, dim > 0 ? c.feature.data() : nullptr, c.repFaceId});
  }
  return itf_xvk_clusterinfo{static_cast<int>(items.size()), items.data()};
}

void CurrentClusters::stitch(const itf_xvk_clusterinfo& result, const std::vector<int>& fedSlots) {
  auto slotOfFace = [&](int id) {
    const auto found = nodeOfFace_.find(id);
    return found == nodeOfFace_.end() ? -1 : clusterOf_[found->second];
  };
  // The slot each result cluster takes, decided before any slot changes.
  std::vector<int> taken(result.count, -1);
  std::vector<char> claimed(fedSlots.size(), 0);
  for (int i = 0; i < result.count; ++i) {
    const itf_xvk_clusteritem& item = result.items[i];
    if (item.clusterId < 0) continue;
    int best = -1;  // index into fedSlots
    for (int k = 0; k < item.faceCount; ++k) {
      const int slot = slotOfFace(item.faceIds[k]);
      const auto at = std::lower_bound(fedSlots.begin(), fedSlots.end(), slot);
      if (at == fedSlots.end() || *at != slot) continue;
      const int index = static_cast<int>(at - fedSlots.begin());
      if (!claimed[index] && (best < 0 || index < best)) best = index;
    }
    if (best >= 0) {
      claimed[best] = 1;
      taken[i] = fedSlots[best];
    }
  }
  for (int slot : fedSlots) clusters_[slot].alive = false;
  for (int i = 0; i < result.count; ++i) {
    const itf_xvk_clusteritem& item = result.items[i];
    int slot = -1;
    if (item.clusterId >= 0) {
      slot = taken[i];
      if (slot < 0) {
        slot = static_cast<int>(clusters_.size());
        clusters_.emplace_back();
      }
      setCluster(slot, item);
    } else {
      bucket_.insert(bucket_.end(), item.faceIds, item.faceIds + item.faceCount);
    }
    for (int k = 0; k < item.faceCount; ++k) {
      const auto found = nodeOfFace_.find(item.faceIds[k]);
      if (found != nodeOfFace_.end()) clusterOf_[found->second] = slot;
    }
  }
}

void CurrentClusters::takeFromBucket(const std::vector<int>& sortedIds) {
  bucket_.erase(std::remove_if(bucket_.begin(), bucket_.end(),
                               [&](int id) {
                                 return std::binary_search(sortedIds.begin(), sortedIds.end(), id);
                               }),
                bucket_.end());
}

itf_xvk_clusterinfo CurrentClusters::view(const std::vector<int>& alsoUnclustered,
                                          std::vector<itf_xvk_clusteritem>& items,
                                          std::vector<int>& bucket) {
  bucket = bucket_;
  bucket.insert(bucket.end(), alsoUnclustered.begin(), alsoUnclustered.end());
  items.assign(1, {-1, static_cast<int>(bucket.size()), bucket.data(), 0, nullptr, -1});
  for (Cluster& c : clusters_) {
    if (!c.alive) continue;
    const int dim = c.feature.empty() ? 0 : xvkfc::kFeatureDim;
    items.push_back({static_cast<int>(items.size()) - 1, static_cast<int>(c.faceIds.size()),
                     c.faceIds.data(), dim, dim > 0 ? c.feature.data() : nullptr, c.repFaceId});
  }
  return itf_xvk_clusterinfo{static_cast<int>(items.size()), items.data()};
}

bool CurrentClusters::handOut(const std::vector<int>& alsoUnclustered, itf_xvk_clusterinfo* out) {
  std::vector<itf_xvk_clusteritem> items;
  std::vector<int> bucket;
  const itf_xvk_clusterinfo list = view(alsoUnclustered, items, bucket);
  auto* copy = static_cast<itf_xvk_clusteritem*>(std::calloc(list.count, sizeof(itf_xvk_clusteritem)));
  bool copied = copy != nullptr;
  for (int i = 0; copied && i < list.count; ++i) {
    const itf_xvk_clusteritem& item = list.items[i];
    copy[i] = item;
    copy[i].faceIds = mallocCopy(item.faceIds, static_cast<std::size_t>(item.faceCount));
    copy[i].feature = item.featureDim > 0 ? mallocCopy(item.feature, static_cast<std::size_t>(item.featureDim)) : nullptr;
    copied = copy[i].faceIds != nullptr && (item.featureDim == 0 || copy[i].feature != nullptr);
  }
  if (!copied) {
    for (int i = 0; copy != nullptr && i < list.count; ++i) {
      std::free(copy[i].faceIds);
      std::free(copy[i].feature);
    }
    std::free(copy);
    return false;
  }
  *out = itf_xvk_clusterinfo{list.count, copy};
  return true;
}

}  // namespace detail
