// Step 3 of a plan: links between faces that the comparator says may be one
// person (a score of kJoinScore or more), found without scoring every pair:
// each face is scored only against the kCandidates faces whose profiles
// correlate with its own best (planning/profile_index.h). Small sets, where
// that would cost about as much, are scored pair by pair.
#ifndef XVKFC_PLANNING_FACE_LINKS_H_
#define XVKFC_PLANNING_FACE_LINKS_H_

#include <cstdint>
#include <vector>

class FaceRecognition;

namespace detail {

// A face joins another at a score of 767 or more (similarity 0.75): the
// engine keeps a face in a cluster only when its best similarity to the rest
// is at least 0.75, so faces below that would not stay together anyway.
inline constexpr int kJoinScore = 767;

// Candidate partners scored per face.
inline constexpr int kCandidates = 10;

// Links of nodes 0..faces-1 (faces) and faces..faces+probes-1 (probes, which
// link to faces only): node i is linked to to[start[i] .. start[i + 1]),
// ascending, and a link between faces is listed at both ends.
struct FaceLinks {
  std::vector<int> start;
  std::vector<int> to;
  int64_t comparisons = 0;  // comparator calls it took
};

// Links the faces at faceRows (960 floats each, in a fixed order: the links
// depend on it only through ties) and the probes at probeRows. Every row is
// given to the comparator, which may write through it. Comparator calls:
// about faces * (kProfileLength + kCandidates) plus probes times the same,
// or every pair when that is fewer.
FaceLinks linkFaces(FaceRecognition& handle, const std::vector<float*>& faceRows,
                    const std::vector<float*>& probeRows);

}  // namespace detail

#endif  // XVKFC_PLANNING_FACE_LINKS_H_
