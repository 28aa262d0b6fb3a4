// The plan of planFaceRuns with what the planned import needs besides it:
// the links found between the faces, and between them and probe features
// (the application's clusters), which tell which clusters a run can match.
#ifndef XVKFC_PLANNING_PLAN_WITH_LINKS_H_
#define XVKFC_PLANNING_PLAN_WITH_LINKS_H_

#include <vector>

#include "planning/face_links.h"
#include "planning/run_plan.h"

class FaceRecognition;

namespace detail {

// As planFaceRuns on `count` rows at `rows` (count x 960 floats, given to
// the comparator, which may write through them; no checks, may throw
// std::bad_alloc), with the probes at probeRows linked to the faces. When
// `links` is not null it receives the links with faces numbered by their
// row and probe p as count + p. Returns the number of runs.
int planWithLinks(FaceRecognition& handle, float* rows, int count, int runSize,
                  const std::vector<float*>& probeRows, RunPlan* plan, FaceLinks* links);

}  // namespace detail

#endif  // XVKFC_PLANNING_PLAN_WITH_LINKS_H_
