// The benchmarks' gallery and random numbers, from the evaluation module
// (evaluation/synthetic_gallery.h, evaluation/random.h).
#ifndef XVKFC_BENCH_SYNTHETIC_GALLERY_H_
#define XVKFC_BENCH_SYNTHETIC_GALLERY_H_

#include <cstdint>
#include <vector>

#include "evaluation/random.h"
#include "evaluation/synthetic_gallery.h"

namespace bench {

using Random = evaluation::Random;

// `faces` features of 960 floats, row after row; face i belongs to person
// i % people. Faces of one person have cosine similarity of about 0.8.
inline std::vector<float> syntheticGallery(int faces, int people, uint32_t seed = 7767517) {
  return evaluation::uniformGallery(faces, people, seed);
}

}  // namespace bench

#endif  // XVKFC_BENCH_SYNTHETIC_GALLERY_H_
