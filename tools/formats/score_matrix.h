// The score matrix of `xvkfc compare`, as text or as a NumPy array.
#ifndef XVKFC_TOOLS_FORMATS_SCORE_MATRIX_H_
#define XVKFC_TOOLS_FORMATS_SCORE_MATRIX_H_

#include <string>
#include <vector>

namespace tool {

struct ScoreMatrix {
  int rows = 0, columns = 0;
  std::vector<int> values;  // row-major, 0..1023
};

// "*.npy": int32 array of shape (rows, columns); any other name: one line
// of tab-separated scores per row.
std::string encodeScores(const std::string& path, const ScoreMatrix& scores);

}  // namespace tool

#endif  // XVKFC_TOOLS_FORMATS_SCORE_MATRIX_H_
