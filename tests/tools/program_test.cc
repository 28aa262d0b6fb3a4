// The program run as a process, as a user or a script runs it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <sstream>

#include "html_check.h"
#include "interface/face_recognition.h"
#include "process.h"
#include "tools/atomic_file.h"
#include "tools/cluster_json.h"
#include "tools/feature_file.h"
#include "tools/gallery.h"

namespace tool {
namespace {

using tool_test::ProcessResult;
using tool_test::runProgram;

// The library called directly, batch by batch, each run given the previous
// result as an application does; the result as the text of a clusters file.
std::string ClusterDirectly(const FeatureMatrix& features, int batchSize) {
  FaceRecognition handle;
  EXPECT_EQ(handle.itf_xvk_Init("."), 960);
  itf_xvk_clusterinfo result{0, nullptr};
  for (int begin = 0; begin < features.rows(); begin += batchSize) {
    for (int i = begin; i < std::min(features.rows(), begin + batchSize); ++i)
      handle.itf_xvk_loadFaceFeature(const_cast<float*>(features.row(i)), i);
    EXPECT_EQ(handle.itf_xvk_runClustering(begin == 0 ? nullptr : &result), 1);
    itf_xvk_clusterinfo next{0, nullptr};
    handle.itf_xvk_getClusterInfo(&next);
    handle.itf_xvk_releaseClusterInfo(&result);
    result = next;
  }
  std::vector<ClusterRecord> clusters;
  for (const itf_xvk_clusteritem* c = result.items; c < result.items + result.count; ++c) {
    clusters.push_back({c->clusterId, std::vector<int>(c->faceIds, c->faceIds + c->faceCount),
                        c->repFaceId, std::vector<float>()});
    if (c->feature) clusters.back().feature.assign(c->feature, c->feature + c->featureDim);
  }
  handle.itf_xvk_releaseClusterInfo(&result);
  handle.itf_xvk_Release();
  return clustersToJson(clusters);
}

class ProgramTest : public testing::Test {
 protected:
  std::string Path(const std::string& name) const { return folder_.path(name); }

