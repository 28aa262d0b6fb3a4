// Host stand-in for libTAVO_FR: a deterministic feature of the face region and
// cosine similarity, computed in one fixed order of additions so that x86-64
// and 32-bit ARM give the same bits. It makes the pipeline run on a workstation; it is not a
// face recogniser.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>

#include <android/log.h>

#include "FRecogInterface.h"
#include "face_points.h"
#include "host_model_path.h"
#include "platform/fast_paths.h"

namespace {

constexpr int kFeatureDim = 960;

// The feature is a grey-level thumbnail of the face rectangle, 32 cells across
// and 30 down (960 values).
constexpr int kThumbnailWidth = 32;
constexpr int kThumbnailHeight = 30;
static_assert(kThumbnailWidth * kThumbnailHeight == kFeatureDim, "one value per cell");

// Half-open pixel ranges of the part of the face rectangle inside the image.
struct Region {
  int64_t left, top, right, bottom;
};

// Pixels [first, end) of cell `cell` of `cells` along a range of `length`
// starting at `start`; at least one pixel even when the range is shorter than
// the number of cells.
void cellSpan(int64_t start, int64_t length, int cell, int cells, int64_t* first, int64_t* end) {
  *first = start + cell * length / cells;
  *end = std::max(*first + 1, start + (cell + 1) * length / cells);
}

// Mean of B + 2G + R over the pixels of one cell, in double. Integer sums
// make equal regions give bit-identical means.
double cellGrey(const unsigned char* bgr, int width, const Region& region, int cellX, int cellY) {
  int64_t x0, x1, y0, y1;
  cellSpan(region.left, region.right - region.left, cellX, kThumbnailWidth, &x0, &x1);
  cellSpan(region.top, region.bottom - region.top, cellY, kThumbnailHeight, &y0, &y1);
  int64_t sum = 0;
  for (int64_t y = y0; y < y1; ++y) {
    for (int64_t x = x0; x < x1; ++x) {
      const unsigned char* pixel = bgr + 3 * (y * width + x);
      sum += pixel[0] + 2 * pixel[1] + pixel[2];
    }
  }
  return static_cast<double>(sum) / static_cast<double>((x1 - x0) * (y1 - y0));
}

// The three sums of a comparison (a.b, a.a, b.b) in one fixed order, the
// same on every target: element i goes to partial sum i % kLanes, each
// partial sum is a chain of double additions in element order, and the
// partial sums are folded by halving (lane k takes lane k + width). The
// products of two floats are exact in double, so only the additions round,
// and always in this order. Eight independent chains instead of one make the
// sums about five times faster where vector registers hold them.
constexpr int kLanes = 8;
static_assert(kFeatureDim % kLanes == 0, "whole groups of lanes");

struct ProductSums {
  double dot[kLanes] = {};
  double normA[kLanes] = {};
  double normB[kLanes] = {};

  void fold() {
    for (int width = kLanes / 2; width >= 1; width /= 2) {
      for (int k = 0; k < width; ++k) {
        dot[k] += dot[k + width];
        normA[k] += normA[k + width];
        normB[k] += normB[k + width];
      }
    }
  }
};

// The plain rendering: defines the result.
void sumProducts(const float* a, const float* b, ProductSums* sums) {
  for (int i = 0; i < kFeatureDim; i += kLanes) {
    for (int k = 0; k < kLanes; ++k) {
      const double x = a[i + k];
      const double y = b[i + k];
      sums->dot[k] += x * y;
      sums->normA[k] += x * x;
      sums->normB[k] += y * y;
    }
  }
}

#ifdef XVKFC_AVX2_RENDERINGS
// The same lanes in AVX2 registers: lanes 0-3 in the first register of each
// sum, 4-7 in the second; every lane does the plain rendering's operations
// (convert, multiply, add; no fused multiply-add), so the bits are the same.
__attribute__((target("avx2"))) void sumProductsAvx2(const float* a, const float* b,
                                                     ProductSums* sums) {
  __m256d dot0 = _mm256_setzero_pd(), dot1 = dot0, aa0 = dot0, aa1 = dot0, bb0 = dot0, bb1 = dot0;
  for (int i = 0; i < kFeatureDim; i += kLanes) {
    const __m256d x0 = _mm256_cvtps_pd(_mm_loadu_ps(a + i));
    const __m256d x1 = _mm256_cvtps_pd(_mm_loadu_ps(a + i + 4));
    const __m256d y0 = _mm256_cvtps_pd(_mm_loadu_ps(b + i));
    const __m256d y1 = _mm256_cvtps_pd(_mm_loadu_ps(b + i + 4));
    dot0 = _mm256_add_pd(dot0, _mm256_mul_pd(x0, y0));
    dot1 = _mm256_add_pd(dot1, _mm256_mul_pd(x1, y1));
    aa0 = _mm256_add_pd(aa0, _mm256_mul_pd(x0, x0));
    aa1 = _mm256_add_pd(aa1, _mm256_mul_pd(x1, x1));
    bb0 = _mm256_add_pd(bb0, _mm256_mul_pd(y0, y0));
    bb1 = _mm256_add_pd(bb1, _mm256_mul_pd(y1, y1));
  }
  _mm256_storeu_pd(sums->dot, dot0);
  _mm256_storeu_pd(sums->dot + 4, dot1);
  _mm256_storeu_pd(sums->normA, aa0);
  _mm256_storeu_pd(sums->normA + 4, aa1);
  _mm256_storeu_pd(sums->normB, bb0);
  _mm256_storeu_pd(sums->normB + 4, bb1);
}
#endif

ProductSums productSums(const float* a, const float* b) {
  ProductSums sums;
  XVKFC_PICK(sumProducts, sumProductsAvx2)(a, b, &sums);
  sums.fold();
  return sums;
}

}  // namespace

