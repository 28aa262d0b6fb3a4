#include "tools/report.h"

#include <algorithm>
#include <cstdio>
#include <sstream>

#include "tools/atomic_file.h"
#include "tools/charts.h"
#include "tools/png_image.h"

namespace tool {
namespace {

// The heat map is drawn at least this many pixels wide when it has few faces.
constexpr int kHeatMapTargetPixels = 640;
constexpr int kHeatMapMaxScale = 12;
// A run's heat map shows at most this many faces; more are thinned out,
// since the report compares every shown pair.
constexpr int kReportMaxFaces = 600;
// Members listed per cluster row before the list is cut short.
constexpr size_t kMembersShown = 40;

const char kStyle[] = R"(
body { font-family: sans-serif; margin: 2em; color: #222; max-width: 1100px; }
h1 { font-size: 1.5em; } h2 { font-size: 1.2em; margin-top: 1.6em; }
table { border-collapse: collapse; margin: 0.5em 0; }
th, td { border: 1px solid #ccc; padding: 0.25em 0.6em; text-align: right; vertical-align: top; }
th { background: #f0f0f0; } .members { text-align: left; max-width: 40em; }
.note { color: #555; font-size: 0.9em; max-width: 60em; }
.legend { display: inline-block; width: 320px; height: 14px; vertical-align: middle;
  background: linear-gradient(to right, #440154, #3b528b, #21918c, #5ec962, #fde725); }
img.heat { image-rendering: pixelated; border: 1px solid #888; }
)";

std::string fixed(double value, int digits) {
  char text[32];
  std::snprintf(text, sizeof text, "%.*f", digits, value);
  return text;
}

std::string imageTag(const RgbImage& image, const std::string& cssClass, const std::string& alt) {
  return "<img class=\"" + cssClass + "\" width=\"" + std::to_string(image.width()) +
         "\" height=\"" + std::to_string(image.height()) + "\" alt=\"" + escapeHtml(alt) +
         "\" src=\"data:image/png;base64," + base64(encodePng(image)) + "\">";
}

std::string qualityTable(const Quality& quality) {
  std::ostringstream out;
  out << "<table><tr><th>measure</th><th>precision</th><th>recall</th><th>F-score</th></tr>\n";
  out << "<tr><td>pairwise</td><td>" << fixed(quality.pairwise.precision, 3) << "</td><td>"
      << fixed(quality.pairwise.recall, 3) << "</td><td>" << fixed(quality.pairwise.f, 3)
      << "</td></tr>\n";
  out << "<tr><td>BCubed</td><td>" << fixed(quality.bcubed.precision, 3) << "</td><td>"
      << fixed(quality.bcubed.recall, 3) << "</td><td>" << fixed(quality.bcubed.f, 3)
      << "</td></tr>\n</table>\n";
  out << "<p class=\"note\">Measured over " << quality.faces
      << " faces with a known identity. Pairwise precision: of the pairs of faces put in one "
         "cluster, the share that are the same person; pairwise recall: of the pairs that are "
         "the same person, the share put in one cluster. BCubed averages the same two ratios per "
         "face over its own cluster and identity. Unclustered faces count as clusters of "
         "one.</p>\n";
  return out.str();
}

std::string batchTable(const std::vector<RunSummary>& batches) {
  std::ostringstream out;
  out << "<table><tr><th>batch</th><th>faces loaded</th><th>clusters</th><th>unclustered</th>"
         "<th>seconds</th><th>pairwise F</th><th>BCubed F</th></tr>\n";
  for (const RunSummary& batch : batches) {
    out << "<tr><td>" << batch.batch << "</td><td>" << batch.facesLoaded << "</td><td>"
        << batch.clusters << "</td><td>" << batch.unclustered << "</td><td>"
        << fixed(batch.seconds, 3) << "</td><td>"
        << (batch.quality ? fixed(batch.quality->pairwise.f, 3) : "") << "</td><td>"
        << (batch.quality ? fixed(batch.quality->bcubed.f, 3) : "") << "</td></tr>\n";
  }
  out << "</table>\n";
  return out.str();
}

// "7 (5 of 6)": the identity most members share, and how many do.
std::string mainIdentity(const ClusterRecord& cluster, const std::map<int, int>& identities) {
  std::map<int, int> votes;
  int known = 0;
  for (int face : cluster.faceIds) {
    const auto it = identities.find(face);
    if (it == identities.end()) continue;
    ++votes[it->second];
    ++known;
  }
  if (known == 0) return "";
  const auto best = std::max_element(
      votes.begin(), votes.end(), [](const auto& a, const auto& b) { return a.second < b.second; });
  return std::to_string(best->first) + " (" + std::to_string(best->second) + " of " +
         std::to_string(known) + ")";
}

std::string clusterTable(const ReportData& data) {
  const bool withIdentities = !data.identities.empty();
  std::ostringstream out;
  out << "<table><tr><th>cluster</th><th>faces</th><th>representative face</th>";
  if (withIdentities) out << "<th>main identity</th>";
  out << "<th class=\"members\">member face ids</th></tr>\n";
  for (const ClusterRecord& cluster : data.clusters) {
    std::string members;
    for (size_t i = 0; i < std::min(cluster.faceIds.size(), kMembersShown); ++i) {
      members += (i ? " " : "") + std::to_string(cluster.faceIds[i]);
    }
    if (cluster.faceIds.size() > kMembersShown) {
      members +=
          " &hellip; and " + std::to_string(cluster.faceIds.size() - kMembersShown) + " more";
    }
    out << "<tr><td>" << (cluster.id < 0 ? "unclustered" : std::to_string(cluster.id))
        << "</td><td>" << cluster.faceIds.size() << "</td><td>"
        << (cluster.id < 0 ? "" : std::to_string(cluster.repFaceId)) << "</td>";
    if (withIdentities)
      out << "<td>" << (cluster.id < 0 ? "" : mainIdentity(cluster, data.identities)) << "</td>";
    out << "<td class=\"members\">" << members << "</td></tr>\n";
  }
  out << "</table>\n";
  return out.str();
}

}  // namespace

std::string escapeHtml(const std::string& text) {
  std::string out;
  for (char c : text) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      case '\'':
        out += "&#39;";
        break;
      default:
        out += c;
    }
  }
  return out;
}

std::string renderReport(const ReportData& data) {
  int clusters = 0, unclustered = 0, faces = 0;
  std::map<int, int> clustersOfSize;
  for (const ClusterRecord& cluster : data.clusters) {
    faces += static_cast<int>(cluster.faceIds.size());
    if (cluster.id < 0) {
      unclustered += static_cast<int>(cluster.faceIds.size());
    } else {
      ++clusters;
      ++clustersOfSize[static_cast<int>(cluster.faceIds.size())];
    }
  }
  const SimilarityView& view = data.view;
  const int shown = static_cast<int>(view.faceIds.size());
  const int scale = std::clamp(kHeatMapTargetPixels / std::max(shown, 1), 1, kHeatMapMaxScale);

  std::ostringstream out;
  out << "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>"
      << escapeHtml(data.title) << "</title>\n<style>" << kStyle << "</style>\n</head>\n<body>\n";
  out << "<h1>" << escapeHtml(data.title) << "</h1>\n";
  out << "<p>" << escapeHtml(data.input) << "</p>\n";
  out << "<h2>Result</h2>\n<table>\n"
      << "<tr><th>clusters</th><td>" << clusters << "</td></tr>\n"
      << "<tr><th>unclustered faces</th><td>" << unclustered << "</td></tr>\n"
      << "<tr><th>face entries in the result</th><td>" << faces << "</td></tr>\n"
      << "<tr><th>batches</th><td>" << data.batches.size() << "</td></tr>\n</table>\n";
  out << "<p class=\"note\">A cluster is one person as the library sees it. Unclustered faces "
         "matched nobody closely enough; the library keeps them apart and offers them to the "
         "existing clusters again in later runs.</p>\n";
  if (data.quality) {
    out << "<h2>Quality against the known identities</h2>\n" << qualityTable(*data.quality);
  }
  if (!data.batches.empty()) out << "<h2>Batches</h2>\n" << batchTable(data.batches);

  out << "<h2>Similarity matrix</h2>\n<p class=\"note\">Every pair of faces scored by the "
         "library's comparison (0 to 1023; unrelated faces score about 511, the same face 1023), "
         "faces ordered by cluster, each cluster outlined in red, unclustered faces last.";
  if (shown < view.facesWithFeatures) {
    out << " Showing " << shown << " of " << view.facesWithFeatures << " faces (every "
        << (view.facesWithFeatures + shown - 1) / std::max(shown, 1) << "th in cluster order).";
  }
  out << "</p>\n<p>" << kHeatFloor << " or less <span class=\"legend\"></span> 1023</p>\n";
  out << "<p>"
      << imageTag(heatMap(view.similarities, shown, view.order.blocks, scale), "heat",
                  "similarity matrix of " + std::to_string(shown) + " faces")
      << "</p>\n";

  out << "<h2>Cluster sizes</h2>\n<p class=\"note\">Number of clusters (above each bar) with "
         "each number of faces (below it); unclustered faces are not counted.</p>\n<p>"
      << imageTag(sizeHistogram(clustersOfSize), "histogram", "histogram of cluster sizes")
      << "</p>\n";

  out << "<h2>Clusters</h2>\n" << clusterTable(data);
  out << "</body>\n</html>\n";
  return out.str();
}

void writeReport(const std::string& path, const ReportData& data) {
  writeFileAtomically(path, renderReport(data));
}

void writeBatchReport(const std::string& path, ReportData data, EngineSession& session,
                      const FeatureMatrix& features, const std::vector<int>& faceIds,
                      Progress& progress) {
  if (!data.quality) data.quality = data.batches.back().quality;
  data.view =
      buildSimilarityView(session, features, faceIds, data.clusters, kReportMaxFaces, progress);
  writeReport(path, data);
}

}  // namespace tool
