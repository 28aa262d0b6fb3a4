#include "tools/formats/metrics_json.h"

#include <nlohmann/json.hpp>

#include "tools/formats/atomic_file.h"

namespace tool {
namespace {

nlohmann::json ratios(const evaluation::PrecisionRecall& measure) {
  return {{"precision", measure.precision}, {"recall", measure.recall}, {"f", measure.f}};
}

}  // namespace

std::string metricsToJson(const std::string& qualityScope, const evaluation::Quality& quality,
                          int galleryFaces, const RunSummary& last) {
  nlohmann::json document;
  document["quality"] = {{"scope", qualityScope},
                         {"labelled_faces", quality.faces},
                         {"pairwise", ratios(quality.pairwise)},
                         {"bcubed", ratios(quality.bcubed)}};
  document["result"] = {{"scope", "gallery"},
                        {"faces", galleryFaces},
                        {"clusters", last.clusters},
                        {"unclustered", last.unclustered}};
  return document.dump(1) + "\n";
}

void writeMetrics(const std::string& path, const std::string& qualityScope,
                  const evaluation::Quality& quality, int galleryFaces, const RunSummary& last) {
  writeFileAtomically(path, metricsToJson(qualityScope, quality, galleryFaces, last));
}

}  // namespace tool
