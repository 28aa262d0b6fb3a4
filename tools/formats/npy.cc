#include "tools/formats/npy.h"

#include <cctype>
#include <cstdint>

#include "tools/formats/file_kind.h"
#include "tools/tool_error.h"

namespace tool {
namespace {

const char kMagic[] = "\x93NUMPY";
constexpr size_t kMagicLength = 6;
// Version 1 headers are padded so that the data starts on this boundary.
constexpr size_t kHeaderAlignment = 64;
// Largest dimension accepted; far beyond any file, small enough that
// products of two stay exact in 64 bits.
constexpr uint64_t kMaxDimension = uint64_t{1} << 30;

size_t readLittleEndian(const std::string& bytes, size_t at, size_t width) {
  size_t value = 0;
  for (size_t i = 0; i < width; ++i) {
    value |= static_cast<size_t>(static_cast<unsigned char>(bytes[at + i])) << (8 * i);
  }
  return value;
}

// The text after `'key':` in the header dictionary, up to the end of the
// header; empty when the key is absent.
std::string valueAfterKey(const std::string& header, const std::string& key) {
  const std::string quoted[] = {"'" + key + "'", "\"" + key + "\""};
  for (const std::string& q : quoted) {
    size_t at = header.find(q);
    if (at == std::string::npos) continue;
    at = header.find(':', at + q.size());
    if (at == std::string::npos) return "";
    ++at;
    while (at < header.size() && std::isspace(static_cast<unsigned char>(header[at]))) ++at;
    return header.substr(at);
  }
  return "";
}

std::vector<uint64_t> parseShape(const std::string& value, const std::string& source) {
  if (value.empty() || value[0] != '(') throw ToolError(source + ": malformed NumPy shape");
  const size_t close = value.find(')');
  if (close == std::string::npos) throw ToolError(source + ": malformed NumPy shape");
  std::vector<uint64_t> shape;
  size_t i = 1;
  while (i < close) {
    const char c = value[i];
    if (std::isdigit(static_cast<unsigned char>(c))) {
      uint64_t dim = 0;
      while (i < close && std::isdigit(static_cast<unsigned char>(value[i]))) {
        dim = dim * 10 + static_cast<uint64_t>(value[i] - '0');
        if (dim > kMaxDimension) throw ToolError(source + ": NumPy shape too large");
        ++i;
      }
      shape.push_back(dim);
    } else if (c == ',' || c == ' ' || c == 'L') {
      ++i;
    } else {
      throw ToolError(source + ": malformed NumPy shape");
    }
  }
  return shape;
}

}  // namespace

uint64_t NpyArray::elementCount() const {
  uint64_t count = 1;
  for (uint64_t dim : shape) {
    // Saturates instead of wrapping, so that a huge shape reads as truncated.
    count = dim != 0 && count > kMaxDimension * kMaxDimension / dim ? UINT64_MAX : count * dim;
  }
  return count;
}

std::string int32Data(const std::vector<int>& values) {
  std::string out;
  out.reserve(values.size() * 4);
  for (int value : values) {
    const uint32_t bits = static_cast<uint32_t>(value);
    for (int i = 0; i < 4; ++i) out += static_cast<char>((bits >> (8 * i)) & 0xff);
  }
  return out;
}

size_t npyElementSize(const std::string& descr) {
  if (descr == "<f4" || descr == "<i4" || descr == "<u4") return 4;
  if (descr == "<f8" || descr == "<i8") return 8;
  return 0;
}

NpyArray parseNpy(const std::string& bytes, const std::string& source) {
  if (bytes.size() < kMagicLength + 4 || bytes.compare(0, kMagicLength, kMagic) != 0) {
    const FileKind kind = fileKindOf(bytes);
    throw ToolError(source + ": not a NumPy .npy file" +
                    (kind == FileKind::kOther
                         ? std::string()
                         : std::string(", it looks like ") + fileKindName(kind)));
  }
  const int major = static_cast<unsigned char>(bytes[kMagicLength]);
  const size_t lengthWidth = major == 1 ? 2 : 4;
  if (major < 1 || major > 3) {
    throw ToolError(source + ": unsupported .npy format version " + std::to_string(major));
  }
  const size_t headerStart = kMagicLength + 2 + lengthWidth;
  if (bytes.size() < headerStart) throw ToolError(source + ": truncated .npy header");
  const size_t headerLength = readLittleEndian(bytes, kMagicLength + 2, lengthWidth);
  if (headerLength > bytes.size() - headerStart) {
    throw ToolError(source + ": truncated .npy header");
  }
  const std::string header = bytes.substr(headerStart, headerLength);

  NpyArray array;
  const std::string descrValue = valueAfterKey(header, "descr");
  if (descrValue.size() < 2 || (descrValue[0] != '\'' && descrValue[0] != '"')) {
    throw ToolError(source + ": .npy header has no dtype");
  }
  const size_t descrEnd = descrValue.find(descrValue[0], 1);
  if (descrEnd == std::string::npos) throw ToolError(source + ": .npy header has no dtype");
  array.descr = descrValue.substr(1, descrEnd - 1);

  if (valueAfterKey(header, "fortran_order").compare(0, 4, "True") == 0) {
    throw ToolError(source + ": Fortran-ordered arrays are not supported (save with C order)");
  }
  array.shape = parseShape(valueAfterKey(header, "shape"), source);

  const size_t elementSize = npyElementSize(array.descr);
  const size_t dataStart = headerStart + headerLength;
  if (elementSize != 0) {
    const uint64_t count = array.elementCount();
    const uint64_t expected = count == UINT64_MAX ? UINT64_MAX : count * elementSize;
    const uint64_t present = bytes.size() - dataStart;
    if (present < expected) {
      throw ToolError(source + ": truncated: the shape needs " + std::to_string(expected) +
                      " data bytes, the file has " + std::to_string(present));
    }
    if (present > expected) {
      throw ToolError(source + ": " + std::to_string(present - expected) +
                      " bytes after the array data");
    }
  }
  array.data = bytes.substr(dataStart);
  return array;
}

std::string encodeNpy(const std::string& descr, const std::vector<uint64_t>& shape,
                      const std::string& data) {
  std::string shapeText = "(";
  for (size_t i = 0; i < shape.size(); ++i) {
    shapeText += std::to_string(shape[i]);
    if (shape.size() == 1 || i + 1 < shape.size()) shapeText += ",";
    if (i + 1 < shape.size()) shapeText += " ";
  }
  shapeText += ")";
  std::string header =
      "{'descr': '" + descr + "', 'fortran_order': False, 'shape': " + shapeText + ", }";
  // Magic, version, 2-byte length, header, spaces and a newline: a multiple
  // of 64 bytes in all.
  const size_t fixed = kMagicLength + 2 + 2;
  const size_t total =
      (fixed + header.size() + 1 + kHeaderAlignment - 1) / kHeaderAlignment * kHeaderAlignment;
  header.append(total - fixed - header.size() - 1, ' ');
  header += '\n';

  std::string bytes(kMagic, kMagicLength);
  bytes += '\x01';
  bytes += '\x00';
  bytes += static_cast<char>(header.size() & 0xff);
  bytes += static_cast<char>((header.size() >> 8) & 0xff);
  bytes += header;
  bytes += data;
  return bytes;
}

int64_t npyLittleEndianInt(const char* bytes, size_t width) {
  uint64_t bits = 0;
  for (size_t i = 0; i < width; ++i)
    bits |= static_cast<uint64_t>(static_cast<unsigned char>(bytes[i])) << (8 * i);
  if (width == 4) return static_cast<int32_t>(static_cast<uint32_t>(bits));
  return static_cast<int64_t>(bits);
}

std::string npyShapeText(const std::vector<uint64_t>& shape) {
  std::string text = "(";
  for (size_t i = 0; i < shape.size(); ++i) text += (i ? ", " : "") + std::to_string(shape[i]);
  return text + ")";
}

}  // namespace tool
