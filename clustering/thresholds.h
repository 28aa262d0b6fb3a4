// The clustering engine's fixed constants, in one place. They are part of the
// engine's behaviour and not configurable. Similarities are kernel values:
// (score + 1) * 0.5 of the comparator's score, so 0..1.
#ifndef XVKFC_CLUSTERING_THRESHOLDS_H_
#define XVKFC_CLUSTERING_THRESHOLDS_H_

namespace detail {

// Floats in one face feature.
inline constexpr int kFeatureDim = 960;

// Comparison scores are reported on 0..kScoreScaleMax (ten bits); a
// comparator result outside [-1, 1] is clamped to that range.
inline constexpr int kScoreScaleMax = 1023;

// Splitting: a cluster is cut in two when its mean inner similarity, or any
// single similarity inside it, is below this.
inline constexpr float kSplitSimilarity = 0.69f;
// Splitting: a two-face cluster stays whole only at this similarity or more.
inline constexpr float kSplitPairSimilarity = 0.9f;

// Merging: two clusters join when their average linkage reaches this...
inline constexpr float kMergeSimilarity = 0.69f;
// ...and, when either has two faces or fewer, their best pair reaches this.
inline constexpr float kMergeBestPairSimilarity = 0.74f;

// Refinement: split-and-merge cycles, always all of them.
inline constexpr int kRefineCycles = 20;
// Refinement: the pruning threshold the clustering run passes.
inline constexpr float kPruneThreshold = 0.7f;
// Refinement: added to the pruning threshold to bound a face's best
// similarity to the rest of its cluster.
inline constexpr float kPruneBestMargin = 0.05f;
// Refinement: a face of a two-face cluster stays at this similarity or more.
inline constexpr float kPrunePairSimilarity = 0.9f;

// Initial (spectral) clustering: grouping and thresholding level of the
// restricted kernel; the threshold argument does not replace it.
inline constexpr float kGroupSimilarity = 0.71f;

// Merging with the application's clusters: an outlier face joins every
// application cluster whose feature it matches at this similarity or more.
inline constexpr float kOutlierJoinSimilarity = 0.9f;
// Merging with the application's clusters: clusters whose features match at
// this similarity or more are united.
inline constexpr float kClusterLinkSimilarity = 0.87f;

// Recommendation: scores on the 0..1023 scale up to this one are rejected; a
// comparator score of exactly 0.8 maps to 920, so a match must beat 0.8.
inline constexpr int kRecommendRejectAtOrBelow = 920;

}  // namespace detail

#endif  // XVKFC_CLUSTERING_THRESHOLDS_H_
