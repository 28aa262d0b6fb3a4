#include "tools/formats/id_list.h"

#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <set>
#include <sstream>

#include "tools/formats/atomic_file.h"
#include "tools/formats/file_kind.h"
#include "tools/formats/npy.h"
#include "tools/tool_error.h"

namespace tool {
namespace {

const char kTextHint[] =
    "write integers separated by blanks, commas or line breaks, '#' starting a comment";

// The value of a word of an integer list, or the reason it has none: an
// integer, or a number written with a fraction or exponent that is whole
// ("1.000000000000000000e+00", NumPy's savetxt default).
const char* wholeNumber(const std::string& word, int64_t& value) {
  if (word.find_first_not_of("+-0123456789") == std::string::npos) {
    errno = 0;
    char* end = nullptr;
    const long long integer = std::strtoll(word.c_str(), &end, 10);
    if (end == word.c_str() + word.size() && !word.empty()) {
      if (errno == ERANGE) return "does not fit a 32-bit int";
      value = integer;
      return nullptr;
    }
    return "is not a number";
  }
  // Decimal notation only: strtod would also take "nan", "inf" and hex.
  if (word.find_first_not_of("+-0123456789.eE") != std::string::npos) return "is not a number";
  char* end = nullptr;
  const double number = std::strtod(word.c_str(), &end);
  if (end != word.c_str() + word.size()) return "is not a number";
  if (number != std::floor(number)) return "is not a whole number";  // inf fails the next test
  if (!(std::fabs(number) < 0x1p62)) return "does not fit a 32-bit int";
  value = static_cast<int64_t>(number);
  return nullptr;
}

// The integer list in `bytes` (named `path`) when it is a NumPy file, as
// 64-bit values; its shape checked as parseIntList says.
std::vector<int64_t> npyIntegers(const std::string& bytes, const std::string& path,
                                 const std::string& what, bool allowPairs) {
  std::vector<int64_t> wide;
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
    std::fprintf(stderr, "xvkfc: note: %s: uint32 %s read as int32\n", path.c_str(), what.c_str());
  }
  for (size_t i = 0; i < static_cast<size_t>(array.elementCount()); ++i) {
    int64_t value = npyLittleEndianInt(array.data.data() + i * width, width);
    if (array.descr == "<u4") value = static_cast<uint32_t>(value);
    wide.push_back(value);
  }
  return wide;
}

int checkedInt(int64_t value, const std::string& where) {
  if (value < std::numeric_limits<int>::min() || value > std::numeric_limits<int>::max())
    throw ToolError(where + " does not fit a 32-bit int");
  return static_cast<int>(value);
}

}  // namespace

bool isNumpyList(const std::string& bytes, const std::string& path) {
  return fileKindOf(bytes) == FileKind::kNumpy || hasSuffix(path, ".npy");
}

std::vector<std::vector<int>> parseIntTextLines(const std::string& bytes, const std::string& path,
                                                const std::string& what) {
  const FileKind kind = fileKindOf(bytes);
  if (kind != FileKind::kOther) {
    throw ToolError(path + ": looks like " + fileKindName(kind) + ", not a list of " + what + ": " +
                    kTextHint + ", or save a NumPy int array (numpy.save)");
  }
  std::vector<std::vector<int>> lines;
  std::istringstream in(bytes);
  std::string line;
  size_t entries = 0;
  for (int number = 1; std::getline(in, line); ++number) {
    line = line.substr(0, line.find('#'));
    for (char& c : line) {
      if (c == ',') c = ' ';
    }
    std::istringstream words(line);
    std::vector<int> values;
    for (std::string word; words >> word; ++entries) {
      int64_t value = 0;
      const char* problem = wholeNumber(word, value);
      if (problem == nullptr && value >= std::numeric_limits<int>::min() &&
          value <= std::numeric_limits<int>::max()) {
        values.push_back(static_cast<int>(value));
        continue;
      }
      if (problem == nullptr) problem = "does not fit a 32-bit int";
      // A binary file may be one long word: quote only its start.
      const std::string quoted = word.size() > 40 ? word.substr(0, 40) + "..." : word;
      throw ToolError(path + ": line " + std::to_string(number) + ": '" + quoted + "' " + problem +
                      " (" + what + " entry " + std::to_string(entries) + "); " + kTextHint);
    }
    if (!values.empty()) lines.push_back(values);
  }
  return lines;
}

std::vector<int> readIntList(const std::string& path, const std::string& what, bool allowPairs) {
  return parseIntList(readWholeFile(path), path, what, allowPairs);
}

std::vector<int> parseIntList(const std::string& bytes, const std::string& path,
                              const std::string& what, bool allowPairs) {
  if (!isNumpyList(bytes, path)) {
    std::vector<int> values;
    for (const std::vector<int>& line : parseIntTextLines(bytes, path, what))
      values.insert(values.end(), line.begin(), line.end());
    return values;
  }
  std::vector<int> values;
  for (int64_t value : npyIntegers(bytes, path, what, allowPairs))
    values.push_back(
        checkedInt(value, path + ": " + what + " entry " + std::to_string(values.size())));
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
