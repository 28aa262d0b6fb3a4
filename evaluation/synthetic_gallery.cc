#include "evaluation/synthetic_gallery.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "evaluation/random.h"
#include "interface/handle_support.h"

namespace evaluation {
namespace {

using xvkfc::kFeatureDim;

// Weight of the fresh direction in a look-alike: cosine to the other person
// about 1 / sqrt(1 + weight^2) = 0.7.
constexpr double kLookAlikeWeight = 1.0;

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

const float* Gallery::row(int i) const {
  return features.data() + static_cast<size_t>(i) * kFeatureDim;
}

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
  gallery.features.reserve(faces.size() * kFeatureDim);
  for (size_t i = 0; i < faces.size(); ++i) {
    gallery.features.insert(gallery.features.end(), faces[i].first.begin(), faces[i].first.end());
    gallery.faceIds.push_back(static_cast<int>(i));
    gallery.identities.push_back(faces[i].second);
  }
  return gallery;
}

Gallery firstFaces(const Gallery& gallery, int faces) {
  const int rows = std::min(faces, gallery.faces());
  Gallery first;
  first.features.assign(gallery.features.begin(),
                        gallery.features.begin() + static_cast<size_t>(rows) * kFeatureDim);
  first.faceIds.assign(gallery.faceIds.begin(), gallery.faceIds.begin() + rows);
  first.identities.assign(gallery.identities.begin(), gallery.identities.begin() + rows);
  return first;
}

std::vector<float> uniformGallery(int faces, int people, uint32_t seed) {
  Random random(seed);
  std::vector<std::vector<float>> centres(people, std::vector<float>(kFeatureDim));
  for (auto& centre : centres) {
    for (float& x : centre) x = random.symmetric();
  }
  std::vector<float> out(static_cast<size_t>(faces) * kFeatureDim);
  for (int i = 0; i < faces; ++i) {
    float* row = &out[static_cast<size_t>(i) * kFeatureDim];
    double norm = 0;
    for (int j = 0; j < kFeatureDim; ++j) {
      row[j] = centres[i % people][j] + 0.5f * random.symmetric();
      norm += static_cast<double>(row[j]) * row[j];
    }
    const float scale = static_cast<float>(1.0 / std::sqrt(norm));
    for (int j = 0; j < kFeatureDim; ++j) row[j] *= scale;
  }
  return out;
}

}  // namespace evaluation
