// libFuzzer target: a sequence of the library's public operations on one
// handle, with fuzzed arguments that keep to what face_recognition.h
// requires of a caller (a feature pointer holds 960 floats, faceIds holds
// faceCount ids, an image holds dataLength bytes, items holds count
// elements) and nothing more: features full of NaN, infinities and huge
// values, lists with odd counts, ids, faceCounts and featureDims, images of
// odd sizes and rectangles, operations on a released handle.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>
#include <vector>

#include "interface/face_recognition.h"

namespace {

constexpr int kDim = 960;
constexpr int kMaxQueued = 48;  // keeps one run's kernel small

float specialValue(FuzzedDataProvider& in) {
  using Limits = std::numeric_limits<float>;
  const float values[] = {0.0f,         -0.0f,          1.0f,           -1.0f,
                          Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(),
                          Limits::max(), Limits::lowest(), Limits::denorm_min(), 1e-30f, 0.5f};
  return values[in.ConsumeIntegralInRange<size_t>(0, std::size(values) - 1)];
}

// 960 floats: a fill value with a few fuzzed elements, or all fuzzed.
std::vector<float> fuzzedFeature(FuzzedDataProvider& in) {
  std::vector<float> feature(kDim, specialValue(in));
  if (in.ConsumeBool()) {
    for (float& value : feature) value = in.ConsumeFloatingPoint<float>();
  } else {
    const int changes = in.ConsumeIntegralInRange(0, 8);
    for (int i = 0; i < changes; ++i) {
      feature[in.ConsumeIntegralInRange(0, kDim - 1)] =
          in.ConsumeBool() ? specialValue(in) : in.ConsumeFloatingPoint<float>();
    }
  }
  return feature;
}

int fuzzedInt(FuzzedDataProvider& in) {
  switch (in.ConsumeIntegralInRange(0, 3)) {
    case 0: return in.ConsumeIntegralInRange(-2, 8);
    case 1: return std::numeric_limits<int>::max() - in.ConsumeIntegralInRange(0, 3);
    case 2: return std::numeric_limits<int>::min() + in.ConsumeIntegralInRange(0, 3);
    default: return in.ConsumeIntegral<int>();
  }
}

// An application's cluster list and the arrays it points to. faceIds holds
// faceCount ids when faceCount is positive; a negative count or a null array
// is the library's to reject.
struct OwnedList {
  itf_xvk_clusterinfo list{0, nullptr};
  std::vector<itf_xvk_clusteritem> items;
  std::vector<std::vector<int>> ids;
  std::vector<std::vector<float>> features;

