// The catch-log-fail pattern for allocation failures.
#ifndef XVKFC_PLATFORM_ALLOC_GUARD_H_
#define XVKFC_PLATFORM_ALLOC_GUARD_H_

#include <new>
#include <utility>

#include "platform/log.h"

namespace detail {

// How many allocation failures runOrLogAllocFailure has caught on this
// thread. An operation that must not end with a partial result compares it
// before and after (clustering/clustering_run.h).
inline unsigned long& caughtAllocFailures() {
  static thread_local unsigned long count = 0;
  return count;
}

// Runs `body`. If it throws std::bad_alloc, logs `message` as one debug line
// and returns false; otherwise returns true. Other exceptions pass through.
// Every place where the engine survives running out of memory is one call:
//   if (!runOrLogAllocFailure("malloc fail!!!(in init()", [&] { ... })) return 0;
template <typename Body>
bool runOrLogAllocFailure(const char* message, Body&& body) {
  try {
    std::forward<Body>(body)();
    return true;
  } catch (const std::bad_alloc&) {
    logDebug("%s", message);
    ++caughtAllocFailures();
    return false;
  }
}

}  // namespace detail

#endif  // XVKFC_PLATFORM_ALLOC_GUARD_H_
