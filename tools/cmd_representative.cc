// xvkfc representative: the feature the library picks to stand for a set.
#include <cstdio>
#include <cstring>
#include <memory>

#include "tools/commands.h"
#include "tools/engine_session.h"
#include "tools/tool_error.h"

namespace tool {
namespace {

struct RepresentativeOptions {
  std::string features, ids, output;
};

int runRepresentative(const RepresentativeOptions& options, const GlobalOptions& global) {
  const FeatureMatrix features = readFeatures(options.features);
  const std::vector<int> faceIds = readFaceIds(options.ids, features.rows());
  EngineSession session(global.models);
  const std::vector<float> representative = session.representative(features);
  // The library returns a copy of one member's feature; name that member.
  int row = -1;
  for (int i = 0; i < features.rows() && row < 0; ++i) {
    if (std::memcmp(features.row(i), representative.data(), kFeatureDim * sizeof(float)) == 0)
      row = i;
  }
  if (row >= 0) {
    std::printf("representative: row %d, face id %d\n", row, faceIds[row]);
  } else {
    std::printf("representative: not one of the input rows\n");
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
      "FEATURES: the face most similar on average to the others. Prints its row and face id.");
  addFeaturesArgument(sub, "FEATURES", options->features);
  addFaceIdsOption(sub, options->ids);
  sub->add_option("-o,--output", options->output,
                  "Write the representative feature here (.npy or raw by name)")
      ->type_name("FILE");
  return {sub, [options, &global] { return runRepresentative(*options, global); }};
}

}  // namespace tool
