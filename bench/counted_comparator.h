// Counts every call of the comparator, the engine's included: programs that
// link counted_comparator.cc with -Wl,--wrap on the mangled
// CFRecogInterface::RunComparison (see bench/CMakeLists.txt) route each call
// through a counter before the stand-in compares.
#ifndef XVKFC_BENCH_COUNTED_COMPARATOR_H_
#define XVKFC_BENCH_COUNTED_COMPARATOR_H_

#include <cstdint>

namespace bench {

// Comparator calls since the program started.
int64_t comparatorCalls();

}  // namespace bench

#endif  // XVKFC_BENCH_COUNTED_COMPARATOR_H_
