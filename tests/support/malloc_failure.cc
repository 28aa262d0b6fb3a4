// malloc and calloc of the code linked into a test binary built with
// -Wl,--wrap=malloc,--wrap=calloc go through the allocation-failure injector:
// counted, and the chosen one returns null as malloc does when memory runs
// out. Shared libraries (libstdc++, liblog) keep the real ones.
#include <cstddef>

#include "support/alloc_failure.h"

extern "C" {

void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);

void* __wrap_malloc(std::size_t size) {
  return alloc_failure::nextAllocationFails() ? nullptr : __real_malloc(size);
}

void* __wrap_calloc(std::size_t count, std::size_t size) {
  return alloc_failure::nextAllocationFails() ? nullptr : __real_calloc(count, size);
}

}  // extern "C"
