#include "support/alloc_failure.h"

#include <cstdlib>
#include <new>

namespace {

long countdown = 0;  // > 0: allocations left until the one that fails
long counted = 0;
int suspendDepth = 0;

void* allocate(std::size_t size) {
  if (alloc_failure::nextAllocationFails()) throw std::bad_alloc();
  // The block itself is not one more allocation of the code under test
  // where malloc is counted too (malloc_failure.cc).
  alloc_failure::Suspended inside;
  void* p = std::malloc(size == 0 ? 1 : size);
  if (p == nullptr) throw std::bad_alloc();
  return p;
}

void* allocateOrNull(std::size_t size) noexcept {
  try {
    return allocate(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

}  // namespace

namespace alloc_failure {

void failNth(long n) { countdown = n > 0 ? n : 0; }

void disarm() { countdown = 0; }

bool nextAllocationFails() {
  if (suspendDepth > 0) return false;
  ++counted;
  return countdown > 0 && --countdown == 0;
}

long allocationsSoFar() { return counted; }

long countAllocations(const std::function<void()>& body) {
  const long before = counted;
  body();
  return counted - before;
}

Scope::Scope(bool counted) : savedDepth_(suspendDepth) {
  suspendDepth = counted ? 0 : suspendDepth + 1;
}
Scope::~Scope() { suspendDepth = savedDepth_; }

}  // namespace alloc_failure

void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return allocateOrNull(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return allocateOrNull(size);
}
void operator delete(void* p) noexcept { std::free(p); }
void operator delete[](void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
void operator delete[](void* p, std::size_t) noexcept { std::free(p); }
void operator delete(void* p, const std::nothrow_t&) noexcept { std::free(p); }
void operator delete[](void* p, const std::nothrow_t&) noexcept { std::free(p); }
