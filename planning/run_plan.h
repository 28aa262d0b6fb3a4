// Planned runs: an order in which to feed a whole gallery of new faces to
// the clustering engine, in runs of faces that resemble each other.
//
// One clustering run makes at most about 21 clusters, and faces of one
// person that reach the engine in different runs rarely meet again, so the
// order of the faces decides most of the quality of a large import. The plan
// puts each person's faces, as far as the comparator can tell, into one run,
// without comparing every pair of faces:
//  1. Profiles (planning/score_profiles.h): each face is scored against 64
//     reference faces spread over the gallery. Faces of one person score
//     alike against any third face, so their profiles correlate.
//  2. Search (planning/profile_index.h): profiles are put in cells around
//     pivot profiles; each face looks for the profiles that correlate best
//     with its own in the cells of its best pivots only.
//  3. Links (planning/face_links.h): the comparator scores each face against
//     its 10 best candidates; a score of 767 or more links the two.
//  4. Groups: faces joined by links, directly or through others.
//  5. Runs: groups packed into runs of at most runSize faces and 16 groups,
//     faces linked to nobody last.
// It is judged only through the handle's comparator (itf_xvk_compareFeature);
// nothing here assumes what the 960 floats mean.
//
// Conventions: plain C++ types; no exception leaves these functions (an
// unexpected failure is logged as one line and reported as the failure
// value). Starts no threads; a handle must not be used from two threads at
// once.
#ifndef XVKFC_PLANNING_RUN_PLAN_H_
#define XVKFC_PLANNING_RUN_PLAN_H_

#include <cstdint>
#include <vector>

#include "platform/export.h"

class FaceRecognition;

// Faces per run when the application has no reason to choose: about a dozen
// people of a handful of faces each, well inside the ~21 clusters one run
// can make.
inline constexpr int kDefaultRunSize = 64;

// A plan for `count` faces: run 0 is order[0 .. runSizes[0]), run 1 the next
// runSizes[1] entries, and so on.
struct RunPlan {
  std::vector<int> order;     // every input index 0..count-1 exactly once
  std::vector<int> runSizes;  // each 1..runSize; they add up to count
  int64_t comparisons = 0;    // comparator calls the plan cost
};

// Plans `count` features (count x 960 floats, row-major) into runs of at
// most `runSize` faces. Returns the number of runs and fills `plan`.
// Deterministic: the same set of features gives the same plan in any input
// order (the plan then lists the same features in the same order; which of
// two bit-identical features comes first is not defined). Uses at most
// count * 74 comparator calls (64 for the profile, 10 for the candidates;
// every pair instead when that is fewer) and memory linear in count. NaN or infinite
// values are planned like any other; the comparator decides how they score.
// Returns -1, logs one line and leaves `plan` untouched for a null handle,
// features or plan, a count below 1, a runSize below 2, a handle on which
// itf_xvk_Init did not succeed, or an allocation failure.
// `features` is only read.
XVKFC_EXPORT int planFaceRuns(FaceRecognition* handle, const float* features, int count,
                              int runSize, RunPlan* plan);

#endif  // XVKFC_PLANNING_RUN_PLAN_H_
