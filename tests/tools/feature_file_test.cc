#include "tools/feature_file.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <fstream>
#include <limits>

#include "process.h"
#include "tools/npy.h"
#include "tools/tool_error.h"

namespace tool {
namespace {

class FeatureFileTest : public testing::Test {
 protected:
  std::string Write(const std::string& name, const std::string& bytes) {
    const std::string path = folder_ + "/" + name;
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
  }
  // The message readFeatures gives for `bytes` stored as `name`; empty when
  // it reads them.
  std::string FeatureError(const std::string& name, const std::string& bytes) {
    try {
      readFeatures(Write(name, bytes));
    } catch (const ToolError& e) {
      return e.what();
    }
    return "";
  }
  static FeatureMatrix TwoFeatures() {
    FeatureMatrix features;
    features.values.resize(2 * kFeatureDim);
    for (int i = 0; i < 2 * kFeatureDim; ++i) features.values[i] = (i % 7) * 0.25f - 1.0f;
    features.values[3] = -0.0f;
    features.values[5] = std::numeric_limits<float>::denorm_min();
    return features;
  }
  // A .npy file with a hand-written header dictionary.
  static std::string Npy(int version, const std::string& header, const std::string& data) {
    std::string bytes = std::string("\x93NUMPY", 6) + static_cast<char>(version) + '\0';
    for (int i = 0; i < (version == 1 ? 2 : 4); ++i) {
      bytes += static_cast<char>((header.size() >> (8 * i)) & 0xff);
    }
    return bytes + header + data;
  }
  static std::string RawOf(const FeatureMatrix& features) {
    return encodeFeatures("x.raw", features);
  }

  ~FeatureFileTest() override { tool_test::removeFolder(folder_); }

  std::string folder_ = tool_test::makeTempFolder();
};

TEST_F(FeatureFileTest, NpyAndRawRoundTripBitExactly) {
  const FeatureMatrix features = TwoFeatures();
  for (const char* name : {"f.npy", "f.raw", "f.bin"}) {
    const std::string path = folder_ + "/" + name;
    writeFeatures(path, features);
    const FeatureMatrix back = readFeatures(path);
    ASSERT_EQ(back.rows(), 2) << name;
    EXPECT_EQ(std::memcmp(back.values.data(), features.values.data(),
                          features.values.size() * sizeof(float)),
              0)
        << name;
  }
  // NumPy pads the header so that the data starts on a 64-byte boundary.
  const std::string npy = encodeFeatures("f.npy", features);
  EXPECT_EQ((npy.size() - features.values.size() * sizeof(float)) % 64, 0u);
}

TEST_F(FeatureFileTest, ReadsOneFeatureOfShape960AndVersion2Headers) {
  const FeatureMatrix features = TwoFeatures();
  const std::string data = RawOf(features).substr(0, kFeatureDim * 4);
  EXPECT_EQ(readFeatures(Write("one.npy", encodeNpy("<f4", {960}, data))).rows(), 1);

  const std::string header = "{'descr': '<f4', 'fortran_order': False, 'shape': (1, 960), }\n";
  EXPECT_EQ(readFeatures(Write("v2.npy", Npy(2, header, data))).rows(), 1);
}

TEST_F(FeatureFileTest, RejectsBadFeatureFilesWithTheReason) {
  const std::string raw = RawOf(TwoFeatures());
  std::string nan = raw;
  const float notANumber = std::numeric_limits<float>::quiet_NaN();
  std::memcpy(&nan[4 * (kFeatureDim + 2)], &notANumber, 4);
  const struct {
    std::string name, bytes, expected;
  } cases[] = {
      {"long.npy", encodeNpy("<f4", {1, 960}, raw), "after the array data"},
      {"magic.npy", raw, "not a NumPy"},
      {"fortran.npy",
       Npy(1, "{'descr': '<f4', 'fortran_order': True, 'shape': (1, 960), }\n",
           raw.substr(0, 3840)),
       "Fortran"},
      {"empty.raw", "", "no features"},
      {"nan.raw", nan, "feature 1 has a value that is not finite (element 2)"},
  };
  for (const auto& c : cases) {
    EXPECT_NE(FeatureError(c.name, c.bytes).find(c.expected), std::string::npos)
        << c.name << ": " << FeatureError(c.name, c.bytes);
  }
  EXPECT_NE(FeatureError("missing/none.npy", "").find("cannot"), std::string::npos);
}

TEST_F(FeatureFileTest, IntegerListsFromTextAndNpy) {
  EXPECT_EQ(readIntList(Write("ids.txt", " 5\n-3\t2147483647\n"), "ids"),
            (std::vector<int>{5, -3, 2147483647}));
  std::string wide;
  for (long long v : {7LL, -1LL}) {
    for (int i = 0; i < 8; ++i)
      wide += static_cast<char>((static_cast<unsigned long long>(v) >> (8 * i)) & 0xff);
  }
  EXPECT_EQ(readIntList(Write("ids.npy", encodeNpy("<i8", {2}, wide)), "ids"),
            (std::vector<int>{7, -1}));
  EXPECT_EQ(readFaceIds("", 3), (std::vector<int>{0, 1, 2}));

  const struct {
    std::string name, bytes, expected;
  } cases[] = {
      {"word.txt", "1 2 x3", "'x3' is not an integer"},
      {"range.txt", "1 2147483648", "does not fit"},
      {"count.txt", "1 2", "holds 2 face ids for 3 features"},
      {"f4.npy", encodeNpy("<f4", {3}, std::string(12, '\0')), "must be integers"},
  };
  for (const auto& c : cases) {
    std::string message;
    try {
      readFaceIds(Write(c.name, c.bytes), 3);
    } catch (const ToolError& e) {
      message = e.what();
    }
    EXPECT_NE(message.find(c.expected), std::string::npos) << c.name << ": " << message;
  }
}

}  // namespace
}  // namespace tool