  tool_test::TempFolder folder_;
};

// The messages themselves are pinned where each file is read.
TEST_F(ProgramTest, BadInputGivesOneLineAndLeavesNoOutput) {
  const std::string features = folder_.write("two.f32", std::string(2 * 3840, '\0'));
  folder_.write("short.raw", std::string(3839, '\0'));
  folder_.write("broken.json", "{\"clusters\": [");
  folder_.write("bucket.json", R"({"clusters": [{"cluster_id": -1, "face_ids": [1]}]})");
  const int inputs = folder_.entries();

  const struct {
    std::vector<std::string> args;
    std::string expected;
  } cases[] = {
      {{Path("absent.npy")}, "absent.npy: cannot open"},
      {{Path("short.raw")}, "truncated"},
      {{features, "--existing", Path("broken.json")}, "broken.json: malformed JSON"},
      {{features, "--existing", Path("bucket.json")},
       "face id 1 is already in the existing clusters"},
  };
  for (const auto& c : cases) {
    std::vector<std::string> args = {"-q",       "cluster",       "-o", Path("out.json"),
                                     "--report", Path("out.html")};
    args.insert(args.end(), c.args.begin(), c.args.end());
    const ProcessResult run = runProgram(args);
    EXPECT_EQ(run.exitCode, 1) << c.expected;
    EXPECT_EQ(run.err.rfind("xvkfc: error: ", 0), 0u) << run.err;
    EXPECT_NE(run.err.find(c.expected), std::string::npos) << run.err;
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
    EXPECT_EQ(folder_.entries(), inputs) << "an output was written: " << c.expected;
  }
}

TEST_F(ProgramTest, CommandLineMistakesAreUsageErrors) {
  // No subcommand, no -o, a negative batch size.
  const std::vector<std::string> mistakes[] = {
      {},
      {"cluster", Path("f.npy")},
      {"cluster", Path("f.npy"), "-o", Path("x"), "--batch-size", "-3"}};
  for (const auto& args : mistakes) EXPECT_EQ(runProgram(args).exitCode, 2) << args.size();
  EXPECT_EQ(runProgram({"--help"}).exitCode, 0);
}

// Demo, one call in two batches and two calls of one batch each give what
// the library called directly gives.
TEST_F(ProgramTest, EveryWayOfBatchingGivesTheClustersOfTheLibraryCalledDirectly) {
  const ProcessResult demo =
      runProgram({"-q", "demo", "--people", "4", "--max-faces", "4", "--lone", "2", "--duplicates",
                  "1", "--batches", "2", "-o", Path("demo.json"), "--save-gallery", Path("g")});
  ASSERT_EQ(demo.exitCode, 0) << demo.err;
  EXPECT_EQ(demo.err, "");  // quiet, and no library log without --verbose
  for (const char* expected : {"\nbatch 1: ", "\nbatch 2: ", "BCubed P ", "\nQuality: "}) {
    EXPECT_NE(demo.out.find(expected), std::string::npos) << expected << "\n" << demo.out;
  }
  const FeatureMatrix features = readFeatures(Path("g/features.npy"));
  const int half = (features.rows() + 1) / 2;
  const std::string direct = ClusterDirectly(features, half);
  EXPECT_TRUE(readWholeFile(Path("demo.json")) == direct);
  EXPECT_GE(readClusters(Path("demo.json")).back().id, 1) << "fewer than two clusters";

  const ProcessResult cluster =
      runProgram({"cluster", Path("g/features.npy"), "--ids", Path("g/face_ids.txt"), "--labels",
                  Path("g/labels.txt"), "--in-order", "--batch-size", std::to_string(half), "-o",
                  Path("cluster.json"), "--report", Path("report.html")});
  ASSERT_EQ(cluster.exitCode, 0) << cluster.err;
  EXPECT_TRUE(readWholeFile(Path("cluster.json")) == direct);
  EXPECT_NE(cluster.out.find("quality: pairwise P "), std::string::npos) << cluster.out;
  // Progress names each phase on standard error.
  for (const char* phase : {"loading", "clustering", "reading results"}) {
    EXPECT_NE(cluster.err.find(phase), std::string::npos) << phase;
  }
  const std::string html = readWholeFile(Path("report.html"));
  EXPECT_EQ(tool_test::htmlProblem(html), "");
  EXPECT_EQ(tool_test::inlineImages(html).size(), 2u);

  // The second call is given the first call's clusters file; both read raw
  // features, cut from the gallery's bytes.
  const std::string raw = encodeFeatures("x.raw", features);
  folder_.write("first.f32", raw.substr(0, half * 3840));
  folder_.write("second.f32", raw.substr(half * 3840));
  std::string ids;
  for (int i = half; i < features.rows(); ++i) ids += std::to_string(i) + " ";
  folder_.write("ids.txt", ids);
  ASSERT_EQ(runProgram({"-q", "cluster", Path("first.f32"), "-o", Path("first.json")}).exitCode, 0);
  const ProcessResult second =
      runProgram({"-q", "cluster", Path("second.f32"), "--ids", Path("ids.txt"), "--existing",
                  Path("first.json"), "-o", Path("second.json")});
  ASSERT_EQ(second.exitCode, 0) << second.err;
  EXPECT_TRUE(readWholeFile(Path("second.json")) == direct);
}

TEST_F(ProgramTest, FeatureOperations) {
  // Seed 1234: 5 people of 2 to 5 faces, one a look-alike, and 3 lone faces.
  const Gallery gallery = makeGallery({1234, 5, 2, 5, 1, 3, 0});
  const int rows = gallery.features.rows();
  const std::string features = Path("features.npy");
  writeFeatures(features, gallery.features);

  // compare: one row per feature, the diagonal 1023; --verbose adds the library's log.
  const ProcessResult compare = runProgram({"-q", "--verbose", "compare", features});
  ASSERT_EQ(compare.exitCode, 0) << compare.err;
  EXPECT_NE(compare.err.find("FC_Native D: init FC engine"), std::string::npos) << compare.err;
  std::istringstream cells(compare.out);
  const std::vector<int> scores{std::istream_iterator<int>(cells), {}};
  ASSERT_EQ(scores.size(), static_cast<size_t>(rows * rows));
  EXPECT_EQ(std::count(compare.out.begin(), compare.out.end(), '\n'), rows);
  for (int i = 0; i < rows; ++i) EXPECT_EQ(scores[i * rows + i], 1023) << i;

  // recommend: the representative face of each cluster belongs to it.
  ASSERT_EQ(runProgram({"-q", "cluster", features, "-o", Path("c.json")}).exitCode, 0);
  const std::string recommended =
      "\n" + runProgram({"recommend", features, "--clusters", Path("c.json")}).out;
  EXPECT_EQ(std::count(recommended.begin(), recommended.end(), '\n'), rows + 1);
  for (const ClusterRecord& c : readClusters(Path("c.json"))) {
    if (c.id < 0) continue;
    const std::string line = "\n" + std::to_string(c.repFaceId) + "\t" + std::to_string(c.id);
    EXPECT_NE(recommended.find(line + "\n"), std::string::npos) << line;
  }

  // representative: one of the inputs, written as a one-row feature file.
  const ProcessResult representative =
      runProgram({"representative", features, "-o", Path("r.npy")});
  ASSERT_EQ(representative.exitCode, 0) << representative.err;
  const int chosen = std::atoi(representative.out.c_str() + representative.out.find("row ") + 4);
  const FeatureMatrix written = readFeatures(Path("r.npy"));
  ASSERT_EQ(written.rows(), 1);
  EXPECT_EQ(std::memcmp(written.row(0), gallery.features.row(chosen), 3840), 0);
}

TEST_F(ProgramTest, ExtractsFeaturesOfFaceRectanglesInAYuvImage) {
  // A 20 x 11 image (odd height) with a diagonal pattern, and a flat one.
  const int width = 20, height = 11;
  const size_t size = width * height + 2 * 10 * 6;
  std::string pattern(size, '\x80');
  for (int i = 0; i < width * height; ++i)
    pattern[i] = static_cast<char>((i % width * 13 + i / width * 29) % 256);
  const std::string image = folder_.write("pattern.yuv", pattern);
  const ProcessResult two = runProgram({"extract", image, "--size", "20x11", "--face", "0,0,20,11",
                                        "--face", "2,1,12,9", "-o", Path("two.npy")});
  ASSERT_EQ(two.exitCode, 0) << two.err;
  const FeatureMatrix features = readFeatures(Path("two.npy"));
  ASSERT_EQ(features.rows(), 2);
  EXPECT_NE(std::memcmp(features.row(0), features.row(1), 3840), 0);

  const struct {
    std::string image, face, expected;
  } cases[] = {
      {folder_.write("flat.yuv", std::string(size, '\x80')), "0,0,20,11", "no face found"},
      {folder_.write("short.yuv", pattern.substr(0, size - 1)), "0,0,20,11", "truncated"},
      {image, "15,0,6,5", "does not lie inside"},
  };
  for (const auto& c : cases) {
    const ProcessResult run =
        runProgram({"extract", c.image, "--size", "20x11", "--face", c.face, "-o", Path("x.npy")});
    EXPECT_EQ(run.exitCode, 1) << c.expected;
    EXPECT_NE(run.err.find(c.expected), std::string::npos) << run.err;
    EXPECT_FALSE(std::ifstream(Path("x.npy")).good()) << c.expected;
  }
}

}  // namespace
}  // namespace tool
