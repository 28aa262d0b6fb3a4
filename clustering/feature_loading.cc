// Loading features in canonical row order and building their similarity
// kernel.
#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "FRecogInterface.h"
#include "clustering/face_clustering_system.h"
#include "clustering/thresholds.h"
#include "platform/alloc_guard.h"

namespace {

// Lexicographic comparison of a feature with a row, element 0 most
// significant: -1 if a < b, 1 if a > b, 0 if no element differs. An element
// pair involving NaN compares as equal and the scan moves on.
int compareFeatures(const float* a, const Vec<float>& b) {
  for (int k = 0; k < detail::kFeatureDim; ++k) {
    if (a[k] > b[k]) return 1;
    if (a[k] < b[k]) return -1;
  }
  return 0;
}

// Room for one more element, growing geometrically as push_back would, so
// that the push_back after it cannot fail.
template <typename T>
void reserveOneMore(std::vector<T>& list) {
  if (list.size() == list.capacity()) list.reserve(list.empty() ? 1 : 2 * list.size());
}

}  // namespace

void FaceClusteringSystem::loadFeatureVector(float* feature, int faceId) {
  Vec<float> row;
  if (!detail::runOrLogAllocFailure("malloc fail!!!(zeros in loadFeatureVector", [&] {
        row = Vec<float>(detail::kFeatureDim);
        // Only a reset that ran out of memory leaves no feature matrix.
        if (featureMats.empty()) featureMats.assign(1, emptyFeatureMat);
      })) {
    return;
  }
  std::copy(feature, feature + detail::kFeatureDim, row.begin());
  std::vector<Vec<float>>& rows = featureMats[0].rows;
  // A face is loaded whole or not at all: room for the row and its record
  // first, then two appends that cannot fail.
  if (!detail::runOrLogAllocFailure("malloc fail!!!(add face in loadFeatureVector", [&] {
        reserveOneMore(rows);
        reserveOneMore(faces);
      })) {
    return;
  }
  rows.push_back(std::move(row));
  Face face;
  face.faceId = faceId;
  faces.push_back(std::move(face));

  // Insertion step of an insertion sort. The scan always compares against
  // the new feature and always exchanges positions j and j+1, so it passes
  // over an equal row without stopping, and a greater row found below an
  // equal one is exchanged with that equal row, not with the new feature.
  const int added = static_cast<int>(faces.size()) - 1;
  for (int j = added - 1; j >= 0; --j) {
    const int order = compareFeatures(feature, rows[j]);
    if (order > 0) break;
    if (order < 0) {
      std::swap(rows[j], rows[j + 1]);
      std::swap(faces[j], faces[j + 1]);
    }
  }
}

void FaceClusteringSystem::updateKernelwithFeatureMatching(std::vector<Mat<float>>& features,
                                                           Mat<int>& /*unused*/) {
  std::vector<Vec<float>>& rows = features[0].rows;
  const int n = static_cast<int>(rows.size());
  if (!detail::runOrLogAllocFailure("malloc fail!!!(in updateKernel", [&] {
        const Vec<float> zeros(n);
        kernel.assign(n, zeros);
      })) {
    // A failed assign can leave rows of the old kernel, shorter than n, next
    // to new ones; an empty kernel is the one partial state every reader
    // copes with.
    kernel.clear();
    return;
  }
  if (n < 1) return;

  // The comparator is given private copies, never the stored rows.
  auto* comparator = static_cast<CFRecogInterface*>(recognizer);
  float first[detail::kFeatureDim];
  float second[detail::kFeatureDim];
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < n; ++j) {
      if (i < j) {
        std::copy_n(rows[i].data(), detail::kFeatureDim, first);
        std::copy_n(rows[j].data(), detail::kFeatureDim, second);
        const float score = comparator->RunComparison(first, second);
        kernel[i][j] = (score + 1.0f) * 0.5f;
      } else if (i == j) {
        kernel[i][i] = 1.0f;
      } else {
        kernel[i][j] = kernel[j][i];
      }
    }
  }
}
