#include "counted_comparator.h"

class CFRecogInterface;

namespace {
int64_t calls = 0;
}  // namespace

// CFRecogInterface::RunComparison(float*, float*), counted.
extern "C" float __real__ZN16CFRecogInterface13RunComparisonEPfS0_(CFRecogInterface*, float*,
                                                                   float*);
extern "C" float __wrap__ZN16CFRecogInterface13RunComparisonEPfS0_(CFRecogInterface* self, float* a,
                                                                   float* b) {
  ++calls;
  return __real__ZN16CFRecogInterface13RunComparisonEPfS0_(self, a, b);
}

namespace bench {

int64_t comparatorCalls() { return calls; }

}  // namespace bench
