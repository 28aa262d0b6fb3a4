// Feature files: what the subcommands read and write.
//
// Features are rows of 960 float32 values, in one of two layouts chosen by
// the file name: "*.npy" is a NumPy array of dtype <f4 and shape (N, 960)
// (or (960,) for one feature), or <f8 (NumPy's default), converted to float32
// with a note on standard error; any other name is raw little-endian float32,
// N * 960 values with nothing else in the file.
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

// Reads a feature file (layout by name, see above). Throws ToolError naming
// the file when it is missing, empty, of another dtype or shape, truncated,
// or holds a value that is not finite.
FeatureMatrix readFeatures(const std::string& path);

// The same for `bytes`, the content of a file named `path`.
FeatureMatrix parseFeatures(const std::string& bytes, const std::string& path);

// The file bytes of `features` in the layout that `path` names.
std::string encodeFeatures(const std::string& path, const FeatureMatrix& features);

// Writes `features` to `path` without ever leaving a partial file.
void writeFeatures(const std::string& path, const FeatureMatrix& features);

}  // namespace tool

#endif  // XVKFC_TOOLS_FORMATS_FEATURE_FILE_H_
