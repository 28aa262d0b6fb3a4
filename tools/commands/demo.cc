// xvkfc demo: a synthetic gallery clustered batch after batch, measured
// against its known identities.
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <memory>

#include "evaluation/synthetic_gallery.h"
#include "tools/commands/commands.h"
#include "tools/formats/atomic_file.h"
#include "tools/formats/cluster_json.h"
#include "tools/formats/labels.h"
#include "tools/formats/output_paths.h"
#include "tools/report/report.h"
#include "tools/run/batch_run.h"
#include "tools/run/planned_run.h"
#include "tools/tool_error.h"

namespace tool {
namespace {

struct DemoOptions {
  evaluation::GalleryOptions gallery;
  int batches = 4;
  std::string output, report, saveGallery;
};

// "1 face", "2 faces"; "1 person", "2 people".
std::string count(int n, const std::string& one, const std::string& many = "") {
  return std::to_string(n) + " " + (n == 1 ? one : many.empty() ? one + "s" : many);
}

std::string integersText(const std::vector<int>& values) {
  std::string text;
  for (int value : values) text += std::to_string(value) + "\n";
  return text;
}

void saveGallery(const std::string& folder, const FeatureMatrix& features,
                 const evaluation::Gallery& gallery) {
  if (mkdir(folder.c_str(), 0777) != 0 && errno != EEXIST) {
    throw ToolError(folder + ": cannot create the folder");
  }
  writeFeatures(folder + "/features.npy", features);
  writeFileAtomically(folder + "/face_ids.txt", integersText(gallery.faceIds));
  writeFileAtomically(folder + "/labels.txt", integersText(gallery.identities));
}

// The same gallery in planned runs of the same size, beside the batches in
// arrival order: what the order of the faces does to the quality.
void printSideBySide(EngineSession& session, const FeatureMatrix& features,
                     const evaluation::Gallery& gallery, int runSize, const RunSummary& inOrder,
                     Progress& progress) {
  PlannedRunOptions options;
  options.runSize = runSize;
  options.identities = identityOfFaces(gallery.faceIds, gallery.identities, "the gallery");
  RunSummary planned;
  options.onRound = [&](const RunSummary& summary, int) { planned = summary; };
  int runs = 0;
  clusterPlanned(session, features, gallery.faceIds, {}, options, progress, runs);
  std::printf("Side by side, runs of up to %d faces:\n", runSize);
  std::printf("  in arrival order: %3d clusters, %4d unclustered; %s\n", inOrder.clusters,
              inOrder.unclustered, describe(*inOrder.quality).c_str());
  std::printf("  planned runs:     %3d clusters, %4d unclustered; %s (%d runs)\n", planned.clusters,
              planned.unclustered, describe(*planned.quality).c_str(), runs);
}

int runDemo(const DemoOptions& options, const GlobalOptions& global) {
  const evaluation::GalleryOptions& g = options.gallery;
  if (g.minFaces > g.maxFaces) throw UsageError("--min-faces must not exceed --max-faces");
  // The gallery folder is created, so only its parent must exist.
  const std::string galleryProbe =
      options.saveGallery.empty() ? "" : options.saveGallery + "/features.npy";
  struct stat folder;
  // Standard output is the demo's own story.
  refuseStandardOutput(options.output, "-o", "standard output holds the demo's summary");
  refuseStandardOutput(options.report, "--report", "standard output holds the demo's summary");
  checkOutputPaths({options.output, options.report,
                    galleryProbe.empty() || stat(options.saveGallery.c_str(), &folder) == 0
                        ? galleryProbe
                        : options.saveGallery});
  Progress progress(global.quiet, global.verbose);
  progress.begin("making the synthetic gallery");
  evaluation::Gallery gallery = evaluation::makeGallery(g);
  const FeatureMatrix features{std::move(gallery.features)};
  progress.end();
  const int faces = features.rows();
  const int batchSize = (faces + options.batches - 1) / options.batches;
  std::printf(
      "Synthetic gallery (seed %u): %s with %s each (%d of them look-alikes), "
      "%s, %s: %s, clustered in %s of up to %d.\n",
      g.seed, count(g.people, "person", "people").c_str(),
      (g.minFaces == g.maxFaces ? count(g.minFaces, "face")
                                : std::to_string(g.minFaces) + " to " + count(g.maxFaces, "face"))
          .c_str(),
      std::min(g.lookAlikes, g.people - 1), count(g.loneFaces, "lone face").c_str(),
      count(g.duplicates, "duplicate").c_str(), count(faces, "face").c_str(),
      count(options.batches, "batch", "batches").c_str(), batchSize);
  std::fflush(stdout);
  if (!options.saveGallery.empty()) saveGallery(options.saveGallery, features, gallery);

  BatchPlan plan;
  plan.batchSize = batchSize;
  plan.identities = identityOfFaces(gallery.faceIds, gallery.identities, "the gallery");
  std::vector<RunSummary> batches;
  plan.onBatch = [&](const RunSummary& summary) {
    batches.push_back(summary);
    std::printf("%s\n", describe(summary).c_str());
    std::fflush(stdout);
  };
  EngineSession session(global.models);
  const std::vector<ClusterRecord> clusters =
      clusterInBatches(session, features, gallery.faceIds, {}, plan, progress);

  const RunSummary& last = batches.back();
  double seconds = 0.0;
  for (const RunSummary& batch : batches) seconds += batch.seconds;
  std::printf(
      "Result: %d clusters for %d people and %d lone faces, %d unclustered faces, %.3f s "
      "in all.\nQuality: %s\n",
      last.clusters, g.people, g.loneFaces, last.unclustered, seconds,
      describe(*last.quality).c_str());
  printSideBySide(session, features, gallery, batchSize, last, progress);
  if (!options.output.empty()) {
    writeClusters(options.output, clusters);
    std::printf("Clusters written to %s\n", options.output.c_str());
  }
  if (!options.saveGallery.empty()) {
    std::printf("Gallery written to %s (features.npy, face_ids.txt, labels.txt)\n",
                options.saveGallery.c_str());
  }
  if (!options.report.empty()) {
    ReportData report;
    report.title = "xvkfc demo";
    char input[300];
    std::snprintf(input, sizeof input,
                  "A synthetic gallery from seed %u: %s of %s and %s (with %s), clustered in %s.",
                  g.seed, count(faces, "face").c_str(), count(g.people, "person", "people").c_str(),
                  count(g.loneFaces, "lone face").c_str(), count(g.duplicates, "duplicate").c_str(),
                  count(options.batches, "batch", "batches").c_str());
    report.input = input;
    report.clusters = clusters;
    report.identities = plan.identities;
    report.batches = batches;
    writeBatchReport(options.report, std::move(report), session, features, gallery.faceIds,
                     progress);
    std::printf("Report written to %s\n", options.report.c_str());
  }
  return kExitOk;
}

}  // namespace

Command addDemoCommand(CLI::App& app, const GlobalOptions& global) {
  auto options = std::make_shared<DemoOptions>();
  CLI::App* sub =
      app.add_subcommand("demo", "Cluster a synthetic gallery batch after batch, with quality");
  sub->footer(
      "Makes a synthetic gallery with known identities (the same for a given seed, on every "
      "machine), clusters it batch after batch as a photo application does, and prints per batch "
      "the faces, clusters, unclustered faces, time and quality.");
  evaluation::GalleryOptions& g = options->gallery;
  sub->add_option("--seed", g.seed, "Seed of the gallery")->capture_default_str();
  // A count with its default shown and the range it must lie in.
  auto addCount = [sub](const char* name, int& count, const char* help, int low, int high) {
    sub->add_option(name, count, help)->capture_default_str()->check(CLI::Range(low, high));
  };
  addCount("--people", g.people, "People with several faces", 1, 10000);
  addCount("--min-faces", g.minFaces, "Fewest faces per person", 1, 1000);
  addCount("--max-faces", g.maxFaces, "Most faces per person", 1, 1000);
  addCount("--look-alikes", g.lookAlikes, "People who resemble another person", 0, 10000);
  addCount("--lone", g.loneFaces, "People with a single face", 0, 10000);
  addCount("--duplicates", g.duplicates, "Exact copies of faces under new face ids", 0, 10000);
  addCount("--batches", options->batches, "Clustering runs the gallery is split into", 1, 1000);
  sub->add_option("-o,--output", options->output, "Also write the final clusters file (JSON)")
      ->type_name("FILE");
  sub->add_option("--report", options->report, "Write a self-contained HTML report")
      ->type_name("FILE");
  sub->add_option("--save-gallery", options->saveGallery,
                  "Write the gallery to this folder as features.npy, face_ids.txt and labels.txt, "
                  "for 'xvkfc cluster --labels'")
      ->type_name("DIR");
  return {sub, [options, &global] { return runDemo(*options, global); }};
}

}  // namespace tool
