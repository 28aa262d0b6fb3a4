#include "tools/gallery.h"

#include <cmath>
#include <random>
#include <utility>

namespace tool {
namespace {

// Weight of the fresh direction in a look-alike: cosine to the other person
// about 1 / sqrt(1 + weight^2) = 0.7.
constexpr double kLookAlikeWeight = 1.0;

class Random {
 public:
  explicit Random(uint32_t seed) : engine_(seed) {}
  // Uniform in [0, 1) from one raw 32-bit draw.
  double uniform() { return engine_() * (1.0 / 4294967296.0); }
  // Approximately standard normal: the sum of twelve uniforms, less six.
  double normal() {
    double sum = 0.0;
    for (int i = 0; i < 12; ++i) sum += uniform();
    return sum - 6.0;
  }
  // Uniform integer in [0, n); the modulo bias is below 2^-20 for our n.
  int below(int n) { return static_cast<int>(engine_() % static_cast<uint32_t>(n)); }

 private:
  std::mt19937 engine_;
};

std::vector<double> unitDirection(Random& random) {
  std::vector<double> v(kFeatureDim);
  double norm = 0.0;
  for (double& x : v) {
    x = random.normal();
    norm += x * x;
  }
  norm = std::sqrt(norm);
  for (double& x : v) x /= norm;
  return v;
}

// a + weight * b, scaled to unit length.
std::vector<double> blend(const std::vector<double>& a, const std::vector<double>& b,
                          double weight) {
  std::vector<double> v(kFeatureDim);
  double norm = 0.0;
  for (int i = 0; i < kFeatureDim; ++i) {
    v[i] = a[i] + weight * b[i];
    norm += v[i] * v[i];
  }
  norm = std::sqrt(norm);
  for (double& x : v) x /= norm;
  return v;
}

std::vector<float> toFloat(const std::vector<double>& v) {
  return std::vector<float>(v.begin(), v.end());
}

}  // namespace

Gallery makeGallery(const GalleryOptions& options) {
  Random random(options.seed);
  std::vector<std::pair<std::vector<float>, int>> faces;  // feature, identity

  std::vector<double> previous;
  for (int person = 0; person < options.people; ++person) {
    std::vector<double> direction = unitDirection(random);
    // The last `lookAlikes` people (never the first) resemble their predecessor.
    if (person > 0 && person >= options.people - options.lookAlikes) {
      direction = blend(previous, direction, kLookAlikeWeight);
    }
    const double noise =
        options.minNoise + (options.maxNoise - options.minNoise) * random.uniform();
    const int count = options.minFaces + random.below(options.maxFaces - options.minFaces + 1);
    for (int k = 0; k < count; ++k) {
      faces.emplace_back(toFloat(blend(direction, unitDirection(random), noise)), person);
    }
    previous = direction;
  }
  for (int lone = 0; lone < options.loneFaces; ++lone) {
    faces.emplace_back(toFloat(unitDirection(random)), options.people + lone);
  }
  const size_t originals = faces.size();
  for (int copy = 0; copy < options.duplicates && originals > 0; ++copy) {
    faces.push_back(faces[random.below(static_cast<int>(originals))]);
  }
  // Fisher-Yates, so that batches mix people as a photo library does.
  for (size_t i = faces.size(); i > 1; --i) {
    std::swap(faces[i - 1], faces[random.below(static_cast<int>(i))]);
  }

  Gallery gallery;
  for (size_t i = 0; i < faces.size(); ++i) {
    gallery.features.appendRow(faces[i].first.data());
    gallery.faceIds.push_back(static_cast<int>(i));
    gallery.identities.push_back(faces[i].second);
  }
  return gallery;
}

}  // namespace tool
