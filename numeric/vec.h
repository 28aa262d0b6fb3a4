// Vec<T>: the engine's dense vector.
#ifndef XVKFC_NUMERIC_VEC_H_
#define XVKFC_NUMERIC_VEC_H_

#include <cstddef>
#include <vector>

// A growable contiguous array with value semantics: the standard vector plus a
// gather. Instantiated for float (features, kernel rows, means) and int (label
// lists, index lists, permutations). Copied on assignment and when passed by
// value. Element access is not bounds-checked.
template <typename T>
class Vec : public std::vector<T> {
 public:
  using std::vector<T>::vector;
  Vec() = default;
  Vec(const std::vector<T>& other) : std::vector<T>(other) {}  // NOLINT: implicit on purpose

  // Gather: element k of the result is element indices[k] of this vector, in
  // the order of `indices`; duplicates repeat, an empty list gives an empty
  // vector.
  // REQUIRES: every index in [0, size()).
  Vec<T> subVec(Vec<int> indices) const {
    Vec<T> out(indices.size());
    for (std::size_t k = 0; k < indices.size(); ++k) out[k] = (*this)[indices[k]];
    return out;
  }
};

#endif  // XVKFC_NUMERIC_VEC_H_
