// Synthetic galleries of face features with known identities, made from a
// seed so that every run and every platform sees the same faces: for the
// program's demo, the benchmarks and the tests.
#ifndef XVKFC_EVALUATION_SYNTHETIC_GALLERY_H_
#define XVKFC_EVALUATION_SYNTHETIC_GALLERY_H_

#include <cstdint>
#include <vector>

namespace evaluation {

struct GalleryOptions {
  uint32_t seed = 1234;
  int people = 24;   // identities with several faces each
  int minFaces = 4;  // faces per person, inclusive range
  int maxFaces = 16;
  int lookAlikes = 3;  // people made to resemble the person before them
  int loneFaces = 10;  // identities with exactly one face
  int duplicates = 6;  // exact copies of earlier faces under new face ids
  // Range of a person's noise strength: the cosine of two of their faces is
  // about 1 / (1 + strength^2), 0.77 to 0.92 by default; 0.3 to 0.9 spreads
  // it from about 0.55 to 0.92, as faces in poor light or at an angle do.
  double minNoise = 0.3;
  double maxNoise = 0.55;
};

// Faces in shuffled order, the order a photo library would deliver them.
struct Gallery {
  std::vector<float> features;  // faces() x 960 floats, row-major, unit length
  std::vector<int> faceIds;     // 0..N-1 in row order
  std::vector<int> identities;  // identity of each row: people first, then lone faces

  int faces() const { return static_cast<int>(faceIds.size()); }
  const float* row(int i) const;
};

// Builds the gallery. A person is a random unit direction in the 960-float
// space; each of their faces is that direction plus noise of a per-person
// strength, scaled to unit length, so faces of one person have cosine
// similarities of about 0.75 to 0.9 and faces of different people about 0.
// Look-alikes share part of their direction with another person. Numbers
// come from evaluation::Random only, so the features are bit-identical with
// every standard library.
// REQUIRES: people >= 1, 1 <= minFaces <= maxFaces, other counts >= 0.
Gallery makeGallery(const GalleryOptions& options);

// The first `faces` rows of `gallery` (all of them when it has fewer).
Gallery firstFaces(const Gallery& gallery, int faces);

// A plain gallery for speed measurements: `faces` features of 960 floats,
// row after row, face i of person i % people, each its person's centre
// (uniform in [-1, 1) per float) plus half as much noise, scaled to unit
// length, so faces of one person have cosine similarity of about 0.8.
// REQUIRES: faces >= 0, people >= 1.
std::vector<float> uniformGallery(int faces, int people, uint32_t seed);

}  // namespace evaluation

#endif  // XVKFC_EVALUATION_SYNTHETIC_GALLERY_H_
