// The galleries of the planning benchmarks (quality and import cost), made in
// one place so that both programs measure the same faces.
#ifndef XVKFC_BENCH_BENCH_GALLERY_H_
#define XVKFC_BENCH_BENCH_GALLERY_H_

#include "evaluation/synthetic_gallery.h"

namespace bench {

// A gallery of `faces` faces: people of 2 to 8 faces each (about 5), one lone
// face per 20 faces, one duplicate per 100, `lookAlikesPer100People`
// look-alikes, and same-person cosine from about 0.92 (noise 0.3) down to
// that of noise `maxNoise` (0.41 at 1.2); shuffled and cut to `faces` rows.
evaluation::Gallery benchGallery(int faces, double maxNoise, int lookAlikesPer100People = 0);

}  // namespace bench

#endif  // XVKFC_BENCH_BENCH_GALLERY_H_
