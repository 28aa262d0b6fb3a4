// Merging the run's clusters with the clusters the application already holds.
#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <map>
#include <set>
#include <vector>

#include "FRecogInterface.h"
#include "clustering/face_clustering_system.h"
#include "clustering/thresholds.h"
#include "platform/alloc_guard.h"

namespace {

using ClusterMap = std::map<int, Cluster>;

// (score + 1) * 0.5 of the comparator's score, as in the kernel.
float mappedSimilarity(void* recognizer, float* a, float* b) {
  const float score = static_cast<CFRecogInterface*>(recognizer)->RunComparison(a, b);
  return (score + 1.0f) * 0.5f;
}

// A cluster whose representative could not be computed for lack of memory
// has no feature to compare; it matches nothing rather than being read past.
bool hasFeature(const Cluster& cluster) {
  return static_cast<int>(cluster.feature.size()) >= detail::kFeatureDim;
}

bool contains(const std::vector<int>& list, int value) {
  return std::find(list.begin(), list.end(), value) != list.end();
}

// The run's outliers (face rows) join every application cluster whose
// feature they match, when there are application clusters; those that joined
// nothing go to the bucket -1, unless the length test below leaves them out.
// False when memory ran out (logged).
bool placeOutliers(FaceClusteringSystem& engine, ClusterMap& merged, const Vec<int>& outliers,
                   bool offerToApplication) {
  // A face counts once in `matched` for every cluster it joins.
  std::vector<int> matched;
  if (offerToApplication &&
      !detail::runOrLogAllocFailure("malloc fail!!!(add survive in mergeInitialCluster", [&] {
        float faceFeature[detail::kFeatureDim];
        for (int f : outliers) {
          std::memcpy(faceFeature, engine.featureMats[0][f].data(), sizeof(faceFeature));
          for (auto& candidate : merged) {
            Cluster& cluster = candidate.second;
            if (candidate.first == -1 || !hasFeature(cluster)) continue;
            if (mappedSimilarity(engine.recognizer, faceFeature, cluster.feature.data()) >=
                detail::kOutlierJoinSimilarity) {
              cluster.members.push_back(engine.faces[f].faceId);
              matched.push_back(f);
            }
          }
        }
      })) {
    return false;
  }
  // Lengths only: faces that joined several clusters can make `matched` as
  // long as the outlier list and so leave unmatched faces out entirely.
  if (outliers.size() <= matched.size()) return true;
  return detail::runOrLogAllocFailure("malloc fail!!!(merge outlier in mergeInitialCluster", [&] {
    Cluster& bucket = merged[-1];
    bucket.id = -1;
    for (int f : outliers) {
      if (!contains(matched, f)) bucket.members.push_back(engine.faces[f].faceId);
    }
  });
}

// One ordered pass over the pairs of clusters other than the bucket: a
// close pair takes the lower of the two ids as they stand, so a lowered id
// travels on to later pairs. Deliberately not a transitive union.
void linkCloseClusters(void* recognizer, ClusterMap& merged) {
  for (auto a = merged.begin(); a != merged.end(); ++a) {
    if (a->first == -1 || !hasFeature(a->second)) continue;
    for (auto b = std::next(a); b != merged.end(); ++b) {
      if (b->first == -1 || !hasFeature(b->second)) continue;
      if (mappedSimilarity(recognizer, a->second.feature.data(), b->second.feature.data()) >=
          detail::kClusterLinkSimilarity) {
        if (a->second.id < b->second.id) {
          b->second.id = a->second.id;
        } else {
          a->second.id = b->second.id;
        }
      }
    }
  }
}

// Unites the entries whose id is `t` into the first of them in key order,
// which keeps the members of all, in order, and for t >= 0 with two or more
// entries the medoid of their features. Returns that survivor, or null when
// memory ran out (logged).
Cluster* uniteGroup(FaceClusteringSystem& engine, ClusterMap& merged, int t) {
  Cluster* survivor = nullptr;
  int count = 0;
  if (!detail::runOrLogAllocFailure("malloc fail!!!(merge members in mergeInitialCluster", [&] {
        for (auto& entry : merged) {
          Cluster& cluster = entry.second;
          if (cluster.id != t) continue;
          ++count;
          if (survivor == nullptr) {
            survivor = &cluster;
          } else {
            survivor->members.insert(survivor->members.end(), cluster.members.begin(),
                                     cluster.members.end());
          }
        }
      })) {
    return nullptr;
  }
  if (t < 0 || count < 2) return survivor;

  std::vector<float> groupFeatures;
  if (!detail::runOrLogAllocFailure("malloc fail!!!(update cFeature in mergeCluster)", [&] {
        groupFeatures.resize(static_cast<std::size_t>(count) * detail::kFeatureDim);
      })) {
    return nullptr;
  }
  Vec<int> repFaceIds;
  float* slot = groupFeatures.data();
  if (!detail::runOrLogAllocFailure("malloc fail!!!(update cFeature2 in mergeInitialCluster", [&] {
        for (const auto& entry : merged) {
          const Cluster& cluster = entry.second;
          if (cluster.id != t) continue;
          std::memcpy(slot, cluster.feature.data(), detail::kFeatureDim * sizeof(float));
          slot += detail::kFeatureDim;
          repFaceIds.push_back(cluster.repFaceId);
        }
      })) {
    return nullptr;
  }
  int repFaceId = 0;
  survivor->feature =
      engine.getClusterFeature(groupFeatures.data(), count, std::move(repFaceIds), &repFaceId);
  survivor->repFaceId = repFaceId;
  return survivor;
}

// The application's clusters as they are, into `merged`; a later duplicate
// id wins. Counts their faces into initialFaceCount and sets *maxId to the
// largest id (-1 for none). False when memory ran out (logged).
bool takeOverApplicationClusters(FaceClusteringSystem& engine,
                                 const std::vector<clusterinfo>& existing, ClusterMap& merged,
                                 int* maxId) {
  for (const clusterinfo& e : existing) {
    *maxId = std::max(*maxId, e.id);
    Cluster cl;
    cl.id = e.id;
    if (e.id >= 0) {
      cl.feature = e.feature;
      cl.repFaceId = e.repFaceId;
    } else {
      cl.repFaceId = -1;
    }
    engine.initialFaceCount += static_cast<int>(e.faceIds.size());
    if (!detail::runOrLogAllocFailure("malloc fail!!!(existing cluster in mergeCluster)", [&] {
          cl.members.assign(e.faceIds.begin(), e.faceIds.end());
        })) {
      return false;
    }
    merged[e.id] = cl;
  }
  return true;
}

// The run's clusters, numbered after the application's in key order, and
// the run's outliers (key -1, which comes first). The facade keeps maxId low
// enough for maxId + 1 + key to fit in an int. False when memory ran out
// placing the outliers (logged).
bool addRunClusters(FaceClusteringSystem& engine, ClusterMap& merged, int maxId,
                    bool offerOutliersToApplication) {
  for (const auto& entry : engine.clusters) {
    const int key = entry.first;
    const Vec<int> faceIndices = entry.second.members;
    if (key != -1) {
      const int newId = maxId + 1 + key;
      Cluster cl;
      cl.init(newId);
      engine.getClusterFeature(cl, faceIndices);
      merged[newId] = cl;
      continue;
    }
    if (!placeOutliers(engine, merged, faceIndices, offerOutliersToApplication)) return false;
  }
  return true;
}

// Links close clusters of `merged`, then unites each group into one cluster
// of engine.clusters (empty on entry), numbered 0, 1, 2, ... in id order,
// plus the bucket -1. Any failure leaves the unlinked clusters instead.
void uniteLinkedClusters(FaceClusteringSystem& engine, ClusterMap& merged) {
  const ClusterMap snapshot = merged;
  linkCloseClusters(engine.recognizer, merged);

  // The ids in use, walked in ascending order. A sorted set rather than one
  // flag per id from -1 up to the largest: application ids can be as large
  // as int allows, and the memory stays proportional to the cluster count.
  std::set<int> used;
  if (!detail::runOrLogAllocFailure("malloc fail!!!(cid assign in mergeCluster", [&] {
        for (const auto& entry : merged) used.insert(entry.second.id);
      })) {
    engine.clusters = snapshot;
    return;
  }

  int next = 0;
  for (int t : used) {
    Cluster* survivor = uniteGroup(engine, merged, t);
    if (survivor == nullptr) {
      engine.clusters = snapshot;
      return;
    }
    if (t == -1) {
      Cluster& bucket = engine.clusters[-1];
      bucket = *survivor;
      bucket.id = -1;
    } else {
      Cluster& written = engine.clusters[next];
      written = *survivor;
      written.id = next;
      ++next;
    }
  }
}

}  // namespace

void FaceClusteringSystem::mergeInitialCluster(std::vector<clusterinfo> existing) {
  if (clusters.empty()) return;

  ClusterMap merged;
  int maxId = -1;
  if (!takeOverApplicationClusters(*this, existing, merged, &maxId)) {
    clusters.clear();
    return;
  }
  if (!addRunClusters(*this, merged, maxId, !existing.empty())) {
    clusters = merged;
    return;
  }

  // The count is taken before groups are united below, and stays.
  clusterCount = static_cast<int>(merged.size());
  clusters.clear();
  if (existing.empty()) {
    clusters = merged;
    return;
  }
  uniteLinkedClusters(*this, merged);
}
