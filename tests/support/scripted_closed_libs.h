// Scripted test doubles of the two closed libraries. The engine's tests link
// these instead of the host stand-ins: a test sets what the libraries answer
// and reads back what they were asked.
#ifndef XVKFC_TESTS_SUPPORT_SCRIPTED_CLOSED_LIBS_H_
#define XVKFC_TESTS_SUPPORT_SCRIPTED_CLOSED_LIBS_H_

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace testing_support {

// Identity of a 960-float feature: a hash of its bytes. Two features with the
// same key are, for the tests' purposes, the same feature.
uint64_t featureKey(const float* feature);
inline uint64_t featureKey(const std::vector<float>& feature) { return featureKey(feature.data()); }

struct LandmarkCall {
  const unsigned char* image;
  int width, height, channels, flags, left, top, rectWidth, rectHeight;
};

struct ExtractionCall {
  std::vector<unsigned char> bgr;  // copy of width * height * 3 bytes
  int width, height;
  const float* landmarks;
  std::vector<bool> options;  // copy of the eleven flags
  int format;
};

struct Comparison {
  uint64_t first, second;  // featureKey of the two arguments, in call order
  const float* firstPointer;
};

// Everything the doubles answer and record. One process-wide instance,
// reset by every test (see scripted()).
struct ScriptedClosedLibs {
  // Lifecycle: results of Init, and a trace of constructor, Init, Release and
  // destructor calls ("FR ctor", "FR Init 960 <path>", "LD Release", ...).
  int recognizerInitResult = 1;
  int landmarkInitResult = 1;
  std::vector<std::string> events;

  // Comparator: a score set for the pair (either order), else `fallback`.
  std::map<std::pair<uint64_t, uint64_t>, float> pairScores;
  std::function<float(const float*, const float*)> fallback = [](const float*, const float*) {
    return 0.0f;
  };
  std::vector<Comparison> comparisons;
  void setScore(const std::vector<float>& a, const std::vector<float>& b, float score);
  float scoreFor(const float* a, const float* b) const;

  // Landmark detector: the points it reports (null: none found).
  float* landmarksToReport = nullptr;
  std::vector<LandmarkCall> landmarkCalls;

  // Extractor: the feature it returns in a malloc'd block, or null when
  // `extractorFails` is set.
  std::vector<float> featureToExtract = std::vector<float>(960, 0.0f);
  bool extractorFails = false;
  std::vector<ExtractionCall> extractions;
};

// The instance the doubles use. Reset to defaults before every test.
ScriptedClosedLibs& scripted();
void resetScripted();

}  // namespace testing_support

#endif  // XVKFC_TESTS_SUPPORT_SCRIPTED_CLOSED_LIBS_H_
