#include "tools/formats/file_kind.h"

namespace tool {

FileKind fileKindOf(const std::string& bytes) {
  if (bytes.compare(0, 6, "\x93NUMPY") == 0) return FileKind::kNumpy;
  if (bytes.compare(0, 8, "\x89PNG\r\n\x1a\n") == 0) return FileKind::kPng;
  if (bytes.compare(0, 3, "\xff\xd8\xff") == 0) return FileKind::kJpeg;
  const size_t first = bytes.find_first_not_of(" \t\r\n");
  if (first != std::string::npos && (bytes[first] == '{' || bytes[first] == '['))
    return FileKind::kJson;
  return FileKind::kOther;
}

const char* fileKindName(FileKind kind) {
  switch (kind) {
    case FileKind::kNumpy:
      return "a NumPy file";
    case FileKind::kJson:
      return "JSON";
    case FileKind::kPng:
      return "a PNG image";
    case FileKind::kJpeg:
      return "a JPEG image";
    case FileKind::kOther:
      break;
  }
  return "";
}

}  // namespace tool
