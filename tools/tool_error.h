// The one kind of failure the program reports to its user.
#ifndef XVKFC_TOOLS_TOOL_ERROR_H_
#define XVKFC_TOOLS_TOOL_ERROR_H_

#include <stdexcept>
#include <string>

#include "tools/printable_text.h"

namespace tool {

// A problem with the user's input or with a library call, worded for the
// user: main prints what() as one line on standard error and exits with
// kExitBadInput. Messages name the file first ("features.npy: ..."). The
// message is kept with its unprintable bytes escaped: what() is a C string,
// which a NUL quoted from a binary file would otherwise cut short.
class ToolError : public std::runtime_error {
 public:
  explicit ToolError(const std::string& message) : std::runtime_error(printableText(message)) {}
};

// A mistake on the command line that the parser cannot see (a malformed
// rectangle, an option that needs another): main prints it like a ToolError
// and exits with kExitUsage.
class UsageError : public ToolError {
 public:
  explicit UsageError(const std::string& message) : ToolError(message) {}
};

// Exit codes of the program.
inline constexpr int kExitOk = 0;
inline constexpr int kExitBadInput = 1;  // bad input file or failed operation
inline constexpr int kExitUsage = 2;     // bad command line

}  // namespace tool

#endif  // XVKFC_TOOLS_TOOL_ERROR_H_
