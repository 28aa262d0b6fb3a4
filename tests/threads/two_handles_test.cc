// Two handles used from two threads at the same time, built with
// ThreadSanitizer: the library keeps no state shared between handles, so
// there must be no report, and each thread gets what one thread alone gets.
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "evaluation/synthetic_gallery.h"
#include "interface/face_recognition.h"

namespace {

// An application's cycle on its own handle: extraction, two runs, the
// representative and a recommendation. Returns the outcome as text.
std::string cycle(unsigned seed) {
  FaceRecognition handle;
  std::string outcome = std::to_string(handle.itf_xvk_Init("."));
  std::vector<unsigned char> image(32 * 32 * 3 / 2);
  for (size_t i = 0; i < image.size(); ++i) image[i] = static_cast<unsigned char>(i * 7 + seed);
  const float* extracted = handle.itf_xvk_extractFeature(
      image.data(), static_cast<int>(image.size()), 32, 32, itf_xvk_faceroi{2, 2, 28, 28});
  outcome += extracted ? " extracted" : " none";

  // Face i of person i % 5.
  std::vector<float> all = evaluation::uniformGallery(20, 5, seed);
  auto face = [&](int i) { return all.data() + i * 960; };
  itf_xvk_clusterinfo first{0, nullptr}, second{0, nullptr};
  for (int batch = 0; batch < 2; ++batch) {
    for (int i = batch * 10; i < batch * 10 + 10; ++i)
      handle.itf_xvk_loadFaceFeature(face(i), i);
    handle.itf_xvk_runClustering(batch == 0 ? nullptr : &first);
    itf_xvk_clusterinfo& result = batch == 0 ? first : second;
    outcome += " " + std::to_string(handle.itf_xvk_getClusterInfo(&result));
    for (int c = 0; c < result.count; ++c) {
      outcome += " " + std::to_string(result.items[c].clusterId) + ":" +
                 std::to_string(result.items[c].faceCount);
    }
  }
  outcome += " recommend " +
             std::to_string(handle.itf_xvk_recommendCluster(&second, face(3), 0));
  outcome += " compare " + std::to_string(handle.itf_xvk_compareFeature(face(0), face(5)));
  handle.itf_xvk_releaseClusterInfo(&first);
  handle.itf_xvk_releaseClusterInfo(&second);
  handle.itf_xvk_Release();
  return outcome;
}

}  // namespace

int main() {
  const std::string alone[2] = {cycle(1), cycle(2)};
  std::string together[2];
  std::thread a([&] { together[0] = cycle(1); });
  std::thread b([&] { together[1] = cycle(2); });
  a.join();
  b.join();
  for (int i = 0; i < 2; ++i) {
    if (together[i] != alone[i]) {
      std::fprintf(stderr, "thread %d got\n  %s\nalone\n  %s\n", i, together[i].c_str(),
                   alone[i].c_str());
      return 1;
    }
  }
  std::printf("two handles on two threads: %s | %s\n", alone[0].c_str(), alone[1].c_str());
  return 0;
}
