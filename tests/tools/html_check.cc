#include "html_check.h"

#include <cctype>
#include <set>

#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_STATIC
#define STBI_ONLY_PNG
#include <stb_image.h>

namespace tool_test {
namespace {

std::string decodeBase64(const std::string& text) {
  static const std::string kDigits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string out;
  uint32_t group = 0;
  for (size_t i = 0, value; i < text.size() && (value = kDigits.find(text[i])) != text.npos; ++i) {
    group = (group << 6) | static_cast<uint32_t>(value);  // stops at the padding
    if (i % 4) out += static_cast<char>((group >> (6 - 2 * (i % 4))) & 0xff);
  }
  return out;
}

int attribute(const std::string& tag, const std::string& name) {
  const size_t at = tag.find(" " + name + "=\"");
  return at == std::string::npos ? -1 : std::atoi(tag.c_str() + at + name.size() + 3);
}

}  // namespace

std::vector<InlineImage> inlineImages(const std::string& html) {
  const std::string prefix = "src=\"data:image/png;base64,";
  std::vector<InlineImage> images;
  for (size_t at = html.find("<img"); at != std::string::npos; at = html.find("<img", at + 1)) {
    const std::string tag = html.substr(at, html.find('>', at) - at);
    const size_t src = tag.find(prefix);
    if (src == std::string::npos) continue;
    const size_t start = src + prefix.size();
    const std::string png = decodeBase64(tag.substr(start, tag.find('"', start) - start));
    InlineImage image;
    image.declaredWidth = attribute(tag, "width");
    image.declaredHeight = attribute(tag, "height");
    int channels = 0;
    unsigned char* pixels = stbi_load_from_memory(
        reinterpret_cast<const unsigned char*>(png.data()), static_cast<int>(png.size()),
        &image.width, &image.height, &channels, 3);
    if (pixels == nullptr) image.width = image.height = 0;
    image.rgb.assign(pixels, pixels + static_cast<size_t>(image.width) * image.height * 3);
    stbi_image_free(pixels);
    images.push_back(std::move(image));
  }
  return images;
}

std::string htmlProblem(const std::string& html) {
  if (html.rfind("<!DOCTYPE html>", 0) != 0) return "no doctype";
  for (const char* outside : {"http:", "https:", "=\"//", "<script"}) {
    if (html.find(outside) != std::string::npos) return std::string("refers outside: ") + outside;
  }
  for (const InlineImage& image : inlineImages(html)) {
    if (image.width == 0) return "an inline image does not decode";
    if (image.width != image.declaredWidth || image.height != image.declaredHeight)
      return "an inline image is not declared at its own size";
  }
  static const std::set<std::string> kVoid = {"meta", "img"};
  std::vector<std::string> open;
  for (size_t at = html.find('<', 1); at != std::string::npos; at = html.find('<', at + 1)) {
    const bool closing = html[at + 1] == '/';
    size_t nameStart = at + (closing ? 2 : 1), nameEnd = nameStart;
    while (nameEnd < html.size() && std::isalnum(static_cast<unsigned char>(html[nameEnd])))
      ++nameEnd;
    const std::string name = html.substr(nameStart, nameEnd - nameStart);
    if (name.empty()) return "a '<' that starts no tag at byte " + std::to_string(at);
    if (html.find('>', at) == std::string::npos) return "unterminated tag " + name;
    if (closing) {
      if (open.empty() || open.back() != name) return "</" + name + "> closes nothing open";
      open.pop_back();
    } else if (!kVoid.count(name)) {
      open.push_back(name);
    }
  }
  return open.empty() ? "" : "<" + open.back() + "> is never closed";
}

}  // namespace tool_test
