// The face ids and labels readers on any bytes, for the file name
// XVKFC_LIST_NAME (text or .npy by its suffix). The first byte chooses the
// reader and the number of features the list is for (0..127); the rest is
// the file.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tools/formats/id_list.h"
#include "tools/formats/labels.h"
#include "tools/tool_error.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const int rows = data[0] >> 1;
  const std::string bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  try {
    if (data[0] & 1) {
      const std::vector<int> ids = tool::parseFaceIds(bytes, XVKFC_LIST_NAME, rows);
      if (ids.size() != static_cast<size_t>(rows)) __builtin_trap();
    } else {
      std::vector<int> faceIds;
      for (int i = 0; i < rows; ++i) faceIds.push_back(i);
      const tool::Labels labels = tool::parseLabels(bytes, XVKFC_LIST_NAME, faceIds);
      if (!labels.keyedByFaceId && labels.identities.size() != faceIds.size()) __builtin_trap();
    }
  } catch (const tool::ToolError&) {
  }
  return 0;
}
