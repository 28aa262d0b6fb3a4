// The PNG and JPEG reader on any bytes: planar YUV 4:2:0 of the decoded
// size, or a ToolError. Images are capped at 2^10 pixels here (the program
// takes 2^27) so that one input decodes in well under a millisecond; the
// refusal above the cap runs all the same.
#include <cstddef>
#include <cstdint>
#include <string>

#include "tools/formats/image_file.h"
#include "tools/tool_error.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  try {
    const tool::YuvImage image = tool::decodeToYuv420(
        std::string(reinterpret_cast<const char*>(data), size), "i.png", size_t{1} << 10);
    const size_t chroma = size_t((image.width + 1) / 2) * ((image.height + 1) / 2);
    if (image.planes.size() != size_t(image.width) * image.height + 2 * chroma) __builtin_trap();
  } catch (const tool::ToolError&) {
  }
  return 0;
}
