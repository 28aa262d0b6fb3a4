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
#include "tools/npy.h"

namespace tool {
namespace {

using tool_test::ProcessResult;
using tool_test::runProgram;

// Clusters equal field by field, features bit for bit.
void ExpectSameClusters(const std::vector<ClusterRecord>& a, const std::vector<ClusterRecord>& b) {
  ASSERT_EQ(a.size(), b.size());
  for (size_t i = 0; i < a.size(); ++i) {
    EXPECT_EQ(a[i].id, b[i].id) << i;
    EXPECT_EQ(a[i].faceIds, b[i].faceIds) << i;
    EXPECT_EQ(a[i].repFaceId, b[i].repFaceId) << i;
    ASSERT_EQ(a[i].feature.size(), b[i].feature.size()) << i;
    if (a[i].feature.empty()) continue;
    EXPECT_EQ(std::memcmp(a[i].feature.data(), b[i].feature.data(), a[i].feature.size() * 4), 0)
        << i;
  }
}

class ProgramTest : public testing::Test {
 protected:
  ProgramTest() {
    GalleryOptions options;
    options.people = 5;
    options.minFaces = 2;
    options.maxFaces = 5;
    options.lookAlikes = 1;
    options.loneFaces = 3;
    options.duplicates = 0;
    gallery_ = makeGallery(options);
    writeFeatures(Path("features.npy"), gallery_.features);
  }

  std::string Path(const std::string& name) const { return folder_ + "/" + name; }
  void WriteText(const std::string& name, const std::string& text) const {
    std::ofstream(Path(name), std::ios::binary) << text;
  }
  static std::string Lines(const std::vector<int>& values, size_t begin, size_t end) {
    std::string text;
    for (size_t i = begin; i < end; ++i) text += std::to_string(values[i]) + "\n";
    return text;
  }
  FeatureMatrix Rows(int begin, int end) const {
    FeatureMatrix part;
    for (int i = begin; i < end; ++i) part.appendRow(gallery_.features.row(i));
    return part;
  }
  // Splits the gallery into exactly two batches.
  int Half() const { return (gallery_.features.rows() + 1) / 2; }

  ~ProgramTest() override { tool_test::removeFolder(folder_); }