  explicit OwnedList(FuzzedDataProvider& in) {
    const int elements = in.ConsumeIntegralInRange(0, 6);
    items.resize(elements);
    ids.resize(elements);
    features.resize(elements);
    for (int i = 0; i < elements; ++i) {
      itf_xvk_clusteritem& item = items[i];
      item.clusterId = fuzzedInt(in);
      item.faceCount = in.ConsumeIntegralInRange(-1, 6);
      ids[i].resize(std::max(item.faceCount, 0));
      for (int& id : ids[i]) id = fuzzedInt(in);
      item.faceIds = in.ConsumeIntegralInRange(0, 9) == 0 ? nullptr : ids[i].data();
      item.featureDim = in.ConsumeBool() ? kDim : fuzzedInt(in);
      if (in.ConsumeIntegralInRange(0, 5) > 0) features[i] = fuzzedFeature(in);
      item.feature = features[i].empty() ? nullptr : features[i].data();
      item.repFaceId = fuzzedInt(in);
    }
    list.count = in.ConsumeIntegralInRange(0, 9) == 0 ? -in.ConsumeIntegralInRange(1, 3) : elements;
    list.items = elements > 0 || in.ConsumeBool() ? items.data() : nullptr;
  }
};

// An image of dataLength bytes at most, of fuzzed size and face rectangle.
void extract(FaceRecognition& handle, FuzzedDataProvider& in) {
  const int width = in.ConsumeBool() ? in.ConsumeIntegralInRange(-1, 40) : fuzzedInt(in);
  const int height = in.ConsumeBool() ? in.ConsumeIntegralInRange(-1, 40) : fuzzedInt(in);
  std::vector<unsigned char> image = in.ConsumeBytes<unsigned char>(
      in.ConsumeIntegralInRange<size_t>(0, 40 * 40 * 3 / 2 + 8));
  const int dataLength = in.ConsumeIntegralInRange(
      std::numeric_limits<int>::min(), static_cast<int>(image.size()));
  const itf_xvk_faceroi roi{fuzzedInt(in), fuzzedInt(in), fuzzedInt(in), fuzzedInt(in)};
  itf_xvk_landmark landmarks{};
  unsigned char* data = image.empty() && in.ConsumeBool() ? nullptr : image.data();
  const float* feature =
      in.ConsumeBool() ? handle.itf_xvk_extractFeature(data, dataLength, width, height, roi)
                       : handle.itf_xvk_extractFeature(data, dataLength, width, height, roi,
                                                       &landmarks);
  if (feature != nullptr) {
    volatile float sink = feature[kDim - 1];
    (void)sink;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider in(data, size);
  FaceRecognition handle;
  handle.itf_xvk_Init(".");
  itf_xvk_clusterinfo result{0, nullptr};
  int queued = 0;
  for (int step = 0; step < 24 && in.remaining_bytes() > 0; ++step) {
    switch (in.ConsumeIntegralInRange(0, 9)) {
      case 0:
      case 1: {
        const int faces = in.ConsumeIntegralInRange(1, 8);
        for (int i = 0; i < faces && queued < kMaxQueued; ++i, ++queued) {
          std::vector<float> feature = fuzzedFeature(in);
          handle.itf_xvk_loadFaceFeature(in.ConsumeIntegralInRange(0, 15) == 0 ? nullptr
                                                                                : feature.data(),
                                         fuzzedInt(in));
        }
        break;
      }
      case 2: {
        if (in.ConsumeBool()) {
          handle.itf_xvk_runClustering(in.ConsumeBool() ? &result : nullptr);
        } else {
          OwnedList list(in);
          handle.itf_xvk_runClustering(&list.list);
        }
        queued = 0;
        break;
      }
      case 3: {
        handle.itf_xvk_releaseClusterInfo(&result);
        itf_xvk_clusterinfo* target = in.ConsumeIntegralInRange(0, 9) == 0 ? nullptr : &result;
        handle.itf_xvk_getClusterInfo(target);
        break;
      }
      case 4: {
        // `count` consecutive features; a count of 0 or less or a null
        // pointer is the library's to reject.
        const int count = in.ConsumeIntegralInRange(-1, 6);
        std::vector<float> features;
        for (int i = 0; i < count; ++i) {
          const std::vector<float> f = fuzzedFeature(in);
          features.insert(features.end(), f.begin(), f.end());
        }
        float* representative =
            handle.itf_xvk_getClusterFeature(features.empty() ? nullptr : features.data(), count);
        std::free(representative);
        queued = count >= 2 ? count : 0;
        break;
      }
      case 5: {
        std::vector<float> feature = fuzzedFeature(in);
        float* query = in.ConsumeIntegralInRange(0, 9) == 0 ? nullptr : feature.data();
        if (in.ConsumeBool()) {
          handle.itf_xvk_recommendCluster(&result, query, fuzzedInt(in));
        } else {
          OwnedList list(in);
          handle.itf_xvk_recommendCluster(in.ConsumeBool() ? &list.list : nullptr, query, 0);
        }
        break;
      }
      case 6:
        extract(handle, in);
        break;
      case 7: {
        std::vector<float> a = fuzzedFeature(in), b = fuzzedFeature(in);
        handle.itf_xvk_compareFeature(in.ConsumeBool() ? a.data() : nullptr,
                                      in.ConsumeBool() ? b.data() : nullptr);
        break;
      }
      case 8:
        if (in.ConsumeBool()) {
          handle.itf_xvk_Release();
        } else {
          handle.itf_xvk_Init(in.ConsumeBool() ? "." : "/nonexistent-model-folder");
        }
        queued = 0;
        break;
      default:
        handle.itf_xvk_getDim();
        break;
    }
  }
  handle.itf_xvk_releaseClusterInfo(&result);
  handle.itf_xvk_Release();
  return 0;
}
