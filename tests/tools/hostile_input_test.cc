// Inputs chosen to break the program: batch sizes up to int's limit, special
// output files, sources that never end, clusters without a representative.
// Each gets a clear error or a sane run.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>


#include "evaluation/synthetic_gallery.h"
#include "process.h"
#include "tools/formats/atomic_file.h"
#include "tools/formats/cluster_json.h"
#include "tools/formats/feature_file.h"
#include "tools/printable_text.h"
#include "tools/tool_error.h"

namespace tool {
namespace {

using tool_test::ProcessResult;
using tool_test::runProgram;

class HostileInputTest : public testing::Test {
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

// A batch size at or above the face count, up to the largest int, is one run.
TEST_F(HostileInputTest, BatchSizesPastTheFaceCountAreOneRun) {
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
TEST_F(HostileInputTest, SpecialOutputFilesAreWrittenInPlace) {
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
TEST_F(HostileInputTest, InputsPastTheirLimitsAreRefused) {
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
TEST_F(HostileInputTest, ClustersWithoutRepresentativeSurviveTheClustersFile) {
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
