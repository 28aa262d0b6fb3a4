// Integer lists: face ids and identity labels. Either "*.npy" arrays of
// dtype <i4 or <i8 and shape (N,), or text files of whitespace-separated
// integers.
#ifndef XVKFC_TOOLS_FORMATS_ID_LIST_H_
#define XVKFC_TOOLS_FORMATS_ID_LIST_H_

#include <string>
#include <vector>

namespace tool {

// Reads an integer list. `what` names the list in messages ("face ids").
// A .npy list may be int32, int64 or uint32 (the last with a note on
// standard error); with `allowPairs` it may also have shape (N, 2), read row
// by row. Throws ToolError for a missing file, a word that is not an
// integer, a value outside the int range, or a .npy file of another dtype or
// shape.
std::vector<int> readIntList(const std::string& path, const std::string& what,
                             bool allowPairs = false);

// The same for `bytes`, the content of a file named `path`.
std::vector<int> parseIntList(const std::string& bytes, const std::string& path,
                              const std::string& what, bool allowPairs = false);

// Face ids for `rows` features: the list in `path`, or 0..rows-1 when `path`
// is empty. Throws ToolError when the list does not have `rows` entries or
// names a face twice.
std::vector<int> readFaceIds(const std::string& path, int rows);

// The same for `bytes`, the content of the file `path` (not empty).
std::vector<int> parseFaceIds(const std::string& bytes, const std::string& path, int rows);

}  // namespace tool

#endif  // XVKFC_TOOLS_FORMATS_ID_LIST_H_
