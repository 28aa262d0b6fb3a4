#include "tools/formats/metrics_json.h"

#include <nlohmann/json.hpp>

#include "tools/formats/atomic_file.h"

namespace tool {
namespace {

nlohmann::json ratios(const evaluation::PrecisionRecall& measure) {
  return {{"precision", measure.precision}, {"recall", measure.recall}, {"f", measure.f}};
}

}  // namespace

std::string metricsToJson(const std::string& scope, const evaluation::Quality& quality,
                          const RunSummary& last) {
  nlohmann::json document;
  document["scope"] = scope;
  document["faces"] = quality.faces;
  document["clusters"] = last.clusters;
  document["unclustered"] = last.unclustered;
  document["pairwise"] = ratios(quality.pairwise);
  document["bcubed"] = ratios(quality.bcubed);
  return document.dump(1) + "\n";
}

void writeMetrics(const std::string& path, const std::string& scope,
                  const evaluation::Quality& quality, const RunSummary& last) {
  writeFileAtomically(path, metricsToJson(scope, quality, last));
}

}  // namespace tool
