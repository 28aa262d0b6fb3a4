// Turning a similarity kernel into cluster labels: a greedy grouping at a
// threshold and normalised spectral clustering into k clusters.
#ifndef XVKFC_NUMERIC_SPECTRAL_H_
#define XVKFC_NUMERIC_SPECTRAL_H_

#include "numeric/mat.h"
#include "numeric/vec.h"
#include "platform/export.h"

// One greedy pass over the rows of `kernel` (n x n, larger is more similar;
// only the first n elements of each row are read). Every row i whose face is
// not yet claimed opens group number `count` and claims each unclaimed face j
// with kernel[i][j] strictly above `threshold`, its own included; then
// `count` grows by one. Groups do not grow through their new members, so this
// is not a connected-components search.
//
// labels: cleared and resized to n; entry j is the group that claimed face j,
//         and 0 for a face no row claimed.
// Returns the number of groups opened. A row whose own element is not above
// the threshold still opens a group, even if it claims nobody, so the count
// can exceed the number of labels in use. An empty kernel gives 0.
XVKFC_EXPORT int kernelToLabels(const Mat<float>& kernel, Vec<int>& labels, float threshold);

// Normalised spectral clustering of the n faces of `kernel` into k clusters:
// L = D^-1/2 K D^-1/2 with D the row sums (single precision), symmetrised;
// the eigenvectors of the k largest eigenvalues of L (signed, the leading one
// included) as columns of an n x k embedding; each embedding row scaled to
// unit length; k-means on the rows, seeded with the means of `initialLabels`.
//
// kernel:        n x n, read only (taken by reference, not changed).
// initialLabels: n labels in [0, k), read only; the seed partition.
// labels:        on success, cleared and given n labels in [0, k).
// Returns 1 on success. Returns 0, with `labels` untouched and nothing
// leaked, when one of the working arrays L (n x n), D (n), V (n x n) or E (n)
// cannot be allocated; each logs its own line, "sClustering - L malloc
// fail!!!" and likewise for D, V and E. Other allocation failures (the
// embedding, k-means) throw std::bad_alloc.
// A row summing to zero or less makes its degree factor infinite or NaN; that
// is not guarded, so the kernel should have a positive diagonal.
// REQUIRES: n >= 1; 1 <= k <= n; initialLabels holds n labels in [0, k);
//           initialLabels and labels are distinct vectors.
XVKFC_EXPORT int spectralClustering(Mat<float>& kernel, int k, Vec<int>& initialLabels,
                                    Vec<int>& labels);

#endif  // XVKFC_NUMERIC_SPECTRAL_H_
