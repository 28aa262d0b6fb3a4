// Message text that a terminal shows as it is: file content quoted in an
// error (a word of a binary ids file, a dtype) may hold any byte.
#ifndef XVKFC_TOOLS_PRINTABLE_TEXT_H_
#define XVKFC_TOOLS_PRINTABLE_TEXT_H_

#include <string>

namespace tool {

// `text` with every byte that is not printable written as \xHH: control
// bytes (NUL, newline, escape ...), DEL, and bytes that are not part of a
// well-formed UTF-8 sequence. Printable ASCII and well-formed UTF-8 (a file
// name in Greek) stay as they are, so text without such bytes is unchanged.
std::string printableText(const std::string& text);

}  // namespace tool

#endif  // XVKFC_TOOLS_PRINTABLE_TEXT_H_
