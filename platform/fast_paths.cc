#include "platform/fast_paths.h"

#include <atomic>

namespace detail {
namespace {

std::atomic<bool> plainForced{false};

#ifdef XVKFC_AVX2_RENDERINGS
bool cpuHasAvx2() {
  __builtin_cpu_init();  // idempotent; needed if asked before constructors have run
  return __builtin_cpu_supports("avx2");
}
#endif

}  // namespace

bool avx2Renderings() {
#ifdef XVKFC_AVX2_RENDERINGS
  static const bool hasAvx2 = cpuHasAvx2();
  return hasAvx2 && !plainForced.load(std::memory_order_relaxed);
#else
  return false;
#endif
}

void forcePlainRenderings(bool on) { plainForced.store(on, std::memory_order_relaxed); }

}  // namespace detail
