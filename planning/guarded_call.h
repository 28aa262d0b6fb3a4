// The no-exception boundary of planning's exported operations.
#ifndef XVKFC_PLANNING_GUARDED_CALL_H_
#define XVKFC_PLANNING_GUARDED_CALL_H_

#include <exception>
#include <utility>

#include "platform/log.h"

namespace detail {

// Runs `body` and returns its result; whatever escapes it (an allocation
// failure, a length error) is logged as one line naming `operation`, and
// `failure` is returned instead: an exception never unwinds into the
// application.
template <typename Result, typename Body>
Result guardPlanningCall(const char* operation, Result failure, Body&& body) {
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

#endif  // XVKFC_PLANNING_GUARDED_CALL_H_
