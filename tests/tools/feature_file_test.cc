#include "tools/formats/feature_file.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>

#include "process.h"
#include "tools/formats/id_list.h"
#include "tools/formats/npy.h"
#include "tools/tool_error.h"

namespace tool {
namespace {

// Two unit-length features holding -0.0 and the smallest denormal among
// plain values (which leave the length within 1e-3 of 1).
FeatureMatrix TwoFeatures() {
  FeatureMatrix features;
  for (int i = 0; i < 2 * kFeatureDim; ++i)
    features.values.push_back(((i % 7) * 0.25f - 1.0f) / 17.3f);
  features.values[3] = -0.0f;
  features.values[5] = std::numeric_limits<float>::denorm_min();
  return features;
}

// A .npy file with a hand-written header dictionary.
std::string Npy(int version, const std::string& header, const std::string& data) {
  std::string bytes = std::string("\x93NUMPY", 6) + static_cast<char>(version) + '\0';
  for (int i = 0; i < (version == 1 ? 2 : 4); ++i) {
    bytes += static_cast<char>((header.size() >> (8 * i)) & 0xff);
  }
  return bytes + header + data;
}

TEST(FeatureFileTest, ReadsWhatItWritesBitExactlyAndTheOtherLayouts) {
  const tool_test::TempFolder folder;
  const FeatureMatrix features = TwoFeatures();
  // NumPy by its content whatever the name; raw only by name.
  for (const char* name : {"f.npy", "f.raw", "f.bin"}) {
    writeFeatures(folder.path(name), features);
    const FeatureMatrix back = readFeatures(folder.path(name));
    ASSERT_EQ(back.rows(), 2) << name;
    EXPECT_EQ(std::memcmp(back.values.data(), features.values.data(), 2 * kFeatureDim * 4), 0)
        << name;
  }
  // One feature of shape (960,), and a version 2 header.
  const std::string data = encodeFeatures("x.raw", features).substr(0, kFeatureDim * 4);
  EXPECT_EQ(readFeatures(folder.write("one.npy", encodeNpy("<f4", {960}, data))).rows(), 1);
  const std::string header = "{'descr': '<f4', 'fortran_order': False, 'shape': (1, 960), }\n";
  EXPECT_EQ(readFeatures(folder.write("v2.npy", Npy(2, header, data))).rows(), 1);

  // float64 (NumPy's default) is rounded to float32.
  std::vector<double> doubles(kFeatureDim, 1.0);
  doubles[0] = 0.1;
  const FeatureMatrix narrowed = readFeatures(folder.write(
      "f8.npy", encodeNpy("<f8", {1, 960},
                          std::string(reinterpret_cast<const char*>(doubles.data()), 7680))));
  ASSERT_EQ(narrowed.rows(), 1);
  EXPECT_EQ(narrowed.row(0)[0], 0.1f);

  // Integer lists as text (numpy.savetxt's floats, commas, comments) and as
  // little-endian int64, also under a name that is not .npy.
  const struct {
    std::string name, bytes;
    std::vector<int> ids;
  } lists[] = {
      {"ids.txt", " 5\n-3\t2147483647\n", {5, -3, 2147483647}},
      {"savetxt.txt", "# ids\n1.000000000000000000e+00,-2.0  # two\n3e+01,\n", {1, -2, 30}},
      {"ids.bin",
       encodeNpy("<i8", {2}, std::string("\x07\0\0\0\0\0\0\0", 8) + std::string(8, '\xff')),
       {7, -1}},
      {"u4.npy", encodeNpy("<u4", {1}, std::string("\x07\0\0\0", 4)), {7}},
  };
  for (const auto& c : lists) EXPECT_EQ(readIntList(folder.write(c.name, c.bytes), "ids"), c.ids);
}

TEST(FeatureFileTest, RejectsBadFilesWithTheReason) {
  const tool_test::TempFolder folder;
  const std::string raw = encodeFeatures("x.raw", TwoFeatures());
  std::string nan = raw;
  const float notANumber = std::numeric_limits<float>::quiet_NaN();
  std::memcpy(&nan[4 * (kFeatureDim + 2)], &notANumber, 4);
  const struct {
    std::string name, bytes, expected;
    bool faceIds;  // read as the face ids of 3 features, otherwise as features
  } cases[] = {
      {"long.npy", encodeNpy("<f4", {1, 960}, raw), "after the array data", false},
      {"short.npy", encodeNpy("<f4", {2, 960}, raw).substr(0, 5000), "truncated", false},
      {"f2.npy", encodeNpy("<f2", {1, 960}, raw.substr(0, 1920)), "float32 ('<f4') or float64",
       false},
      {"huge.npy", encodeNpy("<f8", {1, 960}, std::string(7680, '\x7f')),  // 1.4e306 each
       "feature 0 has a value that is not finite", false},
      {"959.npy", encodeNpy("<f4", {1, 959}, raw.substr(0, 3836)),
       "shape (N, 960), the file holds (1, 959)", false},
      {"magic.npy", raw, "not a NumPy", false},
      {"fortran.npy",
       Npy(1, "{'descr': '<f4', 'fortran_order': True, 'shape': (1, 960), }\n",
           raw.substr(0, 3840)),
       "Fortran", false},
      {"empty.raw", "", "no features", false},
      // Raw needs its name, unit-length float32 and whole features: float64
      // read as float32 would be twice as many faces of garbage, none of
      // unit length.
      {"features.bin", raw, "not a NumPy file: features are a NumPy float32 or float64 array",
       false},
      {"clusters.npy", "\n {\"clusters\": []}", "not a NumPy file, it looks like JSON", false},
      {"short.f32", raw.substr(4), "7676 bytes do not divide into features of 3840", false},
      {"zero.raw", std::string(3840, '\0'),
       "feature 0 has length 0, not 1; raw features are unit-length", false},
      {"nan.raw", nan, "feature 1 has a value that is not finite (element 2)", false},
      {"word.txt", "1 2 x3", "line 1: 'x3' is not a number (face ids entry 2); write integers",
       true},
      {"half.txt", "1\n2\n1.5 # a\n", "line 3: '1.5' is not a whole number", true},
      {"nan.txt", "1 nan 2", "'nan' is not a number", true},
      {"ids.json", "[1, 2, 3]", "looks like JSON, not a list of face ids", true},
      {"ids.npy", "1 2 3", "not a NumPy .npy file", true},
      {"range.txt", "1 2147483648", "does not fit", true},
      {"count.txt", "1 2", "holds 2 face ids for 3 features", true},
      {"dup.txt", "4 1 4", "duplicate face id 4", true},
      {"f4.npy", encodeNpy("<f4", {3}, std::string(12, '\0')), "must be integers", true},
      {"u4.npy", encodeNpy("<u4", {3}, std::string(12, '\xff')), "does not fit", true},
  };
  for (const auto& c : cases) {
    const std::string path = folder.write(c.name, c.bytes);
    std::string message;
    try {
      c.faceIds ? (void)readFaceIds(path, 3) : (void)readFeatures(path);
    } catch (const ToolError& e) {
      message = e.what();
    }
    EXPECT_NE(message.find(c.expected), std::string::npos) << c.name << ": " << message;
  }
}

}  // namespace
}  // namespace tool
