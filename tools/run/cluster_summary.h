// What `xvkfc cluster` prints at the end, with the scope of every figure:
// a run with --existing adds faces to a gallery of earlier runs, so cluster
// counts are the gallery's while the new faces are only this file's.
#ifndef XVKFC_TOOLS_RUN_CLUSTER_SUMMARY_H_
#define XVKFC_TOOLS_RUN_CLUSTER_SUMMARY_H_

#include <optional>
#include <string>
#include <vector>

#include "evaluation/quality.h"
#include "tools/formats/cluster_json.h"
#include "tools/formats/labels.h"
#include "tools/run/run_summary.h"

namespace tool {

struct ScopedQuality {
  std::optional<evaluation::Quality> quality;  // empty without labels
  bool gallery = false;  // measured over the whole gallery, not only this file
  int labels = 0;        // face ids the labels file names
};

// Quality of `clusters` against `labels`. Labels keyed by face id measure
// every labelled face in the clusters (the gallery, earlier runs included);
// labels given per feature measure the faces of this file (`faceIds`).
ScopedQuality measureScoped(const std::vector<ClusterRecord>& clusters,
                            const std::vector<int>& faceIds, const Labels& labels);

// The summary lines; `how` says how the faces were run ("4 batches",
// "42 planned runs (2 rounds)"). For example
//   250 new faces clustered in 1 batch; the gallery (old.json and these)
//   now holds 2000 faces: 19 clusters, 1892 unclustered faces
//   quality over the 2000 labelled faces of the gallery: pairwise P ...
// When some labels name no face, the quality line says how many matched:
//   quality over the 80 labelled faces of this file (80 of the 100 labels
//   match a face): ...
std::string describeRun(int faces, const std::string& how, const RunSummary& last,
                        const std::vector<ClusterRecord>& clusters, bool intoExisting,
                        const ScopedQuality& quality);

}  // namespace tool

#endif  // XVKFC_TOOLS_RUN_CLUSTER_SUMMARY_H_
