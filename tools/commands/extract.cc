// xvkfc extract: features of face rectangles in a planar YUV 4:2:0 image.
#include <cstdint>
#include <cstdio>
#include <memory>
#include <sstream>

#include "tools/commands/commands.h"
#include "tools/formats/atomic_file.h"
#include "tools/formats/file_kind.h"
#include "tools/formats/image_file.h"
#include "tools/formats/output_paths.h"
#include "tools/run/engine_session.h"
#include "tools/tool_error.h"

namespace tool {
namespace {

struct ExtractOptions {
  std::string image, size, output;
  std::vector<std::string> faces;
};

// Parses "A<sep>B<sep>..." into exactly `count` integers.
std::vector<int> parseInts(const std::string& text, char separator, size_t count,
                           const std::string& what) {
  std::vector<int> values;
  std::istringstream in(text);
  std::string part;
  while (std::getline(in, part, separator)) {
    size_t used = 0;
    int value = 0;
    try {
      value = std::stoi(part, &used);
    } catch (const std::exception&) {
      used = 0;
    }
    if (part.empty() || used != part.size()) break;
    values.push_back(value);
  }
  if (values.size() != count || (!text.empty() && text.back() == separator)) {
    throw UsageError("'" + text + "' is not a valid " + what);
  }
  return values;
}

// A PNG or JPEG image, by its name or its content, as planar YUV 4:2:0.
YuvImage decodeImage(const std::string& bytes, const std::string& path) {
  const FileKind kind = fileKindOf(bytes);
  if (kind != FileKind::kPng && kind != FileKind::kJpeg && kind != FileKind::kOther) {
    throw ToolError(path + ": looks like " + fileKindName(kind) + ", not a PNG or JPEG image");
  }
  return decodeToYuv420(bytes, path);
}

// The image as planar YUV 4:2:0: PNG and JPEG converted, raw YUV checked
// against --size.
YuvImage readImage(const ExtractOptions& options) {
  bool compressed = isCompressedImageName(options.image);
  if (compressed && options.size.empty()) {
    return decodeImage(readWholeFile(options.image), options.image);
  }
  if (options.size.empty()) {
    throw UsageError("--size is required for a raw YUV image (" + options.image + ")");
  }
  const std::vector<int> size = parseInts(options.size, 'x', 2, "image size (WIDTHxHEIGHT)");
  if (size[0] < 1 || size[1] < 1) throw UsageError("the image size must be positive");
  std::string bytes;
  if (!compressed) {
    bytes = readWholeFile(options.image);
    // A PNG or JPEG under another name is decoded, never read as YUV bytes.
    const FileKind kind = fileKindOf(bytes);
    compressed = kind == FileKind::kPng || kind == FileKind::kJpeg;
  }
  if (compressed) {
    YuvImage image =
        decodeImage(bytes.empty() ? readWholeFile(options.image) : bytes, options.image);
    if (image.width != size[0] || image.height != size[1]) {
      throw ToolError(options.image + ": the image is " + std::to_string(image.width) + "x" +
                      std::to_string(image.height) + ", not " + options.size);
    }
    return image;
  }
  YuvImage image;
  image.width = size[0];
  image.height = size[1];
  // Y plane, then U and V planes of half the size rounded up.
  // In 64 bits: 2147483647 x 2147483647 needs about 2^62 bytes.
  const uint64_t chroma = (static_cast<uint64_t>(image.width) + 1) / 2 *
                          ((static_cast<uint64_t>(image.height) + 1) / 2);
  const uint64_t expected =
      static_cast<uint64_t>(image.width) * static_cast<uint64_t>(image.height) + 2 * chroma;
  if (expected > kMaxInputBytes) {
    throw ToolError("a planar YUV 4:2:0 image of " + options.size + " has " +
                    std::to_string(expected) + " bytes, more than the " +
                    std::to_string(kMaxInputBytes) + " an input file may have");
  }
  if (bytes.size() != expected) {
    throw ToolError(options.image + ": " + (bytes.size() < expected ? "truncated: " : "") +
                    "a planar YUV 4:2:0 image of " + options.size + " has " +
                    std::to_string(expected) + " bytes, the file has " +
                    std::to_string(bytes.size()));
  }
  image.planes.assign(bytes.begin(), bytes.end());
  return image;
}

int runExtract(const ExtractOptions& options, const GlobalOptions& global) {
  refuseStandardOutput(options.output, "-o", "features are binary, not for standard output");
  checkOutputPaths({options.output}, {options.image});
  YuvImage yuv = readImage(options);
  const int width = yuv.width, height = yuv.height;
  std::vector<itf_xvk_faceroi> rois;
  for (const std::string& face : options.faces) {
    const std::vector<int> r = parseInts(face, ',', 4, "face rectangle (LEFT,TOP,WIDTH,HEIGHT)");
    // In 64 bits: left + width of two large ints overflows int.
    if (r[0] < 0 || r[1] < 0 || r[2] < 1 || r[3] < 1 || int64_t{r[0]} + r[2] > width ||
        int64_t{r[1]} + r[3] > height) {
      throw UsageError("face rectangle " + face + " does not lie inside the " +
                       std::to_string(width) + "x" + std::to_string(height) + " image");
    }
    rois.push_back({r[0], r[1], r[2], r[3]});
  }
  std::vector<unsigned char>& image = yuv.planes;

  EngineSession session(global.models);
  FeatureMatrix features;
  for (size_t i = 0; i < rois.size(); ++i) {
    const std::vector<float> feature = session.extract(image, width, height, rois[i]);
    if (feature.empty()) {
      throw ToolError(options.image + ": no face found in rectangle " + options.faces[i]);
    }
    features.appendRow(feature.data());
  }
  writeFeatures(options.output, features);
  std::printf("%d feature%s written to %s\n", features.rows(), features.rows() == 1 ? "" : "s",
              options.output.c_str());
  return kExitOk;
}

}  // namespace

Command addExtractCommand(CLI::App& app, const GlobalOptions& global) {
  auto options = std::make_shared<ExtractOptions>();
  CLI::App* sub = app.add_subcommand("extract", "Features of face rectangles in an image");
  sub->footer(
      "Turns face rectangles of an image into features (itf_xvk_extractFeature), one row per "
      "--face. The image is a PNG or JPEG file (converted to planar YUV 4:2:0 here) or a raw "
      "planar YUV 4:2:0 file (Y plane, then U and V planes of half width and height, rounded "
      "up), whose size --size gives.");
  sub->add_option("IMAGE", options->image, "PNG, JPEG, or raw planar YUV 4:2:0 (by name)")
      ->type_name("FILE")
      ->required();
  sub->add_option("--size", options->size,
                  "Image size as WIDTHxHEIGHT, for example 640x480 (required for raw YUV)");
  sub->add_option("--face", options->faces,
                  "Face rectangle as LEFT,TOP,WIDTH,HEIGHT in pixels; repeat for more faces")
      ->required()
      ->allow_extra_args(false);
  sub->add_option("-o,--output", options->output,
                  "Feature file to write (raw float32 for *.f32 and *.raw, NumPy otherwise)")
      ->type_name("FILE")
      ->required();
  return {sub, [options, &global] { return runExtract(*options, global); }};
}

}  // namespace tool
