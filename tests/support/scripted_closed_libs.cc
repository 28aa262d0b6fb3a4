#include "support/scripted_closed_libs.h"

#include <cstdlib>
#include <cstring>

#include "FRecogInterface.h"
#include "LandmarkInterface.h"
#include "support/alloc_failure.h"

namespace testing_support {

uint64_t featureKey(const float* feature) {
  // FNV-1a over the bytes.
  const auto* bytes = reinterpret_cast<const unsigned char*>(feature);
  uint64_t hash = 1469598103934665603ull;
  for (size_t i = 0; i < 960 * sizeof(float); ++i) {
    hash ^= bytes[i];
    hash *= 1099511628211ull;
  }
  return hash;
}

void ScriptedClosedLibs::setScore(const std::vector<float>& a, const std::vector<float>& b,
                                  float score) {
  pairScores[{featureKey(a), featureKey(b)}] = score;
  pairScores[{featureKey(b), featureKey(a)}] = score;
}

float ScriptedClosedLibs::scoreFor(const float* a, const float* b) const {
  auto it = pairScores.find({featureKey(a), featureKey(b)});
  if (it != pairScores.end()) return it->second;
  return fallback(a, b);
}

ScriptedClosedLibs& scripted() {
  static ScriptedClosedLibs instance;
  return instance;
}

void resetScripted() { scripted() = ScriptedClosedLibs(); }

}  // namespace testing_support

using testing_support::scripted;
using Unrecorded = alloc_failure::Suspended;  // the doubles' own allocations

namespace {

// A lifecycle event; Init adds its value and model path. The text is built
// inside the scope too: it is the doubles' own.
void record(const char* event, bool init = false, int value = 0, const char* path = nullptr) {
  Unrecorded scope;
  std::string text = event;
  if (init) text += " " + std::to_string(value) + " " + (path ? path : "(null)");
  scripted().events.push_back(text);
}

}  // namespace

CFRecogInterface::CFRecogInterface() : state_(nullptr) { record("FR ctor"); }
CFRecogInterface::~CFRecogInterface() { record("FR dtor"); }

int CFRecogInterface::Init(int featureDim, const char* modelPath) {
  record("FR Init", true, featureDim, modelPath);
  return scripted().recognizerInitResult;
}

float* CFRecogInterface::RunFeatureExtraction(unsigned char* image, int width, int height,
                                              float* landmarks, bool* options,
                                              TAVOFEImageFormat::EImageFormat format) {
  Unrecorded scope;
  scripted().extractions.push_back(
      {std::vector<unsigned char>(image, image + static_cast<size_t>(width) * height * 3), width,
       height, landmarks, std::vector<bool>(options, options + 11), static_cast<int>(format)});
  if (scripted().extractorFails) return nullptr;
  auto* block = static_cast<float*>(std::malloc(960 * sizeof(float)));
  std::memcpy(block, scripted().featureToExtract.data(), 960 * sizeof(float));
  return block;
}

float CFRecogInterface::RunComparison(float* a, float* b) {
  Unrecorded scope;
  scripted().comparisons.push_back(
      {testing_support::featureKey(a), testing_support::featureKey(b), a});
  return scripted().scoreFor(a, b);
}

int CFRecogInterface::Release() {
  record("FR Release");
  return 1;
}

CLandmarkInterface::CLandmarkInterface() : state(nullptr), landmarks(nullptr) { record("LD ctor"); }
CLandmarkInterface::~CLandmarkInterface() { record("LD dtor"); }

int CLandmarkInterface::Init(int mode, const char* modelPath) {
  record("LD Init", true, mode, modelPath);
  return scripted().landmarkInitResult;
}

int CLandmarkInterface::RunLandmarkDetection(unsigned char* image, int width, int height,
                                             int channels, int flags, int left, int top,
                                             int rectWidth, int rectHeight) {
  Unrecorded scope;
  scripted().landmarkCalls.push_back(
      {image, width, height, channels, flags, left, top, rectWidth, rectHeight});
  landmarks = scripted().landmarksToReport;
  return 0;
}

int CLandmarkInterface::Release() {
  record("LD Release");
  return 1;
}
