#include "numeric/rand_perm.h"

#include <cstdlib>
#include <ctime>
#include <new>

Vec<int> randPerm(const int& n) {
  srand48(time(nullptr));
  if (n < 0) throw std::bad_alloc();
  Vec<int> p(n);
  for (int i = 0; i < n; ++i) {
    const long r = lrand48();
    const int j = static_cast<int>(r % (i + 1));
    p[i] = p[j];
    p[j] = i;
  }
  return p;
}
