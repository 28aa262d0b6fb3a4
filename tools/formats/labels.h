// Known identities for measuring quality (--labels), in either of two
// layouts:
//  - one label per feature, in feature order: text with one integer per
//    feature, or a NumPy int array of shape (N,);
//  - face id and label pairs: text whose every line with numbers holds
//    exactly two integers "FACE_ID LABEL", or a NumPy int array of shape
//    (N, 2).
// Text and NumPy are read as id_list.h says (commas, '#' comments, whole
// numbers written as floats).
// Pairs need not be in any order and may name faces of earlier runs, so one
// file can measure the whole gallery after any run.
#ifndef XVKFC_TOOLS_FORMATS_LABELS_H_
#define XVKFC_TOOLS_FORMATS_LABELS_H_

#include <map>
#include <string>
#include <vector>

namespace tool {

struct Labels {
  std::map<int, int> identities;  // face id -> identity
  bool keyedByFaceId = false;     // the file held pairs
};

// Reads a labels file for the features whose face ids are `faceIds`.
// Throws ToolError when a per-feature list does not have one label per
// feature, or when pairs name a face twice.
Labels readLabels(const std::string& path, const std::vector<int>& faceIds);

// Identity of each face id, from aligned lists of face ids and labels.
// Throws ToolError when the lists differ in length (`source` names the
// labels file).
std::map<int, int> identityOfFaces(const std::vector<int>& faceIds, const std::vector<int>& labels,
                                   const char* source);

// The same for `bytes`, the content of a file named `path`.
Labels parseLabels(const std::string& bytes, const std::string& path,
                   const std::vector<int>& faceIds);

}  // namespace tool

#endif  // XVKFC_TOOLS_FORMATS_LABELS_H_
