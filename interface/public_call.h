// The boundary of every itf_xvk_* operation.
#ifndef XVKFC_INTERFACE_PUBLIC_CALL_H_
#define XVKFC_INTERFACE_PUBLIC_CALL_H_

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

#endif  // XVKFC_INTERFACE_PUBLIC_CALL_H_