  std::string folder_ = tool_test::makeTempFolder();
  Gallery gallery_;
};

// The library called directly, batch by batch, each run given the previous
// result: what an application does.
std::vector<ClusterRecord> ClusterDirectly(const FeatureMatrix& features, int batchSize) {
  FaceRecognition handle;
  EXPECT_EQ(handle.itf_xvk_Init("."), 960);
  itf_xvk_clusterinfo previous{0, nullptr};
  for (int begin = 0; begin < features.rows(); begin += batchSize) {
    for (int i = begin; i < std::min(features.rows(), begin + batchSize); ++i) {
      handle.itf_xvk_loadFaceFeature(const_cast<float*>(features.row(i)), i);
    }
    EXPECT_EQ(handle.itf_xvk_runClustering(begin == 0 ? nullptr : &previous), 1);
    itf_xvk_clusterinfo next{0, nullptr};
    handle.itf_xvk_getClusterInfo(&next);
    handle.itf_xvk_releaseClusterInfo(&previous);
    previous = next;
  }
  std::vector<ClusterRecord> clusters;
  for (int c = 0; c < previous.count; ++c) {
    const itf_xvk_clusteritem& item = previous.items[c];
    ClusterRecord record;
    record.id = item.clusterId;
    record.faceIds.assign(item.faceIds, item.faceIds + item.faceCount);
    record.repFaceId = item.repFaceId;
    if (item.feature) record.feature.assign(item.feature, item.feature + item.featureDim);
    clusters.push_back(record);
  }
  handle.itf_xvk_releaseClusterInfo(&previous);
  handle.itf_xvk_Release();
  return clusters;
}

TEST_F(ProgramTest, BatchesGiveTheClustersOfTheLibraryCalledDirectly) {
  const ProcessResult run = runProgram({"cluster", Path("features.npy"), "--batch-size",
                                        std::to_string(Half()), "-o", Path("batched.json")});
  ASSERT_EQ(run.exitCode, 0) << run.err;
  const std::vector<ClusterRecord> expected = ClusterDirectly(gallery_.features, Half());
  ExpectSameClusters(readClusters(Path("batched.json")), expected);
  EXPECT_GT(std::count_if(expected.begin(), expected.end(), [](auto& c) { return c.id >= 0; }), 1);

  // The same two batches as two runs, the second fed the first's file.
  const int rows = gallery_.features.rows();
  writeFeatures(Path("second.npy"), Rows(Half(), rows));
  WriteText("second_ids.txt", Lines(gallery_.faceIds, Half(), rows));
  writeFeatures(Path("first.npy"), Rows(0, Half()));
  ASSERT_EQ(runProgram({"-q", "cluster", Path("first.npy"), "-o", Path("first.json")}).exitCode, 0);
  const ProcessResult second =
      runProgram({"-q", "cluster", Path("second.npy"), "--ids", Path("second_ids.txt"),
                  "--existing", Path("first.json"), "-o", Path("second.json")});
  ASSERT_EQ(second.exitCode, 0) << second.err;
  EXPECT_TRUE(readWholeFile(Path("second.json")) == readWholeFile(Path("batched.json")));
}

TEST_F(ProgramTest, NpyAndRawInputsAgree) {
  writeFeatures(Path("features.f32"), gallery_.features);
  ASSERT_EQ(runProgram({"-q", "cluster", Path("features.npy"), "-o", Path("a.json")}).exitCode, 0);
  ASSERT_EQ(runProgram({"-q", "cluster", Path("features.f32"), "-o", Path("b.json")}).exitCode, 0);
  EXPECT_TRUE(readWholeFile(Path("a.json")) == readWholeFile(Path("b.json")));
}

TEST_F(ProgramTest, BadInputGivesOneLineAndLeavesNoOutput) {
  const std::string raw = encodeFeatures("x.raw", gallery_.features);
  std::ofstream(Path("short.raw"), std::ios::binary) << raw.substr(0, raw.size() - 1);
  std::ofstream(Path("short.npy"), std::ios::binary)
      << encodeNpy("<f4", {static_cast<size_t>(gallery_.features.rows()), 960}, raw)
             .substr(0, 5000);
  std::ofstream(Path("f8.npy"), std::ios::binary)
      << encodeNpy("<f8", {2, 960}, raw.substr(0, 15360));
  std::ofstream(Path("959.npy"), std::ios::binary)
      << encodeNpy("<f4", {1, 959}, raw.substr(0, 3836));
  WriteText("broken.json", "{\"clusters\": [");
  WriteText("below.json", R"({"clusters": [{"cluster_id": -2, "face_ids": [900]}]})");
  WriteText("bucket.json", R"({"clusters": [{"cluster_id": -1, "face_ids": [1]}]})");
  WriteText("dup_ids.txt",
            Lines(std::vector<int>(gallery_.features.rows(), 4), 0, gallery_.features.rows()));
  const std::vector<std::string> inputs = tool_test::listFolder(folder_);

  const std::string features = Path("features.npy");
  const struct {
    std::vector<std::string> args;
    std::string expected;
  } cases[] = {
      {{Path("absent.npy")}, "absent.npy: cannot open"},
      {{Path("f8.npy")}, "features must be float32"},
      {{Path("959.npy")}, "shape (N, 960), the file holds (1, 959)"},
      {{Path("short.npy")}, "truncated"},
      {{Path("short.raw")}, "truncated"},
      {{features, "--existing", Path("broken.json")}, "broken.json: malformed JSON"},
      {{features, "--existing", Path("below.json")}, "cluster id -2 is below -1"},
      {{features, "--ids", Path("dup_ids.txt")}, "duplicate face id 4"},
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
    EXPECT_EQ(tool_test::listFolder(folder_).size(), inputs.size())
        << "an output was written: " << c.expected;
  }
}

TEST_F(ProgramTest, CommandLineMistakesAreUsageErrors) {
  EXPECT_EQ(runProgram({}).exitCode, 2);
  EXPECT_EQ(runProgram({"cluster", Path("features.npy")}).exitCode, 2);  // no -o
  EXPECT_EQ(
      runProgram({"cluster", Path("features.npy"), "-o", Path("x"), "--batch-size", "-3"}).exitCode,
      2);
  const ProcessResult help = runProgram({"--help"});
  EXPECT_EQ(help.exitCode, 0);
  for (const char* name :
       {"cluster", "representative", "recommend", "compare", "extract", "demo"}) {
    EXPECT_NE(help.out.find(name), std::string::npos) << name;
  }
}

TEST_F(ProgramTest, ReportsQualityAndWritesAReportWhoseImagesDecode) {
  WriteText("labels.txt", Lines(gallery_.identities, 0, gallery_.identities.size()));
  const ProcessResult run =
      runProgram({"-q", "cluster", Path("features.npy"), "--labels", Path("labels.txt"), "--report",
                  Path("report.html"), "-o", Path("out.json")});
  ASSERT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(run.err, "");
  EXPECT_NE(run.out.find("quality: pairwise P "), std::string::npos) << run.out;
  const std::string html = readWholeFile(Path("report.html"));
  EXPECT_EQ(tool_test::htmlProblem(html), "");
  const auto images = tool_test::inlineImages(html);
  ASSERT_EQ(images.size(), 2u);
  for (const auto& image : images) {
    EXPECT_GT(image.width, 0);
    EXPECT_EQ(image.width, image.declaredWidth);
    EXPECT_EQ(image.height, image.declaredHeight);
  }
}

TEST_F(ProgramTest, DemoClustersItsGalleryAsTheClusterCommandDoes) {
  const ProcessResult demo =
      runProgram({"-q", "demo", "--people", "4", "--max-faces", "4", "--lone", "2", "--duplicates",
                  "1", "--batches", "2", "-o", Path("demo.json"), "--save-gallery", Path("g")});
  ASSERT_EQ(demo.exitCode, 0) << demo.err;
  EXPECT_EQ(demo.err, "");
  for (const char* expected : {"\nbatch 1: ", "\nbatch 2: ", "BCubed P ", "\nQuality: "}) {
    EXPECT_NE(demo.out.find(expected), std::string::npos) << expected << "\n" << demo.out;
  }
  const int faces = readFeatures(Path("g/features.npy")).rows();
  const ProcessResult cluster =
      runProgram({"cluster", Path("g/features.npy"), "--ids", Path("g/face_ids.txt"), "--labels",
                  Path("g/labels.txt"), "--batch-size", std::to_string((faces + 1) / 2), "-o",
                  Path("cluster.json")});
  ASSERT_EQ(cluster.exitCode, 0) << cluster.err;
  EXPECT_TRUE(readWholeFile(Path("cluster.json")) == readWholeFile(Path("demo.json")));
  // Progress names each phase on standard error.
  for (const char* phase : {"loading", "clustering", "reading results"}) {
    EXPECT_NE(cluster.err.find(phase), std::string::npos) << phase;
  }
}

TEST_F(ProgramTest, VerboseShowsTheLibraryLogAndOnlyThen) {
  const ProcessResult quiet = runProgram({"-q", "compare", Path("features.npy")});
  EXPECT_EQ(quiet.err, "");
  const ProcessResult verbose = runProgram({"-q", "--verbose", "compare", Path("features.npy")});
  EXPECT_NE(verbose.err.find("FC_Native D: init FC engine"), std::string::npos) << verbose.err;
}

TEST_F(ProgramTest, FeatureOperations) {
  // compare: one row per feature, the diagonal 1023.
  const ProcessResult compare = runProgram({"compare", Path("features.npy")});
  ASSERT_EQ(compare.exitCode, 0) << compare.err;
  std::istringstream lines(compare.out);
  std::string line;
  for (int row = 0; std::getline(lines, line); ++row) {
    std::istringstream cells(line);
    std::vector<int> scores{std::istream_iterator<int>(cells), std::istream_iterator<int>()};
    ASSERT_EQ(scores.size(), static_cast<size_t>(gallery_.features.rows()));
    EXPECT_EQ(scores[row], 1023);
  }

  // recommend: the representative face of each cluster belongs to it.
  ASSERT_EQ(runProgram({"-q", "cluster", Path("features.npy"), "-o", Path("c.json")}).exitCode, 0);
  for (const ClusterRecord& cluster : readClusters(Path("c.json"))) {
    if (cluster.id < 0) continue;
    writeFeatures(Path("rep.npy"), Rows(cluster.repFaceId, cluster.repFaceId + 1));
    const ProcessResult recommend =
        runProgram({"recommend", Path("rep.npy"), "--clusters", Path("c.json")});
    EXPECT_EQ(recommend.out, "0\t" + std::to_string(cluster.id) + "\n") << recommend.err;
  }

  // representative: one of the inputs, written as a one-row feature file.
  const ProcessResult representative =
      runProgram({"representative", Path("features.npy"), "-o", Path("r.npy")});
  ASSERT_EQ(representative.exitCode, 0) << representative.err;
  const int row = std::atoi(representative.out.c_str() + representative.out.find("row ") + 4);
  const FeatureMatrix chosen = readFeatures(Path("r.npy"));
  ASSERT_EQ(chosen.rows(), 1);
  EXPECT_EQ(std::memcmp(chosen.row(0), gallery_.features.row(row), 3840), 0);
}

TEST_F(ProgramTest, ExtractsFeaturesOfFaceRectanglesInAYuvImage) {
  // A 20 x 11 image (odd height) with a diagonal pattern, and a flat one.
  const int width = 20, height = 11;
  const size_t size = width * height + 2 * 10 * 6;
  std::string pattern(size, '\x80'), flat(size, '\x80');
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x)
      pattern[y * width + x] = static_cast<char>((x * 13 + y * 29) % 256);
  }
  WriteText("pattern.yuv", pattern);
  WriteText("flat.yuv", flat);
  WriteText("short.yuv", pattern.substr(0, size - 1));

