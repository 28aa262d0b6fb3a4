// Random permutations from the process-wide 48-bit generator.
#ifndef XVKFC_NUMERIC_RAND_PERM_H_
#define XVKFC_NUMERIC_RAND_PERM_H_

#include "numeric/vec.h"
#include "platform/export.h"

// A random permutation of 0 .. n-1 by the inside-out Fisher-Yates shuffle,
// drawing exactly n values of lrand48() in index order. Reseeds the
// process-wide generator with srand48(time(NULL)) on every call and keeps no
// state of its own, so two calls within the same second return the same
// permutation. n = 0 gives an empty vector without drawing.
// Throws std::bad_alloc for a negative n, as an allocation of that many
// elements would.
XVKFC_EXPORT Vec<int> randPerm(const int& n);

#endif  // XVKFC_NUMERIC_RAND_PERM_H_
