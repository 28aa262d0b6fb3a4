#include "tools/formats/labels.h"

#include "tools/formats/atomic_file.h"
#include "tools/formats/id_list.h"
#include "tools/formats/npy.h"
#include "tools/tool_error.h"

namespace tool {
namespace {

// True when the list holds face id and label pairs: a NumPy array of shape
// (N, 2), or text whose every line with numbers holds exactly two.
bool holdsPairs(const std::string& bytes, const std::string& path) {
  if (isNumpyList(bytes, path)) {
    const NpyArray array = parseNpy(bytes, path);
    return array.shape.size() == 2 && array.shape[1] == 2;
  }
  const std::vector<std::vector<int>> lines = parseIntTextLines(bytes, path, "labels");
  for (const std::vector<int>& line : lines) {
    if (line.size() != 2) return false;
  }
  return !lines.empty();
}

}  // namespace

std::map<int, int> identityOfFaces(const std::vector<int>& faceIds, const std::vector<int>& labels,
                                   const char* source) {
  if (faceIds.size() != labels.size()) {
    throw ToolError(std::string(source) + ": holds " + std::to_string(labels.size()) +
                    " labels for " + std::to_string(faceIds.size()) + " features");
  }
  std::map<int, int> identity;
  for (size_t i = 0; i < faceIds.size(); ++i) identity[faceIds[i]] = labels[i];
  return identity;
}

Labels readLabels(const std::string& path, const std::vector<int>& faceIds) {
  return parseLabels(readWholeFile(path), path, faceIds);
}

Labels parseLabels(const std::string& bytes, const std::string& path,
                   const std::vector<int>& faceIds) {
  Labels labels;
  if (!holdsPairs(bytes, path)) {
    labels.identities = identityOfFaces(faceIds, parseIntList(bytes, path, "labels"), path.c_str());
    return labels;
  }
  labels.keyedByFaceId = true;
  const std::vector<int> values = parseIntList(bytes, path, "labels", /*allowPairs=*/true);
  for (size_t i = 0; i + 1 < values.size(); i += 2) {
    if (!labels.identities.emplace(values[i], values[i + 1]).second) {
      throw ToolError(path + ": face id " + std::to_string(values[i]) + " is labelled twice");
    }
  }
  return labels;
}

}  // namespace tool
