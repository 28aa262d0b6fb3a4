// xvkfc compare: the library's similarity score of features.
#include <cstdio>
#include <memory>

#include "tools/commands.h"
#include "tools/engine_session.h"
#include "tools/tool_error.h"

namespace tool {
namespace {

struct CompareOptions {
  std::string first, second;
};

int runCompare(const CompareOptions& options, const GlobalOptions& global) {
  const FeatureMatrix a = readFeatures(options.first);
  const FeatureMatrix b = options.second.empty() ? a : readFeatures(options.second);
  EngineSession session(global.models);
  for (int i = 0; i < a.rows(); ++i) {
    for (int j = 0; j < b.rows(); ++j) {
      std::printf("%s%d", j ? "\t" : "", session.compare(a.row(i), b.row(j)));
    }
    std::printf("\n");
  }
  return kExitOk;
}

}  // namespace

Command addCompareCommand(CLI::App& app, const GlobalOptions& global) {
  auto options = std::make_shared<CompareOptions>();
  CLI::App* sub = app.add_subcommand("compare", "Similarity scores (0..1023) of features");
  sub->footer(
      "Scores features against each other (itf_xvk_compareFeature): 1023 for the same feature, "
      "about 511 for unrelated faces, 0 for opposite ones. Prints one line per feature of A with "
      "its tab-separated scores against every feature of B (B defaults to A).");
  addFeaturesArgument(sub, "A", options->first);
  sub->add_option("B", options->second, "Features to compare with (default: A itself)")
      ->type_name("FILE");
  return {sub, [options, &global] { return runCompare(*options, global); }};
}

}  // namespace tool
