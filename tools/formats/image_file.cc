#include "tools/formats/image_file.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>

#include "tools/formats/atomic_file.h"
#include "tools/tool_error.h"

// The decoder itself is compiled in stb_image_decoder.cc.
#define STBI_NO_STDIO
#include <stb_image.h>

namespace tool {
namespace {

// Full-range BT.601, matching the library's conversion back:
// B = Y + 1.732446 (U - 128) and R = Y + 1.370705 (V - 128).
constexpr double kBlueFromU = 1.732446;
constexpr double kRedFromV = 1.370705;

const char kPngSignature[] = "\x89PNG\r\n\x1a\n";

unsigned char toByte(double value) {
  return static_cast<unsigned char>(std::clamp(std::lround(value), 0L, 255L));
}

// Why the decoder built here (stb_image 2.27, as Debian ships it) must not
// see a JPEG, or null. It copies a huffman table (DHT) of more than 256
// codes into 257-byte arrays without checking, and decodes a scan with a
// huffman or quantization table that no segment defined from memory it
// never set: a crafted file writes past the arrays, or reads garbage as
// table offsets (an index of -494 into 256 entries). Walks the markers as
// the decoder does: a segment is skipped by its length, entropy-coded data
// byte by byte up to the next marker; bytes past the end read as 0, as the
// decoder reads them.
const char* jpegProblem(const std::string& bytes) {
  const auto at = [&](size_t i) -> unsigned {
    return i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0u;
  };
  // The decoder tries PNG first and takes anything else as a JPEG, with
  // fill bytes before its start marker; what is neither fails there.
  if (bytes.compare(0, 8, kPngSignature) == 0) return nullptr;
  bool huffman[2][16] = {}, quantization[16] = {}, progressive = false;
  unsigned quantOf[256] = {};  // component id -> its quantization table (from SOF)
  size_t pos = 0;
  while (pos + 1 < bytes.size()) {
    const unsigned marker = at(pos + 1);
    if (at(pos) != 0xff || marker == 0xff) {
      ++pos;  // entropy-coded data, or fill before a marker
      continue;
    }
    if (marker == 0xd9) break;  // end of image
    // Byte stuffing, restart markers and others without a length.
    if (marker == 0x00 || marker == 0x01 || (marker >= 0xd0 && marker <= 0xd8)) {
      pos += 2;
      continue;
    }
    const size_t length = at(pos + 2) << 8 | at(pos + 3), body = pos + 4;
    const long end = static_cast<long>(length) - 2;  // body bytes
    if (marker == 0xc4) {  // tables of a class/id byte, 16 counts, the values
      for (long t = 0; t < end;) {
        unsigned codes = 0;
        for (size_t i = 1; i <= 16; ++i) codes += at(body + t + i);
        if (codes > 256) return "a huffman table of more than 256 codes";
        huffman[(at(body + t) >> 4) & 1][at(body + t) & 15] = true;
        t += 17 + static_cast<long>(codes);
      }
    } else if (marker == 0xdb) {  // tables of a precision/id byte, 64 values
      for (long t = 0; t < end; t += 1 + 64 * ((at(body + t) >> 4) ? 2 : 1)) {
        quantization[at(body + t) & 15] = true;
      }
    } else if (marker >= 0xc0 && marker <= 0xc2) {  // frame: id, sampling, table
      progressive = marker == 0xc2;
      for (unsigned c = 0; c < at(body + 5); ++c)
        quantOf[at(body + 6 + 3 * c)] = at(body + 8 + 3 * c);
    } else if (marker == 0xda) {  // scan: id and tables per component, then Ss
      const unsigned count = at(body), start = at(body + 1 + 2 * count);
      for (unsigned c = 0; c < count; ++c) {
        const unsigned tables = at(body + 2 + 2 * c);
        const bool dc = !progressive || start == 0, ac = !progressive || start != 0;
        if ((dc && !huffman[0][tables >> 4]) || (ac && !huffman[1][tables & 15]) ||
            !quantization[quantOf[at(body + 1 + 2 * c)] & 15]) {
          return "a scan that uses a table no segment defined";
        }
      }
    }
    pos += 2 + length;
  }
  return nullptr;
}

// Checks the chunks of a PNG before the decoder sees them. False when a
// chunk claims more bytes than the file has left: the decoder allocates an
// IDAT chunk's claimed length before reading it, so 60 bytes of a file could
// make it take 2 GiB. Empty IDAT chunks are left out of `decoded` (which
// stays empty when there are none): before the first data the decoder
// copies 0 bytes to a null buffer, which is undefined behaviour.
bool checkPngChunks(const std::string& bytes, std::string& decoded) {
  if (bytes.compare(0, 8, kPngSignature) != 0) return true;
  size_t pos = 8, kept = 0;  // bytes before `kept` are in `decoded` or still to copy
  while (bytes.size() - pos >= 8) {
    uint32_t length = 0;
    for (size_t i = 0; i < 4; ++i)
      length = length << 8 | static_cast<unsigned char>(bytes[pos + i]);
    if (length > bytes.size() - pos - 8) return false;  // data, and a CRC the decoder skips
    if (bytes.compare(pos + 4, 4, "IEND") == 0) break;
    const size_t next = pos + 8 + static_cast<size_t>(length) +
                        std::min<size_t>(4, bytes.size() - pos - 8 - length);
    if (length == 0 && bytes.compare(pos + 4, 4, "IDAT") == 0) {
      decoded.append(bytes, kept, pos - kept);
      kept = next;
    }
    pos = next;
  }
  if (kept != 0) decoded.append(bytes, kept, std::string::npos);
  return true;
}

}  // namespace

bool isCompressedImageName(const std::string& path) {
  return hasSuffix(path, ".png") || hasSuffix(path, ".jpg") || hasSuffix(path, ".jpeg");
}

YuvImage decodeToYuv420(const std::string& bytes, const std::string& source, size_t maxPixels) {
  if (bytes.size() > static_cast<size_t>(std::numeric_limits<int>::max())) {
    throw ToolError(source + ": image file too large");
  }
  std::string withoutEmptyData;
  if (!checkPngChunks(bytes, withoutEmptyData)) {
    throw ToolError(source + ": not a readable PNG or JPEG image (a chunk longer than the file)");
  }
  const std::string& input = withoutEmptyData.empty() ? bytes : withoutEmptyData;
  if (const char* problem = jpegProblem(bytes)) {
    throw ToolError(source + ": not a readable PNG or JPEG image (" + problem + ")");
  }
  int width = 0, height = 0, channels = 0;
  if (stbi_info_from_memory(reinterpret_cast<const unsigned char*>(input.data()),
                            static_cast<int>(input.size()), &width, &height, &channels) &&
      static_cast<uint64_t>(width) * static_cast<uint64_t>(height) > maxPixels) {
    throw ToolError(source + ": the image is " + std::to_string(width) + "x" +
                    std::to_string(height) + ", more than the " + std::to_string(maxPixels) +
                    " pixels an image may have");
  }
  unsigned char* rgb =
      stbi_load_from_memory(reinterpret_cast<const unsigned char*>(input.data()),
                            static_cast<int>(input.size()), &width, &height, &channels, 3);
  if (rgb == nullptr) {
    throw ToolError(source + ": not a readable PNG or JPEG image (" + stbi_failure_reason() + ")");
  }
  const std::unique_ptr<unsigned char, void (*)(void*)> owner(rgb, stbi_image_free);
  YuvImage image;
  image.width = width;
  image.height = height;
  const size_t pixels = static_cast<size_t>(width) * height;
  const int chromaWidth = (width + 1) / 2, chromaHeight = (height + 1) / 2;
  const size_t chroma = static_cast<size_t>(chromaWidth) * chromaHeight;
  image.planes.assign(pixels + 2 * chroma, 0);
  std::vector<double> luma(pixels);
  for (size_t i = 0; i < pixels; ++i) {
    const unsigned char* p = rgb + 3 * i;
    luma[i] = 0.299 * p[0] + 0.587 * p[1] + 0.114 * p[2];
    image.planes[i] = toByte(luma[i]);
  }
  for (int cy = 0; cy < chromaHeight; ++cy) {
    for (int cx = 0; cx < chromaWidth; ++cx) {
      double u = 0.0, v = 0.0;
      int count = 0;
      for (int y = 2 * cy; y < std::min(height, 2 * cy + 2); ++y) {
        for (int x = 2 * cx; x < std::min(width, 2 * cx + 2); ++x) {
          const size_t i = static_cast<size_t>(y) * width + x;
          u += (rgb[3 * i + 2] - luma[i]) / kBlueFromU;
          v += (rgb[3 * i] - luma[i]) / kRedFromV;
          ++count;
        }
      }
      const size_t c = static_cast<size_t>(cy) * chromaWidth + cx;
      image.planes[pixels + c] = toByte(128.0 + u / count);
      image.planes[pixels + chroma + c] = toByte(128.0 + v / count);
    }
  }
  return image;
}

}  // namespace tool
