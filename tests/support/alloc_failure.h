// Test-only allocation-failure injector. The test binary replaces the global
// operator new; a test can count the allocations of a piece of code and make
// a chosen one of them throw std::bad_alloc. A binary that also links
// malloc_failure.cc with -Wl,--wrap=malloc,--wrap=calloc counts the malloc
// and calloc calls of its own code too, and a failing one returns null.
//
//   long n = alloc_failure::countAllocations([&] { engine.init(&recognizer); });
//   for (long k = 1; k <= n; ++k) {
//     alloc_failure::failNth(k);          // the k-th allocation from now fails
//     ... run the code, check the documented outcome ...
//     alloc_failure::disarm();
//   }
#ifndef XVKFC_TESTS_SUPPORT_ALLOC_FAILURE_H_
#define XVKFC_TESTS_SUPPORT_ALLOC_FAILURE_H_

#include <functional>

namespace alloc_failure {

// Makes the n-th allocation from now (1-based) throw std::bad_alloc; later
// ones succeed again. n <= 0 disarms.
void failNth(long n);
void disarm();

// Counts one allocation; true when it is the one that must fail.
bool nextAllocationFails();

// Allocations counted since the program started.
long allocationsSoFar();

// Runs `body` and returns how many allocations it made.
long countAllocations(const std::function<void()>& body);

// While a Suspended lives, allocations are neither counted nor failed: the
// test doubles record their calls inside one, so only the engine's own
// allocations are the injector's. Inside it, a Resumed counts again: a test
// suspends its own allocations and resumes around the calls it sweeps.
class Scope {
 public:
  explicit Scope(bool counted);
  ~Scope();

 private:
  int savedDepth_;
};
struct Suspended : Scope {
  Suspended() : Scope(false) {}
};
struct Resumed : Scope {
  Resumed() : Scope(true) {}
};

}  // namespace alloc_failure

#endif  // XVKFC_TESTS_SUPPORT_ALLOC_FAILURE_H_