  const ProcessResult two = runProgram({"extract", Path("pattern.yuv"), "--size", "20x11", "--face",
                                        "0,0,20,11", "--face", "2,1,12,9", "-o", Path("two.npy")});
  ASSERT_EQ(two.exitCode, 0) << two.err;
  const FeatureMatrix features = readFeatures(Path("two.npy"));
  ASSERT_EQ(features.rows(), 2);
  EXPECT_NE(std::memcmp(features.row(0), features.row(1), 3840), 0);

  const struct {
    std::vector<std::string> args;
    std::string expected;
  } cases[] = {
      {{Path("flat.yuv"), "--size", "20x11", "--face", "0,0,20,11"}, "no face found"},
      {{Path("short.yuv"), "--size", "20x11", "--face", "0,0,20,11"}, "truncated"},
      {{Path("pattern.yuv"), "--size", "20x11", "--face", "15,0,6,5"}, "does not lie inside"},
  };
  for (const auto& c : cases) {
    std::vector<std::string> args = {"extract", "-o", Path("bad.npy")};
    args.insert(args.end(), c.args.begin(), c.args.end());
    const ProcessResult run = runProgram(args);
    EXPECT_EQ(run.exitCode, 1) << c.expected;
    EXPECT_NE(run.err.find(c.expected), std::string::npos) << run.err;
    EXPECT_FALSE(tool_test::fileExists(Path("bad.npy"))) << c.expected;
  }
}

}  // namespace
}  // namespace tool
