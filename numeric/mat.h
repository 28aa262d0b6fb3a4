// Mat<T>: the engine's dense matrix, a list of row vectors.
#ifndef XVKFC_NUMERIC_MAT_H_
#define XVKFC_NUMERIC_MAT_H_

#include <cstddef>
#include <utility>
#include <vector>

#include "numeric/vec.h"

// Row-major by construction: row i is an independent Vec<T>, so rows are not
// contiguous with each other. The column count is, by convention, the length
// of row 0; nothing forces later rows to keep that length. Carries features
// (one face per row), similarity kernels, cluster centres and embeddings.
template <typename T>
class Mat {
 public:
  // The one member: the rows in order.
  std::vector<Vec<T>> rows;

  Mat() = default;

  // A rowCount x colCount matrix of zeros: colCount 0 gives rowCount empty
  // rows, rowCount 0 an empty matrix.
  Mat(int rowCount, int colCount) : rows(rowCount, Vec<T>(colCount)) {}

  // Takes a list of rows as they are (the engine's kernel, for one).
  explicit Mat(std::vector<Vec<T>> rowList) : rows(std::move(rowList)) {}

  int rowCount() const { return static_cast<int>(rows.size()); }
  // REQUIRES: at least one row.
  int colCount() const { return static_cast<int>(rows[0].size()); }

  Vec<T>& operator[](std::size_t i) { return rows[i]; }
  const Vec<T>& operator[](std::size_t i) const { return rows[i]; }
};

#endif  // XVKFC_NUMERIC_MAT_H_
