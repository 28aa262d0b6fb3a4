#include "numeric/rand_perm.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <new>
#include <numeric>

namespace {

// Runs `body` until the clock reads the same whole second before and after
// it, so that a test about same-second behaviour never straddles a boundary.
template <typename Body>
void withinOneSecond(Body body) {
  for (int attempt = 0; attempt < 10; ++attempt) {
    const time_t before = time(nullptr);
    body(before);
    if (time(nullptr) == before) return;
  }
  FAIL() << "could not run within one second";
}

TEST(RandPerm, SmallSizes) {
  EXPECT_TRUE(randPerm(0).empty());
  EXPECT_EQ(randPerm(1), Vec<int>({0}));
}

TEST(RandPerm, IsAPermutation) {
  Vec<int> p = randPerm(257);
  std::sort(p.begin(), p.end());
  Vec<int> expected(257);
  std::iota(expected.begin(), expected.end(), 0);
  EXPECT_EQ(p, expected);
}

TEST(RandPerm, CallsWithinOneSecondAgree) {
  withinOneSecond([](time_t) {
    const Vec<int> first = randPerm(50);
    const Vec<int> second = randPerm(50);
    EXPECT_EQ(first, second);
  });
}

TEST(RandPerm, SeedsFromTheClockAndDrawsExactlyN) {
  withinOneSecond([](time_t now) {
    randPerm(40);
    const long next = lrand48();
    srand48(now);
    for (int i = 0; i < 40; ++i) lrand48();
    EXPECT_EQ(lrand48(), next);
  });
}

TEST(RandPerm, NegativeSizeFailsAsOutOfMemory) { EXPECT_THROW(randPerm(-1), std::bad_alloc); }

}  // namespace
