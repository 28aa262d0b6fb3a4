#include "bench_gallery.h"

namespace bench {

evaluation::Gallery benchGallery(int faces, double maxNoise, int lookAlikesPer100People) {
  evaluation::GalleryOptions options;
  options.seed = 20261123;
  options.people = faces / 5;
  options.minFaces = 2;
  options.maxFaces = 8;
  options.lookAlikes = options.people * lookAlikesPer100People / 100;
  options.loneFaces = faces / 20;
  options.duplicates = faces / 100;
  options.minNoise = 0.3;
  options.maxNoise = maxNoise;
  return evaluation::firstFaces(evaluation::makeGallery(options), faces);
}

}  // namespace bench
