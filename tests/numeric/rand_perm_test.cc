#include "numeric/rand_perm.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <new>
#include <numeric>

// The clock of this test binary (linked with -Wl,--wrap=time): the real one
// unless a test fixes it.
namespace {
time_t fixedClock = -1;
}  // namespace
extern "C" time_t __real_time(time_t* out);
extern "C" time_t __wrap_time(time_t* out) {
  if (fixedClock < 0) return __real_time(out);
  if (out != nullptr) *out = fixedClock;
  return fixedClock;
}

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

// The inside-out shuffle of lrand48 seeded with the clock's second on every
// call, drawing exactly n values: pinned permutations and the generator's
// next value after the call (lrand48 is one 48-bit generator everywhere; the
// figures were also checked against a separate rendering of it).
TEST(RandPerm, ShufflesTheStreamOfTheClocksSecond) {
  const struct {
    time_t second;
    Vec<int> permutation;
    long next;
  } cases[] = {
      {1000000, {1, 3, 4, 2, 8, 6, 7, 0, 9, 5}, 1363101672},
      {1000001, {6, 3, 1, 2, 9, 5, 0, 8, 7, 4}, 1159441170},
  };
  for (const auto& c : cases) {
    fixedClock = c.second;
    lrand48();  // earlier draws change nothing
    const Vec<int> p = randPerm(10);
    const long next = lrand48();
    EXPECT_EQ(p, c.permutation) << c.second;
    EXPECT_EQ(next, c.next) << c.second;
  }
  fixedClock = -1;
}

}  // namespace
