// xvkfc cluster: features from a file, optionally with the clusters of an
// earlier run, clustered and written as the next clusters file.
#include <algorithm>
#include <cstdio>
#include <memory>
#include <set>

#include "planning/run_plan.h"
#include "tools/commands/commands.h"
#include "tools/formats/assignments.h"
#include "tools/formats/cluster_json.h"
#include "tools/formats/id_list.h"
#include "tools/formats/labels.h"
#include "tools/formats/metrics_json.h"
#include "tools/formats/output_paths.h"
#include "tools/report/report.h"
#include "tools/run/batch_run.h"
#include "tools/run/cluster_summary.h"
#include "tools/run/planned_run.h"
#include "tools/tool_error.h"

namespace tool {
namespace {

struct ClusterOptions {
  std::string features, ids, existing, output, labels, report, assignments, metrics;
  int batchSize = 0;
  bool inOrder = false;
  int rounds = 0;
};

// Past this many faces one run is a poor way to cluster them: its time and
// memory grow with the square of its faces (the README's speed table: 0.9 s
// and 35 MiB at 2,000 faces, 32 s and 461 MiB at 10,000 on a workstation,
// several times that on a phone), and it still makes at most about 21
// clusters, so most of its faces stay unclustered.
constexpr int kLargestGoodRun = 2000;

// Notes on standard error for runs that will cluster poorly.
void noteRunSize(const ClusterOptions& options, int faces) {
  if (options.inOrder && options.batchSize == 0 && faces > kDefaultRunSize) {
    std::fprintf(stderr,
                 "xvkfc: note: --in-order without --batch-size runs all %d faces as one run; "
                 "give --batch-size N for runs of N faces in file order\n",
                 faces);
  }
  const int largestRun = std::min(
      faces, options.inOrder ? (options.batchSize > 0 ? options.batchSize : faces)
                             : (options.batchSize > 0 ? options.batchSize : kDefaultRunSize));
  if (largestRun > kLargestGoodRun) {
    std::fprintf(stderr,
                 "xvkfc: note: one run gets %d faces, more than the %d it clusters well: its "
                 "time and memory grow with the square of its faces and it makes at most about "
                 "21 clusters; planned runs of %d faces (no --in-order, no --batch-size) "
                 "cluster a gallery\n",
                 largestRun, kLargestGoodRun, kDefaultRunSize);
  }
}

// Where an output went, for the summary.
std::string placeOf(const std::string& path) {
  return isStandardOutput(path) ? "standard output" : path;
}

// Refuses option combinations that would silently give wrong results.
void checkOptions(const ClusterOptions& options) {
  // Without ids the new faces would be numbered 0..N-1, and those numbers
  // would be stored for good beside the faces of earlier runs.
  if (!options.existing.empty() && options.ids.empty()) {
    throw UsageError(
        "--existing needs --ids: the face ids of the new faces must be given, "
        "or they would be stored as 0..N-1");
  }
  if (options.batchSize == 1 && !options.inOrder) {
    throw UsageError(
        "--batch-size 1: planned runs take 2 faces or more (use --in-order for "
        "runs of one face)");
  }
  if (!options.metrics.empty() && options.labels.empty()) {
    throw UsageError("--metrics-json needs --labels: quality is measured against known labels");
  }
  checkOutputPaths({options.output, options.report, options.assignments, options.metrics},
                   {options.features, options.ids, options.existing, options.labels});
}

void rejectKnownFaces(const std::vector<int>& faceIds, const std::vector<ClusterRecord>& existing,
                      const ClusterOptions& options) {
  std::set<int> known;
  for (const ClusterRecord& cluster : existing)
    known.insert(cluster.faceIds.begin(), cluster.faceIds.end());
  for (int id : faceIds) {
    if (known.count(id)) {
      throw ToolError((options.ids.empty() ? options.features : options.ids) + ": face id " +
                      std::to_string(id) + " is already in the existing clusters of " +
                      options.existing);
    }
  }
}

int runCluster(const ClusterOptions& options, const GlobalOptions& global) {
  checkOptions(options);
  Progress progress(global.quiet, global.verbose);
  progress.begin("reading " + options.features);
  const FeatureMatrix features = readFeatures(options.features);
  const std::vector<int> faceIds = readFaceIds(options.ids, features.rows());
  std::vector<ClusterRecord> existing;
  if (!options.existing.empty()) existing = readClusters(options.existing);
  rejectKnownFaces(faceIds, existing, options);
  BatchPlan plan;
  plan.batchSize = options.batchSize;
  Labels labels;
  if (!options.labels.empty()) {
    labels = readLabels(options.labels, faceIds);
    plan.identities = labels.identities;
    // Quality over no face would read as a perfect score.
    std::set<int> gallery(faceIds.begin(), faceIds.end());
    for (const ClusterRecord& cluster : existing)
      gallery.insert(cluster.faceIds.begin(), cluster.faceIds.end());
    if (std::none_of(gallery.begin(), gallery.end(),
                     [&](int face) { return labels.identities.count(face) > 0; })) {
      throw ToolError(options.labels + ": none of its " + std::to_string(labels.identities.size()) +
                      " face ids is a face of this run or of --existing");
    }
  }
  progress.end(std::to_string(features.rows()) + " features");
  noteRunSize(options, features.rows());

  EngineSession session(global.models);
  std::vector<RunSummary> batches;
  plan.onBatch = [&](const RunSummary& summary) {
    batches.push_back(summary);
    progress.note(describe(summary));
  };
  // More faces than one run should take go in planned runs unless asked
  // for arrival order.
  const int runSize = options.batchSize > 0 ? options.batchSize : kDefaultRunSize;
  const bool planned = !options.inOrder && features.rows() > runSize;
  int plannedRuns = 0;
  std::vector<ClusterRecord> clusters;
  if (planned) {
    PlannedRunOptions plannedOptions;
    plannedOptions.runSize = runSize;
    plannedOptions.rounds = options.rounds;
    plannedOptions.identities = plan.identities;
    plannedOptions.onRound = [&](const RunSummary& summary, int runs) {
      batches.push_back(summary);
      progress.note(describeRound(summary, runs));
    };
    clusters =
        clusterPlanned(session, features, faceIds, existing, plannedOptions, progress, plannedRuns);
  } else {
    clusters = clusterInBatches(session, features, faceIds, std::move(existing), plan, progress);
  }

  writeClusters(options.output, clusters);
  if (!options.assignments.empty()) writeAssignments(options.assignments, clusters, faceIds);
  // Standard output holds an output file when one is "-"; the summary then
  // goes to standard error.
  FILE* const summary =
      anyStandardOutput({options.output, options.assignments, options.metrics, options.report})
          ? stderr
          : stdout;
  const RunSummary& last = batches.back();
  const ScopedQuality quality = measureScoped(clusters, faceIds, labels);
  const std::string how =
      planned ? std::to_string(plannedRuns) +
                    (plannedRuns == 1 ? " planned run (" : " planned runs (") +
                    std::to_string(batches.size()) + (batches.size() == 1 ? " round)" : " rounds)")
              : std::to_string(batches.size()) + (batches.size() == 1 ? " batch" : " batches");
  std::fprintf(summary, "%s",
               describeRun(features.rows(), how, last, clusters, !options.existing.empty(), quality)
                   .c_str());
  if (!options.metrics.empty()) {
    std::set<int> gallery;
    for (const ClusterRecord& cluster : clusters)
      gallery.insert(cluster.faceIds.begin(), cluster.faceIds.end());
    writeMetrics(options.metrics, quality.gallery ? "gallery" : "file", *quality.quality,
                 static_cast<int>(gallery.size()), last);
  }
  std::fprintf(summary, "clusters written to %s\n", placeOf(options.output).c_str());
  if (!options.assignments.empty()) {
    std::fprintf(summary, "assignments written to %s\n", placeOf(options.assignments).c_str());
  }
  if (!options.metrics.empty())
    std::fprintf(summary, "metrics written to %s\n", placeOf(options.metrics).c_str());

  if (!options.report.empty()) {
    ReportData report;
    report.title = "xvkfc cluster " + options.features;
    report.input =
        std::to_string(features.rows()) + " faces from " + options.features +
        (options.existing.empty() ? "" : ", merged into the clusters of " + options.existing) + ".";
    report.clusters = clusters;
    report.identities = labels.identities;
    report.batches = batches;
    report.rounds = planned;
    report.quality = quality.quality;
    writeBatchReport(options.report, std::move(report), session, features, faceIds, progress);
    std::fprintf(summary, "report written to %s\n", placeOf(options.report).c_str());
  }
  return kExitOk;
}

}  // namespace

Command addClusterCommand(CLI::App& app, const GlobalOptions& global) {
  auto options = std::make_shared<ClusterOptions>();
  CLI::App* sub =
      app.add_subcommand("cluster", "Cluster features from a file and write the clusters (JSON)");
  sub->footer(
      "Give the clusters file of an earlier run with --existing to add a new batch of faces to "
      "it, as a photo application does. More faces than one run takes (64, or --batch-size) are "
      "clustered in planned runs: faces that resemble each other run together, round after "
      "round; --in-order runs them in file order instead. An output named - goes to standard "
      "output (one of them; JSON, text assignments or HTML). Progress and notes go to standard "
      "error, the summary to standard output (to standard error when an output is -).");
  sub->add_option("FEATURES", options->features,
                  "Features: .npy (float32, shape N x 960) or raw little-endian float32 "
                  "(N x 960 values)")
      ->type_name("FILE")
      ->required();
  sub->add_option("-o,--output", options->output,
                  "Clusters file to write (JSON; - for standard output)")
      ->type_name("FILE")
      ->required();
  sub->add_option("--ids", options->ids,
                  "Face id of each feature: text (whitespace-separated integers) or .npy int32/"
                  "int64/uint32 (default: 0..N-1; required with --existing)")
      ->type_name("FILE");
  sub->add_option("--existing", options->existing,
                  "Clusters file of an earlier run: its clusters are the ones the application "
                  "already has")
      ->type_name("FILE");
  sub->add_option("--batch-size", options->batchSize,
                  "Faces per run. Without --in-order: the largest planned run (default 64; "
                  "a file of no more faces is one run). With --in-order: the file cut in file "
                  "order into runs of this many faces (default: all faces in one run)")
      ->check(nonNegative());
  sub->add_flag("--in-order", options->inOrder,
                "Run the faces in file order, --batch-size at a time, each run fed the previous "
                "result, instead of in planned runs of faces that resemble each other");
  sub->add_option("--rounds", options->rounds,
                  "Planned runs: rounds at most; each later round feeds the faces still "
                  "unclustered again (default 3)")
      ->check(positive());
  sub->add_option("--labels", options->labels,
                  "Known identities: one per feature (same formats as --ids), or lines of "
                  "FACE_ID LABEL pairs (.npy shape (N, 2)) that may cover the whole gallery: "
                  "prints pairwise and BCubed precision, recall and F-score")
      ->type_name("FILE");
  sub->add_option("--assignments", options->assignments,
                  "Write the cluster of every face of FEATURES, in input order (-1: "
                  "unclustered); with --existing only these new faces, not the earlier ones: "
                  ".npy int32 (N, 2) face id and cluster id, or text FACE_ID<TAB>CLUSTER_ID")
      ->type_name("FILE");
  sub->add_option("--metrics-json", options->metrics,
                  "Write the quality figures as JSON (needs --labels)")
      ->type_name("FILE");
  sub->add_option("--report", options->report,
                  "Write a self-contained HTML report: similarity heat map, cluster sizes, "
                  "cluster table")
      ->type_name("FILE");
  return {sub, [options, &global] { return runCluster(*options, global); }};
}

}  // namespace tool
