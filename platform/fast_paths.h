// The one place that chooses between the plain and the AVX2 rendering of the
// routines that have both. The plain rendering defines the result and is what
// 32-bit ARM runs; an AVX2 rendering does the same operations in the same
// order, eight lanes at once, so both give the same bits.
#ifndef XVKFC_PLATFORM_FAST_PATHS_H_
#define XVKFC_PLATFORM_FAST_PATHS_H_

// The AVX2 renderings are compiled on x86-64 (GCC or Clang) unless the build
// leaves them out (-DXVKFC_PLAIN_RENDERINGS=ON, for bisecting).
#if defined(__x86_64__) && defined(__GNUC__) && !defined(XVKFC_PLAIN_RENDERINGS)
#define XVKFC_AVX2_RENDERINGS 1
#include <immintrin.h>
// A helper inlined into an AVX2 rendering, so that it may use AVX2 too.
#define XVKFC_AVX2_INLINE __attribute__((target("avx2"), always_inline)) inline
// The same for a lambda, written after its parameter list.
#define XVKFC_AVX2_LAMBDA __attribute__((target("avx2"), always_inline))
#endif

namespace detail {

// True when routines run their AVX2 rendering: the build has them, the CPU
// has AVX2 (asked once, at the first call) and the plain ones are not forced.
// Safe to call from any thread.
bool avx2Renderings();

// The rendering of one routine to run now: `plain` unless avx2Renderings().
// Where the AVX2 renderings are not compiled there is only `plain`:
//   XVKFC_PICK(plainRendering, avx2Rendering)
#ifdef XVKFC_AVX2_RENDERINGS
#define XVKFC_PICK(plain, avx2) (::detail::avx2Renderings() ? (avx2) : (plain))
#else
#define XVKFC_PICK(plain, avx2) (plain)
#endif

// on = true: every routine runs its plain rendering from the next call on,
// on any machine; false gives the choice back to the CPU. For tests that
// compare the two renderings on one machine.
void forcePlainRenderings(bool on);

}  // namespace detail

#endif  // XVKFC_PLATFORM_FAST_PATHS_H_
