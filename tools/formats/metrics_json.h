// The quality figures as JSON (--metrics-json), for scripts that track
// quality from run to run. Each group of figures says its scope:
//   {"quality": {"scope": "file", "labelled_faces": 250,
//                "pairwise": {"precision": 0.98, "recall": 0.87, "f": 0.92},
//                "bcubed": {"precision": ..., "recall": ..., "f": ...}},
//    "result": {"scope": "gallery", "faces": 2000, "clusters": 19,
//               "unclustered": 1892}}
// The quality's scope is "file" (the labelled faces of this input) or
// "gallery" (every labelled face in the clusters after the run); the result
// always counts the whole gallery after the run, earlier runs included.
#ifndef XVKFC_TOOLS_FORMATS_METRICS_JSON_H_
#define XVKFC_TOOLS_FORMATS_METRICS_JSON_H_

#include <string>

#include "evaluation/quality.h"
#include "tools/run/run_summary.h"

namespace tool {

// `qualityScope` is "file" or "gallery"; `galleryFaces` counts every face of
// the clusters after the run and `last` the clusters of the run's end.
std::string metricsToJson(const std::string& qualityScope, const evaluation::Quality& quality,
                          int galleryFaces, const RunSummary& last);

// Writes the metrics file without ever leaving a partial file.
void writeMetrics(const std::string& path, const std::string& qualityScope,
                  const evaluation::Quality& quality, int galleryFaces, const RunSummary& last);

}  // namespace tool

#endif  // XVKFC_TOOLS_FORMATS_METRICS_JSON_H_
