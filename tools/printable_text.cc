#include "tools/printable_text.h"

#include <cstddef>

namespace tool {
namespace {

bool isContinuation(unsigned char byte) { return (byte & 0xc0) == 0x80; }

// Length of the well-formed UTF-8 sequence of two or more bytes at `at`, or
// 0. The ranges of the second byte refuse overlong forms, UTF-16
// surrogates and code points past U+10FFFF (RFC 3629, section 4).
size_t utf8SequenceLength(const std::string& text, size_t at) {
  const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[at + i]); };
  const unsigned char lead = byte(0);
  size_t length = 0;
  unsigned char low = 0x80, high = 0xbf;  // allowed range of the second byte
  if (lead >= 0xc2 && lead <= 0xdf) {
    length = 2;
  } else if (lead >= 0xe0 && lead <= 0xef) {
    length = 3;
    if (lead == 0xe0) low = 0xa0;
    if (lead == 0xed) high = 0x9f;
  } else if (lead >= 0xf0 && lead <= 0xf4) {
    length = 4;
    if (lead == 0xf0) low = 0x90;
    if (lead == 0xf4) high = 0x8f;
  } else {
    return 0;
  }
  if (text.size() - at < length || byte(1) < low || byte(1) > high) return 0;
  for (size_t i = 2; i < length; ++i) {
    if (!isContinuation(byte(i))) return 0;
  }
  return length;
}

}  // namespace

std::string printableText(const std::string& text) {
  static const char kHex[] = "0123456789abcdef";
  std::string out;
  out.reserve(text.size());
  size_t i = 0;
  while (i < text.size()) {
    const unsigned char byte = static_cast<unsigned char>(text[i]);
    if (byte >= 0x20 && byte < 0x7f) {
      out += text[i++];
      continue;
    }
    const size_t length = byte >= 0x80 ? utf8SequenceLength(text, i) : 0;
    if (length != 0) {
      out.append(text, i, length);
      i += length;
      continue;
    }
    out += "\\x";
    out += kHex[byte >> 4];
    out += kHex[byte & 0xf];
    ++i;
  }
  return out;
}

}  // namespace tool
