// Building test inputs with chosen similarities.
#ifndef XVKFC_TESTS_SUPPORT_SIMILARITIES_H_
#define XVKFC_TESTS_SUPPORT_SIMILARITIES_H_

#include <vector>

namespace testing_support {

// A 960-float feature whose element 0 is `tag` and whose other elements are a
// fixed pattern of the tag. Tagged features sort (and so load) in ascending
// tag order, and distinct tags give distinct features.
std::vector<float> taggedFeature(int tag);

// Scripts the comparator so that the kernel similarity (score + 1) * 0.5 of
// taggedFeature(i) and taggedFeature(j) is similarity[i][j]. The score is
// 2 * similarity - 1, which gives the similarity back exactly for similarities
// of 0.25 and above. Returns the features, in tag order 0 .. n-1.
std::vector<std::vector<float>> scriptSimilarities(
    const std::vector<std::vector<float>>& similarity);

// A kernel (as the engine stores it) of `blockSizes` blocks of faces:
// `inside` between faces of one block, `between` across blocks, 1 on the
// diagonal.
std::vector<std::vector<float>> blockSimilarities(const std::vector<int>& blockSizes, float inside,
                                                  float between);

}  // namespace testing_support

#endif  // XVKFC_TESTS_SUPPORT_SIMILARITIES_H_
