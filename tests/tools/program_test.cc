// The program run as a process, as a user or a script runs it, on ordinary
// inputs and on inputs chosen to break it: batch sizes up to int's limit,
// special output files, sources that never end, clusters without a
// representative.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>

#include "evaluation/synthetic_gallery.h"
#include "html_check.h"
#include "interface/face_recognition.h"
#include "process.h"
#include "tools/formats/atomic_file.h"
#include "tools/formats/cluster_json.h"
#include "tools/formats/feature_file.h"
#include "tools/formats/id_list.h"
#include "tools/formats/npy.h"
#include "tools/formats/png_image.h"
#include "tools/printable_text.h"
#include "tools/tool_error.h"

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
    handle.itf_xvk_releaseClusterInfo(&result);
    handle.itf_xvk_getClusterInfo(&result);
  }
  std::vector<ClusterRecord> clusters;
  for (const itf_xvk_clusteritem* c = result.items; c < result.items + result.count; ++c)
    clusters.push_back({c->clusterId, std::vector<int>(c->faceIds, c->faceIds + c->faceCount),
                        c->repFaceId, std::vector<float>(c->feature, c->feature + c->featureDim)});
  handle.itf_xvk_releaseClusterInfo(&result);
  handle.itf_xvk_Release();
  return clustersToJson(clusters);
}

class ProgramTest : public testing::Test {
 protected:
  std::string Path(const std::string& name) const { return folder_.path(name); }
  // Five faces: two people of two faces and one lone face.
  std::string Features() {
    writeFeatures(Path("f.npy"),
                  FeatureMatrix{evaluation::makeGallery({7, 2, 2, 2, 0, 1, 0}).features});
    return Path("f.npy");
  }

  tool_test::TempFolder folder_;
};

