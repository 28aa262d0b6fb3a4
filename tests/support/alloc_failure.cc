#include "support/alloc_failure.h"

#include <cstdlib>
#include <new>

namespace {

long countdown = 0;  // > 0: allocations left until the one that fails
long counted = 0;
int suspendDepth = 0;

void* allocate(std::size_t size) {
  if (suspendDepth == 0) {
    ++counted;
    if (countdown > 0 && --countdown == 0) throw std::bad_alloc();
  }
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

long countAllocations(const std::function<void()>& body) {
  const long before = counted;
  body();
  return counted - before;
}

Suspended::Suspended() { ++suspendDepth; }
Suspended::~Suspended() { --suspendDepth; }

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
