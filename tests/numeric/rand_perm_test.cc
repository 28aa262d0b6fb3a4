#include "numeric/rand_perm.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <new>
#include <numeric>

namespace {

TEST(RandPerm, IsAPermutation) {
  EXPECT_TRUE(randPerm(0).empty());
  Vec<int> p = randPerm(257);
  std::sort(p.begin(), p.end());
  Vec<int> expected(257);
  std::iota(expected.begin(), expected.end(), 0);
  EXPECT_EQ(p, expected);
  EXPECT_THROW(randPerm(-1), std::bad_alloc);  // a negative size fails as out of memory
}

// Seeding from the clock and drawing exactly n numbers is what makes two
// calls within one second agree. Retried until the clock reads the same
// second before and after, so the check never straddles a boundary.
TEST(RandPerm, SeedsFromTheClockAndDrawsExactlyN) {
  for (int attempt = 0; attempt < 10; ++attempt) {
    const time_t now = time(nullptr);
    const Vec<int> first = randPerm(40);
    const long next = lrand48();
    srand48(now);
    for (int i = 0; i < 40; ++i) lrand48();
    const long expected = lrand48();
    const Vec<int> second = randPerm(40);
    if (time(nullptr) != now) continue;
    EXPECT_EQ(next, expected);
    EXPECT_EQ(first, second);
    return;
  }
  FAIL() << "could not run within one second";
}

}  // namespace