// Each mistake or bad input fails with its reason and writes no output; the
// messages of bad files are pinned where each file is read.
TEST_F(ProgramTest, MistakesAndBadInputsFailWithTheReasonAndLeaveNoOutput) {
  const std::string features =
      folder_.write("f.npy", encodeFeatures("x.npy", FeatureMatrix{std::vector<float>(2 * 960)}));
  const std::string alias = Path("alias.f32");  // the same file under another name
  ASSERT_EQ(link(features.c_str(), alias.c_str()), 0);
  folder_.write("broken.json", "{\"clusters\": [");
  folder_.write(
      "bucket.json",
      R"({"format": "xvkfc-clusters", "clusters": [{"cluster_id": -1, "face_ids": [1]}]})");
  const std::string ids = folder_.write("ids.txt", "1 2"),
                    labels = folder_.write("labels.txt", "7");
  const std::string strangers = folder_.write("strangers.txt", "98 1\n99 2");
  // A flat 4 x 4 YUV image and a short one.
  const std::string flat = folder_.write("flat.yuv", std::string(4 * 4 + 2 * 2 * 2, '\x80'));
  const std::string shortImage = folder_.write("short.yuv", std::string(4 * 4, '\x80'));
  // A FIFO that nothing writes to: a plain open would wait for ever.
  ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0600), 0);
  const std::string binaryIds = folder_.write("binary.txt", std::string("1\0x\x1b 2", 6));
  const int inputs = folder_.entries();
  // A bad input: clustering `more` into out.json and out.html.
  auto cluster = [&](std::vector<std::string> more) {
    more.insert(more.begin(),
                {"-q", "cluster", "-o", Path("out.json"), "--report", Path("out.html")});
    return more;
  };
  auto extract = [&](const std::string& image, const char* size, const char* face) {
    return std::vector<std::string>{"extract", image, "--size", size,
                                    "--face",  face,  "-o",     Path("x")};
  };
  const struct {
    std::vector<std::string> args;
    std::string expected;
    int exitCode = 2;  // 1: one line "xvkfc: error: "; 0: expected on standard output
  } cases[] = {
      {cluster({Path("absent.npy")}), "absent.npy: cannot open", 1},
      {cluster({Path("pipe")}), "pipe: a FIFO or pipe that nothing is writing to", 1},
      {cluster({Path("")}), "not a regular file (a directory)", 1},
      // Bytes quoted from a binary file are escaped so that the message reaches
      // the terminal.
      {cluster({features, "--ids", binaryIds}),
       "line 1: '1\\x00x\\x1b' is not a number (face ids entry 0)", 1},
      {cluster({features, "--ids", ids, "--existing", Path("broken.json")}),
       "broken.json: malformed JSON", 1},
      {cluster({features, "--labels", labels}), "labels for 2 features", 1},
      // Quality over no face would read as a perfect score.
      {cluster({features, "--labels", strangers}), "none of its 2 face ids is a face", 1},
      {cluster({features, "--ids", ids, "--existing", Path("bucket.json")}),
       "face id 1 is already in the existing clusters", 1},
      // Checked before any work: out.json is not written either.
      {cluster({features, "--assignments", Path("absent/a.tsv")}),
       "folder " + Path("absent") + " does not", 1},
      {extract(flat, "4x4", "0,0,4,4"), "no face found", 1},
      {extract(shortImage, "4x4", "0,0,4,4"), "truncated", 1},
      // Sizes whose sums or products pass int are refused before they are computed.
      {extract(flat, "4x4", "2147483647,0,2147483647,1"), "does not lie inside the 4x4 image"},
      {extract(flat, "4x4", "0,2,1,2147483647"), "does not lie inside"},
      {extract(flat, "2147483647x2147483647", "0,0,1,1"), "more than the 1073741824", 1},
      // An output that is an input is refused before it is destroyed.
      {{"cluster", features, "-o", alias}, "is the input " + features},
      {{"cluster", features, "--ids", ids, "-o", Path("x"), "--assignments", ids}, "is the input"},
      {{"compare", features, "-o", alias}, "is the input"},
      {{}, "A subcommand is required"},
      {{"cluster", features}, "--output is required"},
      {{"cluster", features, "-o", Path("x"), "--batch-size", "-3"}, "must be 0 or more, not -3"},
      {{"cluster", features, "-o", Path("x"), "--batch-size", "2147483648"}, "--batch-size"},
      // Without ids the new faces would be stored as 0..N-1 for good.
      {{"cluster", features, "-o", Path("x"), "--existing", Path("x")}, "--existing needs --ids"},
      {{"cluster", features, "-o", Path("x"), "--metrics-json", Path("m")}, "needs --labels"},
      {{"representative", features, "--cluster", "3"}, "go together"},
      {{"cluster", features, "-o", Path("x"), "--report", Path("x")}, "two different outputs"},
      {{"extract", features, "--face", "0,0,1,1", "-o", Path("x")}, "--size is required"},
      // Standard output takes one output, and no binary one.
      {{"cluster", features, "-o", "-", "--report", "-"}, "standard output (-): named as two"},
      {{"extract", features, "--size", "1x1", "--face", "0,0,1,1", "-o", "-"}, "binary"},
      {{"demo", "-o", "-"}, "standard output holds the demo's summary"},
      {{"clustr", features, "-o", Path("x")},
       "unknown subcommand 'clustr'; did you mean 'cluster'?"},
      {{"-q", "--models", ".", "dmeo"}, "did you mean 'demo'?"},
      {{"frobnicate"}, "(the subcommands are cluster, representative, recommend, compare, "},
      {{"cluster", "--help"}, "Usage: xvkfc cluster ", 0},
      {{"--version"}, "\nlibxvkfcEngineTAVO ", 0},
      {{"--version"}, "Version : 2016.11.24(M)", 0},
  };
  for (const auto& c : cases) {
    const ProcessResult run = runProgram(c.args);
    EXPECT_EQ(run.exitCode, c.exitCode) << c.expected;
    EXPECT_NE((c.exitCode ? run.err : run.out).find(c.expected), std::string::npos) << run.err;
    EXPECT_LT(run.err.size(), 200u) << run.err;  // plain, not a 309-digit range
    EXPECT_EQ(folder_.entries(), inputs) << "an output was written: " << c.expected;
    if (c.exitCode != 1) continue;
    EXPECT_EQ(run.err.rfind("xvkfc: error: ", 0), 0u) << run.err;
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
  }
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

  const ProcessResult cluster = runProgram(
      {"cluster", Path("g/features.npy"), "--ids", Path("g/face_ids.txt"), "--labels",
       Path("g/labels.txt"), "--in-order", "--batch-size", std::to_string(half), "-o",
       Path("cluster.json"), "--report", Path("report.html"), "--metrics-json", Path("file.json")});
  ASSERT_EQ(cluster.exitCode, 0) << cluster.err;
  const auto fileMetrics = nlohmann::json::parse(readWholeFile(Path("file.json")));
  EXPECT_EQ(fileMetrics["quality"]["scope"], "file");
  EXPECT_EQ(fileMetrics["result"]["scope"], "gallery");
  EXPECT_TRUE(readWholeFile(Path("cluster.json")) == direct);
  EXPECT_NE(cluster.out.find("labelled faces of this file: pairwise P "), std::string::npos)
      << cluster.out;
  const std::string html = readWholeFile(Path("report.html"));
  EXPECT_EQ(tool_test::htmlProblem(html), "");
  EXPECT_EQ(tool_test::inlineImages(html).size(), 1u);

  // The second call is given the first call's clusters file; both read raw
  // features, cut from the gallery's bytes.
  const std::string raw = encodeFeatures("x.raw", features);
  folder_.write("first.f32", raw.substr(0, half * 3840));
  folder_.write("second.f32", raw.substr(half * 3840));
  // Labels keyed by face id, comma-separated, in reverse order, measure the
  // whole gallery.
  std::string ids, pairs;
  for (int i = half; i < features.rows(); ++i) ids += std::to_string(i) + "\n";
  const std::vector<int> labels = readIntList(Path("g/labels.txt"), "labels");
  for (int i = features.rows() - 1; i >= 0; --i)
    pairs += std::to_string(i) + "," + std::to_string(labels[i]) + "\n";
  folder_.write("ids.txt", ids);
  folder_.write("pairs.tsv", pairs);
  ASSERT_EQ(runProgram({"-q", "cluster", Path("first.f32"), "-o", Path("first.json")}).exitCode, 0);
  const ProcessResult second =
      runProgram({"-q", "cluster", Path("second.f32"), "--ids", Path("ids.txt"), "--existing",
                  Path("first.json"), "-o", Path("second.json"), "--labels", Path("pairs.tsv"),
                  "--assignments", "-", "--metrics-json", Path("m.json")});
  ASSERT_EQ(second.exitCode, 0) << second.err;
  EXPECT_TRUE(readWholeFile(Path("second.json")) == direct);
  const std::string scope =
      "over the " + std::to_string(features.rows()) +
      " labelled faces of the gallery: " + cluster.out.substr(cluster.out.find("pairwise P "), 60);
  // The assignments went to standard output, so the summary went to standard error.
  EXPECT_NE(second.err.find(scope), std::string::npos) << second.err << cluster.out;
  EXPECT_NE(second.err.find("assignments written to standard output"), std::string::npos);
  const auto metrics = nlohmann::json::parse(readWholeFile(Path("m.json")));
  EXPECT_EQ(metrics["quality"]["scope"], "gallery");
  EXPECT_EQ(metrics["quality"]["labelled_faces"], features.rows());
  EXPECT_EQ(metrics["result"]["faces"], features.rows());

  // One line per face of the second file (not the earlier ones), in its
  // order, with the first real cluster that lists it, or -1.
  std::map<int, int> clusterOf;
  for (const ClusterRecord& c : readClusters(Path("second.json")))
    for (int face : c.faceIds) {
      const auto entry = clusterOf.emplace(face, c.id).first;  // the bucket -1 comes first
      if (entry->second < 0) entry->second = c.id;
    }
  std::string expected;
  for (int i = half; i < features.rows(); ++i)
    expected += std::to_string(i) + "\t" + std::to_string(clusterOf[i]) + "\n";
  EXPECT_EQ(second.out, expected);
}

