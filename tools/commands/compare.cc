// xvkfc compare: the library's similarity score of features.
#include <cstdio>
#include <memory>

#include "tools/commands/commands.h"
#include "tools/formats/atomic_file.h"
#include "tools/formats/output_paths.h"
#include "tools/formats/score_matrix.h"
#include "tools/run/engine_session.h"
#include "tools/tool_error.h"

namespace tool {
namespace {

struct CompareOptions {
  std::string first, second, output;
};

int runCompare(const CompareOptions& options, const GlobalOptions& global) {
  checkOutputPaths({options.output}, {options.first, options.second});
  const FeatureMatrix a = readFeatures(options.first);
  const FeatureMatrix b = options.second.empty() ? a : readFeatures(options.second);
  EngineSession session(global.models);
  ScoreMatrix scores{a.rows(), b.rows(), {}};
  for (int i = 0; i < a.rows(); ++i) {
    for (int j = 0; j < b.rows(); ++j) scores.values.push_back(session.compare(a.row(i), b.row(j)));
  }
  if (options.output.empty() || isStandardOutput(options.output)) {
    std::fputs(encodeScores("-", scores).c_str(), stdout);
  } else {
    writeFileAtomically(options.output, encodeScores(options.output, scores));
    std::printf("%dx%d scores written to %s\n", scores.rows, scores.columns,
                options.output.c_str());
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
  sub->add_option("-o,--output", options->output,
                  "Write the scores to this file instead: .npy int32 of shape (rows of A, rows "
                  "of B), or tab-separated text (- is standard output, as without -o)")
      ->type_name("FILE");
  return {sub, [options, &global] { return runCompare(*options, global); }};
}

}  // namespace tool
