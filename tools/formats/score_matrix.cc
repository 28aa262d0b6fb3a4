#include "tools/formats/score_matrix.h"

#include <cstdint>

#include "tools/formats/atomic_file.h"
#include "tools/formats/npy.h"

namespace tool {

std::string encodeScores(const std::string& path, const ScoreMatrix& scores) {
  if (hasSuffix(path, ".npy")) {
    return encodeNpy("<i4",
                     {static_cast<uint64_t>(scores.rows), static_cast<uint64_t>(scores.columns)},
                     int32Data(scores.values));
  }
  std::string out;
  for (int i = 0; i < scores.rows; ++i) {
    for (int j = 0; j < scores.columns; ++j) {
      out += (j ? "\t" : "") +
             std::to_string(scores.values[static_cast<size_t>(i) * scores.columns + j]);
    }
    out += "\n";
  }
  return out;
}

}  // namespace tool