// A run that will cluster poorly says so; the clusters are still written.
TEST_F(ProgramTest, InOrderWithoutBatchSizeGetsANote) {
  // 20 people of 4 faces: more than one default run of 64.
  writeFeatures(Path("f.npy"),
                FeatureMatrix{evaluation::makeGallery({7, 20, 4, 4, 0, 0, 0}).features});
  for (const std::string more : {" --in-order", " --in-order --batch-size 40", ""}) {
    std::vector<std::string> args = {"-q", "cluster", Path("f.npy"), "-o", Path("x.json")};
    std::istringstream words(more);
    args.insert(args.end(), std::istream_iterator<std::string>(words), {});
    const ProcessResult run = runProgram(args);
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.err.find("note: --in-order without --batch-size runs all 80 faces as one run") !=
                  std::string::npos,
              more == " --in-order")
        << run.err;
  }
}

TEST_F(ProgramTest, FeatureOperations) {
  // Seed 1234: 5 people of 2 to 5 faces, one a look-alike, and 3 lone faces.
  const evaluation::Gallery gallery = evaluation::makeGallery({1234, 5, 2, 5, 1, 3, 0});
  const FeatureMatrix galleryFeatures{gallery.features};
  const int rows = gallery.faces();
  const std::string features = Path("features.npy");
  writeFeatures(features, galleryFeatures);

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
    EXPECT_NE(recommended.find(line + "\t1023\n"), std::string::npos) << line;
  }
  // The best score shows how close a -1 came: below the cut-off of 921.
  std::istringstream lines(recommended);
  for (int face, cluster, best; lines >> face >> cluster >> best;)
    EXPECT_EQ(cluster < 0, best < 921) << face;

  // compare -o: the same scores as a (rows, rows) int32 array.
  ASSERT_EQ(runProgram({"compare", features, "-o", Path("s.npy")}).exitCode, 0);
  const NpyArray array = parseNpy(readWholeFile(Path("s.npy")), "s.npy");
  EXPECT_EQ(array.descr, "<i4");
  EXPECT_EQ(array.data, int32Data(scores));

  // representative: one of the inputs, written as a one-row feature file.
  const ProcessResult representative =
      runProgram({"representative", features, "-o", Path("r.npy")});
  ASSERT_EQ(representative.exitCode, 0) << representative.err;
  auto twice = [](int face) { return std::to_string(face) + "\t" + std::to_string(face) + "\n"; };
  const int chosen = std::atoi(representative.out.c_str());
  EXPECT_EQ(representative.out, twice(chosen));
  const FeatureMatrix written = readFeatures(Path("r.npy"));
  ASSERT_EQ(written.rows(), 1);
  EXPECT_EQ(std::memcmp(written.row(0), gallery.row(chosen), 3840), 0);

  // A stored cluster's representative is its representative face.
  const ClusterRecord stored = readClusters(Path("c.json")).back();
  const ProcessResult picked = runProgram({"representative", features, "--clusters", Path("c.json"),
                                           "--cluster", std::to_string(stored.id)});
  ASSERT_EQ(picked.exitCode, 0) << picked.err;
  EXPECT_EQ(picked.out, twice(stored.repFaceId));
}

