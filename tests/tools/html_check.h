// Checks of the HTML report that do not trust the code that wrote it.
#ifndef XVKFC_TESTS_TOOLS_HTML_CHECK_H_
#define XVKFC_TESTS_TOOLS_HTML_CHECK_H_

#include <cstdint>
#include <string>
#include <vector>

namespace tool_test {

struct InlineImage {
  int declaredWidth = 0, declaredHeight = 0;  // the <img> attributes
  int width = 0, height = 0;                  // of the decoded PNG; 0 when it does not decode
  std::vector<uint8_t> rgb;                   // decoded pixels, 3 bytes each
};

// Every <img> whose src is a data:image/png;base64 URI, decoded.
std::vector<InlineImage> inlineImages(const std::string& html);

// Empty when the page starts with <!DOCTYPE html>, every non-void element is
// closed in order, no attribute or text refers outside the page (http:,
// https: or a protocol-relative //), and every inline image decodes at the
// size its tag declares; otherwise the first problem.
std::string htmlProblem(const std::string& html);

}  // namespace tool_test

#endif  // XVKFC_TESTS_TOOLS_HTML_CHECK_H_
