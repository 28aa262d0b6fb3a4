// xvkfc recommend: which existing cluster each new face belongs to.
#include <algorithm>
#include <cstdio>
#include <memory>

#include "tools/commands/commands.h"
#include "tools/formats/cluster_json.h"
#include "tools/formats/id_list.h"
#include "tools/run/engine_session.h"
#include "tools/tool_error.h"

namespace tool {
namespace {

struct RecommendOptions {
  std::string features, ids, clusters;
};

int runRecommend(const RecommendOptions& options, const GlobalOptions& global) {
  const FeatureMatrix features = readFeatures(options.features);
  const std::vector<int> faceIds = readFaceIds(options.ids, features.rows());
  // A cluster without a representative (featureDim 0) cannot be compared,
  // and the library answers -1 for a whole list that holds one: leave it out.
  std::vector<ClusterRecord> clusters = readClusters(options.clusters);
  clusters.erase(
      std::remove_if(clusters.begin(), clusters.end(),
                     [](const ClusterRecord& c) { return c.id >= 0 && c.feature.empty(); }),
      clusters.end());
  EngineSession session(global.models);
  for (int i = 0; i < features.rows(); ++i) {
    // The library returns only the cluster; the best score beside it shows
    // how close a -1 came to the cut-off of 921.
    int best = -1;
    for (const ClusterRecord& cluster : clusters) {
      if (cluster.id >= 0 && !cluster.feature.empty())
        best = std::max(best, session.compare(cluster.feature.data(), features.row(i)));
    }
    std::printf("%d\t%d\t%d\n", faceIds[i], session.recommend(clusters, features.row(i)), best);
  }
  return kExitOk;
}

}  // namespace

Command addRecommendCommand(CLI::App& app, const GlobalOptions& global) {
  auto options = std::make_shared<RecommendOptions>();
  CLI::App* sub = app.add_subcommand("recommend", "The existing cluster each new face fits best");
  sub->footer(
      "For each feature in FEATURES, asks the library (itf_xvk_recommendCluster) which cluster of "
      "--clusters fits best. Prints one line per feature: face id, cluster id (-1 when no cluster "
      "scores 921 or more of 1023) and the best score of any cluster (0..1023; -1 when the file "
      "has no cluster), separated by tabs.");
  addFeaturesArgument(sub, "FEATURES", options->features);
  sub->add_option("--clusters", options->clusters,
                  "Clusters file (JSON) written by 'xvkfc cluster'")
      ->type_name("FILE")
      ->required();
  addFaceIdsOption(sub, options->ids);
  return {sub, [options, &global] { return runRecommend(*options, global); }};
}

}  // namespace tool
