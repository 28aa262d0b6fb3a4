// The host stand-in comparator gives the same bits on every platform and in
// both its renderings: a few outputs pinned exactly (they are also what the
// stand-in gave before its sums were split into lanes), checked on x86-64
// with the plain and the AVX2 sums, and under qemu-arm.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "FRecogInterface.h"
#include "platform/fast_paths.h"

namespace {

// Deterministic features from integer arithmetic only (no libm).
std::vector<float> feature(uint32_t seed, float scale) {
  std::vector<float> f(960);
  uint32_t state = seed * 2654435761u + 12345u;
  for (float& x : f) {
    state = state * 1664525u + 1013904223u;
    x = scale * (static_cast<float>(state >> 8) / static_cast<float>(1 << 24) - 0.5f);
  }
  return f;
}

TEST(HostComparator, PinnedBitsInEveryRendering) {
  CFRecogInterface comparator;
  std::vector<float> a = feature(1, 1.0f), b = feature(2, 1.0f), c = feature(3, 1e-3f);
  std::vector<float> nearA = a, minusA = a, zero(960, 0.0f);
  for (std::size_t i = 0; i < a.size(); i += 7) nearA[i] += 0.01f;
  for (float& x : minusA) x = -x;
  const struct {
    std::vector<float>* first;
    std::vector<float>* second;
    float expected;
  } pairs[] = {
      {&a, &b, 0x1.9498ep-7f},      {&a, &c, -0x1.f7a1c8p-7f}, {&b, &c, -0x1.b52298p-5f},
      {&a, &nearA, 0x1.fff4ecp-1f}, {&a, &a, 1.0f},            {&a, &minusA, -1.0f},
      {&a, &zero, 0.0f},
  };
  // The stand-in library's own rendering switch (it exports every symbol).
  for (bool plain : {true, false}) {
    detail::forcePlainRenderings(plain);
    for (const auto& p : pairs) {
      EXPECT_EQ(comparator.RunComparison(p.first->data(), p.second->data()), p.expected) << plain;
    }
  }
}

}  // namespace
