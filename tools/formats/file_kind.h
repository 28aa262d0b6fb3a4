// What an input file looks like by its first bytes, so that a reader given
// another kind of file says which kind instead of failing on its content.
#ifndef XVKFC_TOOLS_FORMATS_FILE_KIND_H_
#define XVKFC_TOOLS_FORMATS_FILE_KIND_H_

#include <string>

namespace tool {

enum class FileKind {
  kNumpy,  // starts with the .npy magic "\x93NUMPY"
  kJson,   // first byte that is not a blank is '{' or '['
  kPng,    // the PNG signature
  kJpeg,   // a JPEG start-of-image marker, FF D8 FF
  kOther,  // text, raw values, anything else
};

FileKind fileKindOf(const std::string& bytes);

// "a NumPy file", "JSON", "a PNG image", "a JPEG image"; "" for kOther.
const char* fileKindName(FileKind kind);

}  // namespace tool

#endif  // XVKFC_TOOLS_FORMATS_FILE_KIND_H_
