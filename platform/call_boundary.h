// The no-exception boundary of every exported operation: the itf_xvk_*
// operations and those built on them (planned runs).
#ifndef XVKFC_PLATFORM_CALL_BOUNDARY_H_
#define XVKFC_PLATFORM_CALL_BOUNDARY_H_

#include <exception>
#include <utility>

#include "platform/log.h"

namespace detail {

// Runs `body` and returns its result. Whatever escapes it (an allocation
// failure the engine does not catch, a length error) is logged as one line
// naming the operation, and `failure` is returned instead: an exception must
// never unwind into the application.
template <typename Result, typename Body>
Result guardPublicCall(const char* operation, Result failure, Body&& body) {
  try {
    return std::forward<Body>(body)();
  } catch (const std::exception& e) {
    logDebug("%s failed: %s", operation, e.what());
  } catch (...) {
    logDebug("%s failed: unknown exception", operation);
  }
  return failure;
}

}  // namespace detail

#endif  // XVKFC_PLATFORM_CALL_BOUNDARY_H_
