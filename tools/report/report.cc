#include "tools/report/report.h"

#include <algorithm>
#include <cstdio>
#include <sstream>

#include "interface/handle_support.h"
#include "tools/formats/atomic_file.h"
#include "tools/formats/png_image.h"
#include "tools/report/charts.h"
#include "tools/report/cluster_doubts.h"

namespace tool {
namespace {

// The picture is drawn at least this many pixels wide when it has few faces.
constexpr int kHeatMapTargetPixels = 640;
constexpr int kHeatMapMaxScale = 12;
// Members listed per cluster row before the list is cut short.
constexpr size_t kMembersShown = 40;
// Unclustered faces with a close match listed at most.
constexpr size_t kCloseMatchesShown = 50;

const char kStyle[] = R"(
body { font-family: sans-serif; margin: 2em; color: #222; max-width: 1100px; }
h1 { font-size: 1.5em; } h2 { font-size: 1.2em; margin-top: 1.6em; }
table { border-collapse: collapse; margin: 0.5em 0; }
th, td { border: 1px solid #ccc; padding: 0.25em 0.6em; text-align: right; vertical-align: top; }
th { background: #f0f0f0; } .members { text-align: left; max-width: 40em; }
.note { color: #555; font-size: 0.9em; max-width: 60em; }
.legend { display: inline-block; width: 320px; height: 14px; vertical-align: middle;
  background: linear-gradient(to right, #440154, #3b528b, #21918c, #5ec962, #fde725); }
img.heat { image-rendering: pixelated; display: block; width: 100%; height: auto; }
.heatwrap { position: relative; width: 100%; outline: 1px solid #888; }
.heatwrap svg.overlay { position: absolute; left: 0; top: 0; width: 100%; height: 100%; }
svg.overlay rect { fill: transparent; stroke: #fff; stroke-opacity: 0.6; stroke-width: 1; }
svg.overlay rect.doubt { stroke: #ff2020; stroke-opacity: 1; stroke-width: 2.5; }
tr.doubt td { background: #fde8e8; }
)";

// "1 face", "2 faces".
std::string plural(size_t count, const std::string& noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

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

std::string qualityTable(const evaluation::Quality& quality) {
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

std::string batchTable(const std::vector<RunSummary>& batches, bool rounds) {
  std::ostringstream out;
  out << "<table><tr><th>" << (rounds ? "round" : "batch") << "</th><th>faces loaded</th><th>clusters</th><th>unclustered</th>"
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

std::string memberList(const ClusterRecord& cluster) {
  std::string members;
  for (size_t i = 0; i < std::min(cluster.faceIds.size(), kMembersShown); ++i) {
    members += (i ? " " : "") + std::to_string(cluster.faceIds[i]);
  }
  if (cluster.faceIds.size() > kMembersShown) {
    members += " &hellip; and " + std::to_string(cluster.faceIds.size() - kMembersShown) + " more";
  }
  return members;
}

// Clusters to doubt first: those of several identities, then those marked
// against the engine's levels, then the rest; by id within each group; the
// unclustered faces last.
std::string clusterTable(const ReportData& data) {
  const bool withIdentities = !data.identities.empty();
  std::map<int, ClusterFigures> figuresOf;
  for (const ClusterFigures& f : data.figures.clusters) figuresOf[f.id] = f;
  auto rank = [&](const ClusterRecord& cluster) {
    const auto it = figuresOf.find(cluster.id);
    if (cluster.id < 0) return 3;
    if (it == figuresOf.end()) return 2;
    return it->second.identities > 1 ? 0 : it->second.doubts.empty() ? 2 : 1;
  };
  std::vector<const ClusterRecord*> rows;
  for (const ClusterRecord& cluster : data.clusters) rows.push_back(&cluster);
  std::stable_sort(rows.begin(), rows.end(), [&](const ClusterRecord* a, const ClusterRecord* b) {
    return rank(*a) < rank(*b);
  });

  std::ostringstream out;
  out << "<p class=\"note\">Similarities are the engine's (0 to 1, a score of 1023 divided by "
         "1023). <em>lowest</em> and <em>mean</em>: over the pairs of members; <em>nearest</em>: "
         "the highest similarity of a member to a face of another cluster, among the "
      << kNearestClusters << " clusters whose representative faces are nearest its own. Rows in red are worth "
         "a look: a pair or the mean inside below "
      << fixed(xvkfc::kSplitSimilarity, 2) << " (the level below which the engine splits), a "
      << "face of another cluster at " << fixed(xvkfc::kMergeBestPairSimilarity, 2)
      << " or more (the level at which it joins small clusters)"
      << (withIdentities ? ", or members of more than one known identity (listed first)" : "")
      << ".</p>\n";
  out << "<table><tr><th>cluster</th><th>faces</th><th>representative face</th><th>lowest</th>"
         "<th>mean</th><th>nearest (cluster)</th>";
  if (withIdentities) out << "<th>main identity</th>";
  out << "<th class=\"members\">why marked</th><th class=\"members\">member face ids</th></tr>\n";
  for (const ClusterRecord* cluster : rows) {
    const auto it = figuresOf.find(cluster->id);
    const bool known = it != figuresOf.end();
    const bool doubted = known && !it->second.doubts.empty();
    out << "<tr" << (doubted ? " class=\"doubt\"" : "") << "><td>"
        << (cluster->id < 0 ? "unclustered" : std::to_string(cluster->id)) << "</td><td>"
        << cluster->faceIds.size() << "</td><td>"
        << (cluster->id < 0 ? "" : std::to_string(cluster->repFaceId)) << "</td>";
    if (known) {
      const ClusterFigures& f = it->second;
      const bool single = f.faces < 2;
      out << "<td>" << (single ? "" : fixed(f.lowestInside, 3)) << "</td><td>"
          << (single ? "" : fixed(f.meanInside, 3)) << "</td><td>"
          << (f.nearestCluster < 0
                  ? ""
                  : fixed(f.bestOther, 3) + " (" + std::to_string(f.nearestCluster) + ")")
          << "</td>";
    } else {
      out << "<td></td><td></td><td></td>";
    }
    if (withIdentities) {
      out << "<td>" << (cluster->id < 0 ? "" : mainIdentity(*cluster, data.identities)) << "</td>";
    }
    std::string why;
    if (known) {
      for (const std::string& doubt : it->second.doubts) why += (why.empty() ? "" : "; ") + doubt;
    }
    out << "<td class=\"members\">" << why << "</td><td class=\"members\">" << memberList(*cluster)
        << "</td></tr>\n";
  }
  out << "</table>\n";
  return out.str();
}

// Unclustered faces that a clustered face resembles at the small-cluster
// join level or more: candidates for a manual merge.
std::string closeMatchList(const std::vector<CloseMatch>& matches) {
  std::ostringstream out;
  out << "<h2>Unclustered faces with a close match</h2>\n<p class=\"note\">Unclustered faces "
         "whose most similar clustered face (among the members of the "
      << kNearestClusters << " clusters whose representatives are nearest) reaches "
      << fixed(xvkfc::kMergeBestPairSimilarity, 2) << ": " << plural(matches.size(), "face")
      << ", the closest first"
      << (matches.size() > kCloseMatchesShown
              ? " (the first " + std::to_string(kCloseMatchesShown) + " listed)"
              : "")
      << ".</p>\n";
  if (matches.empty()) return out.str();
  out << "<table><tr><th>face</th><th>most similar clustered face</th><th>its cluster</th>"
         "<th>similarity</th></tr>\n";
  for (size_t i = 0; i < std::min(matches.size(), kCloseMatchesShown); ++i) {
    const CloseMatch& m = matches[i];
    out << "<tr><td>" << m.faceId << "</td><td>" << m.matchFaceId << "</td><td>" << m.clusterId
        << "</td><td>" << fixed(m.similarity, 3) << "</td></tr>\n";
  }
  out << "</table>\n";
  return out.str();
}

// Pairs of unclustered faces that match each other: the faces worth another run.
std::string pairList(const GalleryFigures& figures) {
  std::ostringstream out;
  out << "<h2>Unclustered faces that match each other</h2>\n<p class=\"note\">Pairs of "
         "unclustered faces (sought among faces near the same reference face) at "
      << fixed(xvkfc::kMergeBestPairSimilarity, 2) << " or more: "
      << plural(static_cast<size_t>(figures.pairsFound), "pair") << ", the closest first"
      << (figures.pairsFound > static_cast<long>(figures.pairs.size())
              ? " (the closest " + std::to_string(figures.pairs.size()) + " listed)"
              : "")
      << ". Run them again together to let the library cluster them.</p>\n";
  if (figures.pairs.empty()) return out.str();
  out << "<table class=\"pairs\"><tr><th>face</th><th>face</th><th>similarity</th></tr>\n";
  for (const FacePair& pair : figures.pairs) {
    out << "<tr><td>" << pair.faceA << "</td><td>" << pair.faceB << "</td><td>"
        << fixed(pair.similarity, 3) << "</td></tr>\n";
  }
  out << "</table>\n";
  return out.str();
}

// Cluster outlines over the picture, in units of faces along the order (the
// picture samples them evenly): doubtful clusters in red, a tooltip for
// every block, and the id written in when the block has room for it.
std::string heatMapOverlay(const ReportData& data) {
  const int n = static_cast<int>(data.order.rows.size());
  // Faces per pixel of a picture about kPictureFaces pixels wide.
  const double unit = std::max(1.0, n / double(kPictureFaces));
  std::ostringstream out;
  out << "<svg class=\"overlay\" viewBox=\"0 0 " << n << " " << n
      << "\" preserveAspectRatio=\"none\" font-family=\"sans-serif\">\n";
  int start = 0;
  for (size_t b = 0; b < data.order.blocks.size(); ++b) {
    const int extent = data.order.blocks[b];
    const bool doubted = b < data.figures.clusters.size() && !data.figures.clusters[b].doubts.empty();
    const std::string id = std::to_string(data.order.blockIds[b]);
    out << "<rect" << (doubted ? " class=\"doubt\"" : "") << " x=\"" << start << "\" y=\""
        << start << "\" width=\"" << extent << "\" height=\"" << extent
        << "\" vector-effect=\"non-scaling-stroke\" pointer-events=\"all\"><title>cluster " << id
        << ": " << plural(extent, "face") << (doubted ? ", marked" : "") << "</title></rect>\n";
    const double fontSize = 12 * unit;
    if (extent >= fontSize * (id.size() * 0.7 + 0.5)) {
      out << "<text x=\"" << start + unit << "\" y=\"" << start + fontSize << "\" font-size=\""
          << fontSize << "\" fill=\"#fff\" pointer-events=\"none\">" << id << "</text>\n";
    }
    start += extent;
  }
  out << "</svg>";
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
  const int n = static_cast<int>(data.order.rows.size());
  const int shown = static_cast<int>(data.view.shown.size());
  const int scale = std::clamp(kHeatMapTargetPixels / std::max(shown, 1), 1, kHeatMapMaxScale);
  const char* round = data.rounds ? "rounds of planned runs" : "batches";

  std::ostringstream out;
  out << "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>"
      << escapeHtml(data.title) << "</title>\n<style>" << kStyle << "</style>\n</head>\n<body>\n";
  out << "<h1>" << escapeHtml(data.title) << "</h1>\n";
  out << "<p>" << escapeHtml(data.input) << "</p>\n";
  out << "<h2>Result: every face in the clusters after the run</h2>\n<table>\n"
      << "<tr><th>clusters</th><td>" << clusters << "</td></tr>\n"
      << "<tr><th>unclustered faces</th><td>" << unclustered << "</td></tr>\n"
      << "<tr><th>face entries in the result</th><td>" << faces << "</td></tr>\n"
      << "<tr><th>" << round << "</th><td>" << data.batches.size() << "</td></tr>\n</table>\n";
  out << "<p class=\"note\">A cluster is one person as the library sees it. Unclustered faces "
         "matched nobody closely enough; the library keeps them apart and offers them to the "
         "existing clusters again in later runs. Face entries count every face id the result "
         "lists, earlier runs' faces included; a face listed twice counts twice.</p>\n";
  if (data.quality) {
    out << "<h2>Quality against the known identities</h2>\n" << qualityTable(*data.quality);
  }
  out << "<h2>Clusters</h2>\n" << clusterTable(data);
  if (!data.batches.empty()) {
    out << "<h2>" << (data.rounds ? "Rounds" : "Batches") << "</h2>\n"
        << batchTable(data.batches, data.rounds);
  }

  out << "<h2>Similarity matrix</h2>\n<p class=\"note\">Pairs of faces scored by the "
         "library's comparison (0 to 1023; unrelated faces score about 511, the same face 1023), "
         "faces ordered by cluster, each cluster outlined with its id (point at a block for its id "
         "and size), clusters worth a look outlined in red, unclustered faces last.";
  if (shown < n) {
    out << " The picture shows " << shown << " of the " << n
        << " faces, evenly spaced along that order, one pixel each.";
  }
  out << "</p>\n<p>" << kHeatFloor << " or less <span class=\"legend\"></span> 1023</p>\n";
  const RgbImage heat = heatMap(data.view.similarities, shown, {}, scale);
  out << "<div class=\"heatwrap\">"
      << imageTag(heat, "heat", "similarity matrix of " + std::to_string(shown) + " faces")
      << heatMapOverlay(data) << "</div>\n";
  out << closeMatchList(data.figures.closeMatches);
  out << pairList(data.figures);

  out << "<h2>Cluster sizes</h2>\n<p class=\"note\">Number of clusters with each number of "
         "faces; unclustered faces are not counted.</p>\n<p>"
      << sizeHistogramSvg(clustersOfSize) << "</p>\n";
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
  const RowScore score = [&](int a, int b) { return session.compare(features.row(a), features.row(b)); };
  progress.begin("report: comparing faces");
  data.order = orderByCluster(data.clusters, faceIds);
  data.view = sampleSimilarities(data.order, kPictureFaces, score);
  data.figures = measureGallery(data.order, faceIds, data.identities,
                                xvkfc::kMergeBestPairSimilarity, kPairsShown, score);
  const size_t pictured = data.view.shown.size();
  progress.end(std::to_string(data.figures.comparisons + pictured * (pictured + 1) / 2) +
               " comparisons");
  writeReport(path, data);
}

}  // namespace tool
