// The quality figures as JSON (--metrics-json), for scripts that track
// quality from run to run:
//   {"scope": "gallery", "faces": 2000, "clusters": 19, "unclustered": 1892,
//    "pairwise": {"precision": 0.98, "recall": 0.87, "f": 0.92},
//    "bcubed": {"precision": ..., "recall": ..., "f": ...}}
// "scope" says which faces were measured: "file" (the faces of this input)
// or "gallery" (every labelled face in the clusters after the run).
#ifndef XVKFC_TOOLS_FORMATS_METRICS_JSON_H_
#define XVKFC_TOOLS_FORMATS_METRICS_JSON_H_

#include <string>

#include "evaluation/quality.h"
#include "tools/run/run_summary.h"

namespace tool {

std::string metricsToJson(const std::string& scope, const evaluation::Quality& quality,
                          const RunSummary& last);

// Writes the metrics file without ever leaving a partial file.
void writeMetrics(const std::string& path, const std::string& scope,
                  const evaluation::Quality& quality, const RunSummary& last);

}  // namespace tool

#endif  // XVKFC_TOOLS_FORMATS_METRICS_JSON_H_