TEST_F(ProgramTest, ExtractsFeaturesOfFaceRectanglesInAYuvImage) {
  // A 20 x 11 image (odd height) with a diagonal pattern.
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

  // The same grey levels as a PNG: converted to Y = grey, U = V = 128, it
  // gives the same features.
  RgbImage grey(width, height, {0, 0, 0});
  for (int i = 0; i < width * height; ++i) {
    const uint8_t level = static_cast<uint8_t>(pattern[i]);
    grey.fill(i % width, i / width, 1, 1, {level, level, level});
  }
  const ProcessResult png =
      runProgram({"extract", folder_.write("pattern.png", encodePng(grey)), "--face", "0,0,20,11",
                  "--face", "2,1,12,9", "-o", Path("png.npy")});
  ASSERT_EQ(png.exitCode, 0) << png.err;
  EXPECT_EQ(readWholeFile(Path("png.npy")), readWholeFile(Path("two.npy")));
}

// A batch size at or above the face count, up to the largest int, is one run.
TEST_F(ProgramTest, BatchSizesPastTheFaceCountAreOneRun) {
  const std::string features = Features();
  ASSERT_EQ(runProgram({"-q", "cluster", features, "-o", Path("one.json")}).exitCode, 0);
  for (const char* batchSize : {"5", "2147483647"}) {
    const ProcessResult run =
        runProgram({"-q", "cluster", features, "--batch-size", batchSize, "-o", Path("b.json")});
    EXPECT_EQ(run.exitCode, 0) << batchSize << ": " << run.err;
    EXPECT_EQ(readWholeFile(Path("b.json")), readWholeFile(Path("one.json"))) << batchSize;
  }
}