CFRecogInterface::CFRecogInterface() : state_(nullptr) {}

CFRecogInterface::~CFRecogInterface() = default;

int CFRecogInterface::Init(int featureDim, const char* modelPath) {
  if (featureDim != kFeatureDim) return 0;
  return host::isReadableDirectory(modelPath) ? 1 : -1;
}

float* CFRecogInterface::RunFeatureExtraction(unsigned char* image, int width, int height,
                                              float* landmarks, bool*,
                                              TAVOFEImageFormat::EImageFormat format) {
  if (image == nullptr || landmarks == nullptr || width < 1 || height < 1 ||
      format != TAVOFEImageFormat::kBgr24) {
    return nullptr;
  }
  host::Rect face;
  if (!host::faceFromPoints(landmarks, &face)) return nullptr;
  const Region region = {std::max<int64_t>(face.left, 0), std::max<int64_t>(face.top, 0),
                         std::min<int64_t>(static_cast<int64_t>(face.left) + face.width, width),
                         std::min<int64_t>(static_cast<int64_t>(face.top) + face.height, height)};
  if (region.right <= region.left || region.bottom <= region.top) return nullptr;

  double cells[kFeatureDim];
  double total = 0.0;
  for (int y = 0; y < kThumbnailHeight; ++y) {
    for (int x = 0; x < kThumbnailWidth; ++x) {
      cells[y * kThumbnailWidth + x] = cellGrey(image, width, region, x, y);
      total += cells[y * kThumbnailWidth + x];
    }
  }
  const double mean = total / kFeatureDim;
  double squares = 0.0;
  for (double& cell : cells) {
    cell -= mean;
    squares += cell * cell;
  }
  // A region of one grey level has no pattern to describe.
  if (squares == 0.0) return nullptr;

  auto* feature = static_cast<float*>(std::malloc(kFeatureDim * sizeof(float)));
  if (feature == nullptr) {
    // The caller cannot tell this null from "no feature"; the log can.
    __android_log_print(ANDROID_LOG_DEBUG, "TAVO_FR", "RunFeatureExtraction: malloc fail");
    return nullptr;
  }
  const double norm = std::sqrt(squares);
  for (int i = 0; i < kFeatureDim; ++i) feature[i] = static_cast<float>(cells[i] / norm);
  return feature;
}

float CFRecogInterface::RunComparison(float* a, float* b) {
  const ProductSums sums = productSums(a, b);
  const double dot = sums.dot[0], normA = sums.normA[0], normB = sums.normB[0];
  if (normA == 0.0 || normB == 0.0) return 0.0f;
  double cosine = dot / (std::sqrt(normA) * std::sqrt(normB));
  // Rounding can push the cosine of a feature with itself just past 1.
  if (cosine > 1.0) cosine = 1.0;
  if (cosine < -1.0) cosine = -1.0;
  return static_cast<float>(cosine);
}

int CFRecogInterface::Release() { return 1; }
