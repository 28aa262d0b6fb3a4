// NumPy .npy files: the subset the program reads and writes.
#ifndef XVKFC_TOOLS_FORMATS_NPY_H_
#define XVKFC_TOOLS_FORMATS_NPY_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tool {

// One array of a .npy file: its dtype text as NumPy writes it ("<f4", "<i4",
// "<i8"), its shape, and its element bytes in C (row-major) order.
struct NpyArray {
  std::string descr;
  std::vector<uint64_t> shape;  // 64 bits, so that a 32-bit build cannot overflow it
  std::string data;

  // Product of the shape; 1 for a 0-dimensional array.
  uint64_t elementCount() const;
};

// Parses the bytes of a .npy file (format versions 1, 2 and 3). `source`
// names the file in messages. Throws ToolError for a missing magic string, a
// header that is not a NumPy header, Fortran order, or fewer data bytes than
// the shape needs ("truncated"). Extra bytes after the data are an error too.
NpyArray parseNpy(const std::string& bytes, const std::string& source);

// Bytes of a version 1.0 .npy file holding `data` with the given dtype and
// shape. REQUIRES: data.size() == element count * element size of `descr`.
std::string encodeNpy(const std::string& descr, const std::vector<uint64_t>& shape,
                      const std::string& data);

// Little-endian int32 bytes of `values`: the data of an "<i4" array.
std::string int32Data(const std::vector<int>& values);

// Bytes per element of a dtype text; 0 for a dtype the program does not know.
size_t npyElementSize(const std::string& descr);

// The signed integer in `width` (4 or 8) little-endian bytes.
int64_t npyLittleEndianInt(const char* bytes, size_t width);

// A shape as NumPy prints it: "(2, 960)".
std::string npyShapeText(const std::vector<uint64_t>& shape);

}  // namespace tool

#endif  // XVKFC_TOOLS_FORMATS_NPY_H_