// Output to a device or a pipe is written into it, never renamed over it; a
// full device is a failed run.
TEST_F(ProgramTest, SpecialOutputFilesAreWrittenInPlace) {
  const std::string features = Features();
  const std::string fifo = Path("pipe.f32");  // raw: the feature's 3840 bytes
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  // Opened for reading first, so that the program's open for writing does not wait.
  const int reader = open(fifo.c_str(), O_RDONLY | O_NONBLOCK);
  ASSERT_GE(reader, 0);
  const ProcessResult piped = runProgram({"-q", "representative", features, "-o", fifo});
  EXPECT_EQ(piped.exitCode, 0) << piped.err;
  char buffer[8192];
  EXPECT_EQ(read(reader, buffer, sizeof buffer), 3840);
  close(reader);

  const ProcessResult full = runProgram({"-q", "representative", features, "-o", "/dev/full"});
  EXPECT_EQ(full.exitCode, 1);
  EXPECT_NE(full.err.find("xvkfc: error: /dev/full: cannot write"), std::string::npos) << full.err;

  struct stat status;
  ASSERT_EQ(stat(fifo.c_str(), &status), 0);
  EXPECT_TRUE(S_ISFIFO(status.st_mode));
  EXPECT_EQ(folder_.entries(), 2) << "a temporary file was left behind";
}

// Reading stops at the limit, before it for a regular file that claims more.
TEST_F(ProgramTest, InputsPastTheirLimitsAreRefused) {
  const std::string big = folder_.write("big.f32", std::string(2 * 3840, '\0'));
  EXPECT_EQ(readWholeFile(big, 2 * 3840).size(), 2 * 3840u);
  for (const auto& [path, limit] :
       {std::pair<std::string, size_t>{"/dev/zero", 1 << 20}, {big, 3840}}) {
    try {
      readWholeFile(path, limit);
      ADD_FAILURE() << path << " read past " << limit;
    } catch (const ToolError& e) {
      EXPECT_NE(std::string(e.what()).find("larger than the " + std::to_string(limit)),
                std::string::npos)
          << e.what();
    }
  }
}

// A cluster whose representative ran out of memory (featureDim 0, written
// as null) is read back and handed to the library, which keeps it.
TEST_F(ProgramTest, ClustersWithoutRepresentativeSurviveTheClustersFile) {
  const std::string features = Features(), ids = folder_.write("ids.txt", "10 11 12 13 14");
  writeClusters(Path("in.json"), {{-1, {}, -1, {}}, {0, {100, 101}, 100, {}}});
  const ProcessResult run = runProgram({"-q", "cluster", features, "--ids", ids, "--existing",
                                        Path("in.json"), "-o", Path("out.json")});
  ASSERT_EQ(run.exitCode, 0) << run.err;
  int kept = 0;  // with its id, its representative face and no feature
  for (const ClusterRecord& c : readClusters(Path("out.json")))
    kept += c.faceIds == std::vector<int>{100, 101} && c.id >= 0 && c.repFaceId == 100 &&
            c.feature.empty();
  EXPECT_EQ(kept, 1);
  // recommend leaves it out: the library answers -1 for a list holding one.
  const ProcessResult fit =
      runProgram({"recommend", features, "--ids", ids, "--clusters", Path("out.json")});
  EXPECT_EQ(fit.exitCode, 0) << fit.err;
  EXPECT_NE(fit.out.find("\t1023\n"), std::string::npos) << fit.out;
  EXPECT_EQ(fit.out.find("\t-1\t1023\n"), std::string::npos) << fit.out;
}

// Bytes that cannot be printed are escaped, so that the whole message
// reaches the terminal; text in UTF-8 stays as it is.
TEST(PrintableTextTest, EscapesWhatCannotBePrinted) {
  const struct {
    std::string text, printed;
  } cases[] = {
      {"\xce\xbb.npy \xf0\x9f\x99\x82", "\xce\xbb.npy \xf0\x9f\x99\x82"},  // kept
      {"a\nb\x7f", "a\\x0ab\\x7f"},
      {"\xff\xc0\x80\xed\xa0\x80\xce", "\\xff\\xc0\\x80\\xed\\xa0\\x80\\xce"},
  };
  for (const auto& c : cases) EXPECT_EQ(printableText(c.text), c.printed) << c.printed;
}

}  // namespace
}  // namespace tool
