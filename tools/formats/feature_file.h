// Feature files: what the subcommands read and write.
//
// Features are rows of 960 float32 values, in one of two layouts. A file
// that starts with the NumPy magic, whatever its name, is a NumPy array of
// dtype <f4 and shape (N, 960) (or (960,) for one feature), or <f8 (NumPy's
// default), converted to float32 with a note on standard error. Raw
// little-endian float32, N * 960 values with nothing else in the file, is
// read only from a file named *.f32 or *.raw, and only when every feature
// has length 1 (within 1%), as the extractor writes them: bytes of any
// other layout read as float32 are refused, not taken as features.
// Writing follows the name: raw for *.f32 and *.raw, NumPy float32 for any
// other.
#ifndef XVKFC_TOOLS_FORMATS_FEATURE_FILE_H_
#define XVKFC_TOOLS_FORMATS_FEATURE_FILE_H_

#include <algorithm>
#include <string>
#include <vector>

#include "interface/handle_support.h"

namespace tool {

using xvkfc::kFeatureDim;  // floats in one feature; what itf_xvk_getDim reports

// N features of kFeatureDim floats, row-major.
struct FeatureMatrix {
  std::vector<float> values;

  int rows() const { return static_cast<int>(values.size() / kFeatureDim); }
  const float* row(int i) const { return values.data() + static_cast<size_t>(i) * kFeatureDim; }
  float* row(int i) { return values.data() + static_cast<size_t>(i) * kFeatureDim; }
  void appendRow(const float* feature) {
    // Resize and copy rather than a range insert, which GCC 12 at -O3
    // wrongly reports as an overflow.
    const size_t end = values.size();
    values.resize(end + kFeatureDim);
    std::copy(feature, feature + kFeatureDim, values.begin() + end);
  }
};

// True for the names raw features are read from and written to.
bool isRawFeatureName(const std::string& path);

// Reads a feature file (layout by content and name, see above). Throws
// ToolError naming the file when it is missing, empty, of another dtype or
// shape, truncated, not NumPy and not named as raw (saying what it looks
// like), holds a value that is not finite, or is raw with a feature whose
// length is not 1.
FeatureMatrix readFeatures(const std::string& path);

// The same for `bytes`, the content of a file named `path`.
FeatureMatrix parseFeatures(const std::string& bytes, const std::string& path);

// The file bytes of `features` in the layout that `path` names.
std::string encodeFeatures(const std::string& path, const FeatureMatrix& features);

// Writes `features` to `path` without ever leaving a partial file.
void writeFeatures(const std::string& path, const FeatureMatrix& features);

}  // namespace tool

#endif  // XVKFC_TOOLS_FORMATS_FEATURE_FILE_H_
