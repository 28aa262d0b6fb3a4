// The HTML report: one self-contained page (pictures inlined as PNG data
// URIs, no scripts, no network) that a browser opens from disk.
#ifndef XVKFC_TOOLS_REPORT_REPORT_H_
#define XVKFC_TOOLS_REPORT_REPORT_H_

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "evaluation/quality.h"
#include "tools/formats/cluster_json.h"
#include "tools/formats/feature_file.h"
#include "tools/report/cluster_doubts.h"
#include "tools/report/similarity_view.h"
#include "tools/run/engine_session.h"
#include "tools/run/progress.h"
#include "tools/run/run_summary.h"

namespace tool {

struct ReportData {
  std::string title;                           // "xvkfc demo", "xvkfc cluster features.npy"
  std::string input;                           // one sentence on where the faces came from
  std::vector<ClusterRecord> clusters;         // the final clusters
  std::map<int, int> identities;               // face id -> identity; empty when unknown
  std::optional<evaluation::Quality> quality;  // final quality, when identities are known
  std::vector<RunSummary> batches;              // one per batch, or per round of planned runs
  bool rounds = false;                         // batches holds rounds of planned runs
  ClusterOrder order;                          // every face with features, by cluster
  SimilarityView view;                         // the sample the picture shows
  GalleryFigures figures;                      // of `order`
};

// Faces the similarity picture shows at most: about one per pixel of the page.
inline constexpr int kPictureFaces = 1000;
// Pairs of unclustered faces listed at most.
inline constexpr size_t kPairsShown = 200;

// The page for `data`.
std::string renderReport(const ReportData& data);

// Writes the page without ever leaving a partial file.
void writeReport(const std::string& path, const ReportData& data);

// Writes the report of a run clustered batch after batch. `data` comes with
// its title, input, clusters, identities and batches; the quality, unless
// given, is the last batch's; every face of `features` (under `faceIds`) is
// measured through `session`, and at most kPictureFaces of them pictured.
// REQUIRES: !data.batches.empty().
void writeBatchReport(const std::string& path, ReportData data, EngineSession& session,
                      const FeatureMatrix& features, const std::vector<int>& faceIds,
                      Progress& progress);

// `text` with &, <, >, " and ' replaced by character references.
std::string escapeHtml(const std::string& text);

}  // namespace tool

#endif  // XVKFC_TOOLS_REPORT_REPORT_H_
