// xvkfc representative: the feature the library picks to stand for a set.
#include <cstdio>
#include <cstring>
#include <memory>
#include <set>

#include "tools/commands/commands.h"
#include "tools/formats/cluster_json.h"
#include "tools/formats/id_list.h"
#include "tools/formats/output_paths.h"
#include "tools/run/engine_session.h"
#include "tools/tool_error.h"

namespace tool {
namespace {

struct RepresentativeOptions {
  std::string features, ids, output, clusters;
  int cluster = -1;
};

// The rows of `features` whose face ids are members of cluster `id` of the
// clusters file, in file order.
std::vector<int> rowsOfCluster(const RepresentativeOptions& options,
                               const std::vector<int>& faceIds) {
  for (const ClusterRecord& cluster : readClusters(options.clusters)) {
    if (cluster.id != options.cluster) continue;
    const std::set<int> members(cluster.faceIds.begin(), cluster.faceIds.end());
    std::vector<int> rows;
    for (size_t i = 0; i < faceIds.size(); ++i)
      if (members.count(faceIds[i])) rows.push_back(static_cast<int>(i));
    if (rows.empty()) {
      throw ToolError(options.features + ": holds none of the " + std::to_string(members.size()) +
                      " faces of cluster " + std::to_string(options.cluster) +
                      " (give their face ids with --ids)");
    }
    if (rows.size() < members.size()) {
      std::fprintf(stderr, "xvkfc: note: %zu of the %zu faces of cluster %d are in %s\n",
                   rows.size(), members.size(), options.cluster, options.features.c_str());
    }
    return rows;
  }
  throw ToolError(options.clusters + ": has no cluster " + std::to_string(options.cluster));
}

int runRepresentative(const RepresentativeOptions& options, const GlobalOptions& global) {
  if (options.clusters.empty() != (options.cluster < 0)) {
    throw UsageError("--clusters and --cluster go together (a cluster id of 0 or more)");
  }
  refuseStandardOutput(options.output, "-o", "a feature is binary, not for standard output");
  checkOutputPaths({options.output}, {options.features, options.ids, options.clusters});
  const FeatureMatrix all = readFeatures(options.features);
  const std::vector<int> faceIds = readFaceIds(options.ids, all.rows());
  std::vector<int> rows;
  if (options.clusters.empty()) {
    for (int i = 0; i < all.rows(); ++i) rows.push_back(i);
  } else {
    rows = rowsOfCluster(options, faceIds);
  }
  FeatureMatrix features;
  for (int row : rows) features.appendRow(all.row(row));

  EngineSession session(global.models);
  const std::vector<float> representative = session.representative(features);
  // The library returns a copy of one member's feature; name that member.
  int row = -1;
  for (size_t i = 0; i < rows.size() && row < 0; ++i) {
    if (std::memcmp(features.row(static_cast<int>(i)), representative.data(),
                    kFeatureDim * sizeof(float)) == 0)
      row = rows[i];
  }
  if (row >= 0) {
    std::printf("%d\t%d\n", row, faceIds[row]);
  } else {
    std::fprintf(stderr, "xvkfc: note: the representative is not one of the input rows\n");
    std::printf("-1\t-1\n");
  }
  if (!options.output.empty()) {
    FeatureMatrix out;
    out.values = representative;
    writeFeatures(options.output, out);
  }
  return kExitOk;
}

}  // namespace

Command addRepresentativeCommand(CLI::App& app, const GlobalOptions& global) {
  auto options = std::make_shared<RepresentativeOptions>();
  CLI::App* sub =
      app.add_subcommand("representative", "The feature that stands for a set of features");
  sub->footer(
      "Asks the library (itf_xvk_getClusterFeature) for the representative of the features in "
      "FEATURES: the face most similar on average to the others. Prints its row (0-based, in "
      "FEATURES) and face id, separated by a tab. With --clusters and --cluster, only the "
      "features of that stored cluster's faces take part.");
  addFeaturesArgument(sub, "FEATURES", options->features);
  addFaceIdsOption(sub, options->ids);
  sub->add_option(
         "-o,--output", options->output,
         "Write the representative feature here (raw float32 for *.f32 and *.raw, NumPy otherwise)")
      ->type_name("FILE");
  sub->add_option("--clusters", options->clusters, "Clusters file (JSON) of 'xvkfc cluster'")
      ->type_name("FILE");
  sub->add_option("--cluster", options->cluster,
                  "Id of the cluster of --clusters whose representative to pick")
      ->type_name("ID")
      ->check(nonNegative());
  return {sub, [options, &global] { return runRepresentative(*options, global); }};
}

}  // namespace tool
