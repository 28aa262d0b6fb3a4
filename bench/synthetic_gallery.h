// A deterministic gallery of face features for benchmarks: `people`
// identities, each face its identity's direction plus noise, unit length.
#ifndef XVKFC_BENCH_SYNTHETIC_GALLERY_H_
#define XVKFC_BENCH_SYNTHETIC_GALLERY_H_

#include <cmath>
#include <cstdint>
#include <vector>

namespace bench {

// xorshift64*: the same numbers on every platform and standard library.
class Random {
 public:
  explicit Random(uint64_t seed) : state_(seed) {}
  // Uniform in [-1, 1).
  float next() {
    state_ ^= state_ >> 12;
    state_ ^= state_ << 25;
    state_ ^= state_ >> 27;
    const uint64_t x = state_ * 2685821657736338717ull;
    return static_cast<float>(x >> 40) / static_cast<float>(1 << 23) - 1.0f;
  }

 private:
  uint64_t state_;
};

// `faces` features of 960 floats, row after row; face i belongs to person
// i % people. Faces of one person have cosine similarity of about 0.8.
inline std::vector<float> syntheticGallery(int faces, int people, uint64_t seed = 7767517) {
  Random random(seed);
  std::vector<std::vector<float>> centres(people, std::vector<float>(960));
  for (auto& centre : centres) {
    for (float& x : centre) x = random.next();
  }
  std::vector<float> out(static_cast<size_t>(faces) * 960);
  for (int i = 0; i < faces; ++i) {
    float* row = &out[static_cast<size_t>(i) * 960];
    double norm = 0;
    for (int j = 0; j < 960; ++j) {
      row[j] = centres[i % people][j] + 0.5f * random.next();
      norm += static_cast<double>(row[j]) * row[j];
    }
    const float scale = static_cast<float>(1.0 / std::sqrt(norm));
    for (int j = 0; j < 960; ++j) row[j] *= scale;
  }
  return out;
}

}  // namespace bench

#endif  // XVKFC_BENCH_SYNTHETIC_GALLERY_H_
