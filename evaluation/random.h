// The one seeded random generator of the synthetic galleries, the
// benchmarks and the tests: the same numbers for a seed on every platform
// and standard library.
#ifndef XVKFC_EVALUATION_RANDOM_H_
#define XVKFC_EVALUATION_RANDOM_H_

#include <cstdint>
#include <random>

namespace evaluation {

// std::mt19937's raw 32-bit output, which the C++ standard fixes, turned into
// numbers by plain arithmetic only: the library distributions
// (std::uniform_*_distribution, std::normal_distribution) give different
// numbers with libstdc++ and libc++. Starts no threads; one thread at a time.
class Random {
 public:
  explicit Random(uint32_t seed) : engine_(seed) {}

  // One raw draw, 0 .. 2^32 - 1.
  uint32_t operator()() { return engine_(); }

  // Uniform in [0, 1) from one raw draw.
  double uniform() { return engine_() * (1.0 / 4294967296.0); }

  // Uniform in [-1, 1) from one raw draw: 23 bits, exact in a float.
  float symmetric() {
    return static_cast<float>(engine_() >> 9) / static_cast<float>(1 << 22) - 1.0f;
  }

  // Approximately standard normal: the sum of twelve uniforms, less six
  // (no transcendental functions, so no libm differences).
  double normal() {
    double sum = 0.0;
    for (int i = 0; i < 12; ++i) sum += uniform();
    return sum - 6.0;
  }

  // Uniform integer in [0, n); the modulo bias is below 2^-20 for n < 4096.
  // REQUIRES: n >= 1.
  int below(int n) { return static_cast<int>(engine_() % static_cast<uint32_t>(n)); }

 private:
  std::mt19937 engine_;
};

}  // namespace evaluation

#endif  // XVKFC_EVALUATION_RANDOM_H_
