#include "tools/run/cluster_summary.h"

#include <set>

#include "tools/cluster_records.h"

namespace tool {

ScopedQuality measureScoped(const std::vector<ClusterRecord>& clusters,
                            const std::vector<int>& faceIds, const Labels& labels) {
  ScopedQuality scoped;
  if (labels.identities.empty()) return scoped;
  scoped.gallery = labels.keyedByFaceId;
  scoped.labels = static_cast<int>(labels.identities.size());
  std::vector<int> faces;
  if (scoped.gallery) {
    std::set<int> gallery;
    for (const ClusterRecord& cluster : clusters)
      gallery.insert(cluster.faceIds.begin(), cluster.faceIds.end());
    faces.assign(gallery.begin(), gallery.end());
  } else {
    faces = faceIds;
  }
  std::vector<int> measured, identities;
  for (int face : faces) {
    const auto it = labels.identities.find(face);
    if (it == labels.identities.end()) continue;
    measured.push_back(face);
    identities.push_back(it->second);
  }
  scoped.quality = evaluation::measureQuality(clusterOfFaces(clusters, measured), identities);
  return scoped;
}

std::string describeRun(int faces, const std::string& how, const RunSummary& last,
                        const std::vector<ClusterRecord>& clusters, bool intoExisting,
                        const ScopedQuality& quality) {
  std::set<int> gallery;
  for (const ClusterRecord& cluster : clusters)
    gallery.insert(cluster.faceIds.begin(), cluster.faceIds.end());
  std::string text =
      std::to_string(faces) + (intoExisting ? " new" : "") + " faces clustered in " + how;
  const std::string counts = std::to_string(last.clusters) + " clusters, " +
                             std::to_string(last.unclustered) + " unclustered faces\n";
  if (intoExisting) {
    text += "; the gallery (earlier runs and these) now holds " + std::to_string(gallery.size()) +
            " faces: " + counts;
  } else {
    text += ": " + counts;
  }
  if (quality.quality) {
    text += "quality over the " + std::to_string(quality.quality->faces) + " labelled faces of " +
            (quality.gallery ? "the gallery" : "this file");
    if (quality.quality->faces < quality.labels) {
      text += " (" + std::to_string(quality.quality->faces) + " of the " +
              std::to_string(quality.labels) + " labels match a face)";
    }
    text += ": " + describe(*quality.quality) + "\n";
  }
  return text;
}

}  // namespace tool
