// Host stand-in for libTAVO_FR: a deterministic feature of the face region and
// cosine similarity. It makes the pipeline run on a workstation; it is not a
// face recogniser.
#include <cmath>
#include <cstdlib>

#include "FRecogInterface.h"
#include "host_model_path.h"

namespace {

constexpr int kFeatureDim = 960;

}  // namespace

CFRecogInterface::CFRecogInterface() : state_(nullptr) {}

CFRecogInterface::~CFRecogInterface() = default;

int CFRecogInterface::Init(int featureDim, const char* modelPath) {
  if (featureDim != kFeatureDim) return 0;
  return host::isReadableDirectory(modelPath) ? 1 : -1;
}

float* CFRecogInterface::RunFeatureExtraction(unsigned char*, int, int, float*, bool*,
                                              TAVOFEImageFormat::EImageFormat) {
  return nullptr;
}

float CFRecogInterface::RunComparison(float* a, float* b) {
  double dot = 0.0, normA = 0.0, normB = 0.0;
  for (int i = 0; i < kFeatureDim; ++i) {
    dot += static_cast<double>(a[i]) * b[i];
    normA += static_cast<double>(a[i]) * a[i];
    normB += static_cast<double>(b[i]) * b[i];
  }
  if (normA == 0.0 || normB == 0.0) return 0.0f;
  double cosine = dot / (std::sqrt(normA) * std::sqrt(normB));
  // Rounding can push the cosine of a feature with itself just past 1.
  if (cosine > 1.0) cosine = 1.0;
  if (cosine < -1.0) cosine = -1.0;
  return static_cast<float>(cosine);
}

int CFRecogInterface::Release() { return 1; }
