#include "tools/formats/id_list.h"

#include <cstdint>
#include <cstdio>
#include <limits>
#include <set>
#include <sstream>

#include "tools/formats/atomic_file.h"
#include "tools/formats/npy.h"
#include "tools/tool_error.h"

namespace tool {

std::vector<int> readIntList(const std::string& path, const std::string& what, bool allowPairs) {
  return parseIntList(readWholeFile(path), path, what, allowPairs);
}

std::vector<int> parseIntList(const std::string& bytes, const std::string& path,
                              const std::string& what, bool allowPairs) {
  std::vector<int64_t> wide;
  if (hasSuffix(path, ".npy")) {
    const NpyArray array = parseNpy(bytes, path);
    const size_t width = npyElementSize(array.descr);
    if (array.descr != "<i4" && array.descr != "<i8" && array.descr != "<u4") {
      throw ToolError(path + ": " + what +
                      " must be integers ('<i4', '<i8' or '<u4'), the file holds '" + array.descr +
                      "'");
    }
    const bool pairs = allowPairs && array.shape.size() == 2 && array.shape[1] == 2;
    if (array.shape.size() != 1 && !pairs) {
      throw ToolError(path + ": " + what + " must have shape (N,)" +
                      (allowPairs ? " or (N, 2)" : "") + ", the file holds " +
                      npyShapeText(array.shape));
    }
    if (array.descr == "<u4") {
      std::fprintf(stderr, "xvkfc: note: %s: uint32 %s read as int32\n", path.c_str(),
                   what.c_str());
    }
    for (size_t i = 0; i < static_cast<size_t>(array.elementCount()); ++i) {
      int64_t value = npyLittleEndianInt(array.data.data() + i * width, width);
      if (array.descr == "<u4") value = static_cast<uint32_t>(value);
      wide.push_back(value);
    }
  } else {
    std::istringstream in(bytes);
    std::string word;
    while (in >> word) {
      size_t used = 0;
      long long value = 0;
      try {
        value = std::stoll(word, &used);
      } catch (const std::exception&) {
        used = 0;
      }
      if (used != word.size()) {
        // A binary file may be one long word: quote only its start.
        const std::string quoted = word.size() > 40 ? word.substr(0, 40) + "..." : word;
        throw ToolError(path + ": '" + quoted + "' is not an integer (" + what + " entry " +
                        std::to_string(wide.size()) + ")");
      }
      wide.push_back(value);
    }
  }
  std::vector<int> values;
  for (int64_t value : wide) {
    if (value < std::numeric_limits<int>::min() || value > std::numeric_limits<int>::max()) {
      throw ToolError(path + ": " + what + " entry " + std::to_string(values.size()) +
                      " does not fit a 32-bit int");
    }
    values.push_back(static_cast<int>(value));
  }
  return values;
}

std::vector<int> readFaceIds(const std::string& path, int rows) {
  std::vector<int> ids;
  if (path.empty()) {
    for (int i = 0; i < rows; ++i) ids.push_back(i);
    return ids;
  }
  return parseFaceIds(readWholeFile(path), path, rows);
}

std::vector<int> parseFaceIds(const std::string& bytes, const std::string& path, int rows) {
  const std::vector<int> ids = parseIntList(bytes, path, "face ids");
  if (ids.size() != static_cast<size_t>(rows)) {
    throw ToolError(path + ": holds " + std::to_string(ids.size()) + " face ids for " +
                    std::to_string(rows) + " features");
  }
  std::set<int> seen;
  for (int id : ids) {
    if (!seen.insert(id).second)
      throw ToolError(path + ": duplicate face id " + std::to_string(id));
  }
  return ids;
}

}  // namespace tool
