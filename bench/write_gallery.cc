// Writes the benchmarks' synthetic gallery as raw float32 features, the input
// `xvkfc cluster` reads: write_gallery FACES FILE.
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "synthetic_gallery.h"

int main(int argc, char** argv) {
  if (argc != 3 || std::atoi(argv[1]) < 1) {
    std::fprintf(stderr, "usage: %s FACES FILE\n", argv[0]);
    return 2;
  }
  const int faces = std::atoi(argv[1]);
  // Five faces per person, as in the clustering benchmarks.
  const std::vector<float> gallery = bench::syntheticGallery(faces, faces / 5 + 1);
  std::FILE* out = std::fopen(argv[2], "wb");
  if (out == nullptr ||
      std::fwrite(gallery.data(), sizeof(float), gallery.size(), out) != gallery.size() ||
      std::fclose(out) != 0) {
    std::perror(argv[2]);
    return 1;
  }
  return 0;
}
