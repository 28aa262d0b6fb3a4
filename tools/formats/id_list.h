// Integer lists: face ids and identity labels. Either NumPy arrays (a file
// that starts with the NumPy magic, or is named *.npy) of dtype <i4, <i8 or
// <u4 and shape (N,), or text: integers separated by blanks, commas or line
// breaks, '#' starting a comment to the end of its line. A number written
// with a fraction or an exponent is taken when it is whole
// ("1.000000000000000000e+00", what numpy.savetxt writes by default).
#ifndef XVKFC_TOOLS_FORMATS_ID_LIST_H_
#define XVKFC_TOOLS_FORMATS_ID_LIST_H_

#include <string>
#include <vector>

namespace tool {

// Reads an integer list. `what` names the list in messages ("face ids").
// A .npy list may be int32, int64 or uint32 (the last with a note on
// standard error); with `allowPairs` it may also have shape (N, 2), read row
// by row. Throws ToolError for a missing file, a word that is not an
// integer (saying how to write the list), a value outside the int range, a
// NumPy file of another dtype or shape, or a file that looks like JSON or
// an image.
std::vector<int> readIntList(const std::string& path, const std::string& what,
                             bool allowPairs = false);

// The same for `bytes`, the content of a file named `path`.
std::vector<int> parseIntList(const std::string& bytes, const std::string& path,
                              const std::string& what, bool allowPairs = false);

// True when the list in `bytes` (the file `path`) is to be read as NumPy.
bool isNumpyList(const std::string& bytes, const std::string& path);

// The integers of a text list line by line, lines without any left out.
// Throws as parseIntList.
std::vector<std::vector<int>> parseIntTextLines(const std::string& bytes, const std::string& path,
                                                const std::string& what);

// Face ids for `rows` features: the list in `path`, or 0..rows-1 when `path`
// is empty. Throws ToolError when the list does not have `rows` entries or
// names a face twice.
std::vector<int> readFaceIds(const std::string& path, int rows);

// The same for `bytes`, the content of the file `path` (not empty).
std::vector<int> parseFaceIds(const std::string& bytes, const std::string& path, int rows);

}  // namespace tool

#endif  // XVKFC_TOOLS_FORMATS_ID_LIST_H_
