#!/usr/bin/env bash
# Builds and runs every test configuration:
#   dev       host build with tests
#   sanitize  host build with AddressSanitizer and UndefinedBehaviorSanitizer
#             (including the allocation-failure sweep under LeakSanitizer)
#   armhf     32-bit ARM cross build, tests run under qemu-arm
#   fuzz      clang libFuzzer build: the seed corpus and regressions, then
#             XVKFC_FUZZ_SECONDS (default 60) seconds of fuzzing the
#             operations and XVKFC_READER_FUZZ_SECONDS (default 10) each
#             of the program's five file readers
#   threads   two handles on two threads under ThreadSanitizer
# Installs whatever is missing first. Exits non-zero if anything fails.
# Usage: scripts/test.sh [preset ...]   (default: all five)
set -u
cd "$(dirname "$0")/.."

scripts/install-deps.sh || exit 1

presets=("$@")
[ ${#presets[@]} -gt 0 ] || presets=(dev sanitize armhf fuzz threads)
jobs=$(nproc 2>/dev/null || echo 2)

export ASAN_OPTIONS=detect_leaks=1:abort_on_error=0
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1

# The fuzz and threads builds have no preset: each instruments the whole
# engine with its own sanitizer and builds only its own targets.
configure() {
  local common=(-S . -B "build/$1" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DXVKFC_BUILD_TESTS=ON
                -DXVKFC_BUILD_TOOLS=OFF -DXVKFC_INSTALL=OFF)
  case "$1" in
    fuzz)
      local flags="-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer"
      cmake "${common[@]}" -DCMAKE_CXX_COMPILER=clang++ -DXVKFC_FUZZ=ON \
        -DXVKFC_FUZZ_SECONDS="${XVKFC_FUZZ_SECONDS:-60}" \
        -DXVKFC_READER_FUZZ_SECONDS="${XVKFC_READER_FUZZ_SECONDS:-10}" -DCMAKE_CXX_FLAGS="$flags" \
        -DCMAKE_EXE_LINKER_FLAGS="-fsanitize=address,undefined" ;;
    threads)
      cmake "${common[@]}" -DXVKFC_THREAD_CHECK=ON -DCMAKE_CXX_FLAGS=-fsanitize=thread \
        -DCMAKE_EXE_LINKER_FLAGS=-fsanitize=thread -DCMAKE_SHARED_LINKER_FLAGS=-fsanitize=thread ;;
    *)
      cmake --preset "$1" -DXVKFC_WARNINGS_AS_ERRORS=ON ;;
  esac
}

# The fuzz and threads builds build only their own targets.
build_targets() {
  case "$1" in
    fuzz) echo "--target xvkfc_fuzz_targets" ;;
    threads) echo "--target xvkfc_two_handles" ;;
  esac
}

status=0
total_passed=0
total_failed=0
for preset in "${presets[@]}"; do
  echo "=== ${preset}: configure and build"
  if ! configure "$preset" >"build-${preset}.log" 2>&1 ||
     ! cmake --build "build/${preset}" -j "$jobs" $(build_targets "$preset") >>"build-${preset}.log" 2>&1; then
    tail -n 60 "build-${preset}.log"
    echo "=== ${preset}: build FAILED (full log: build-${preset}.log)"
    status=1
    continue
  fi
  rm -f "build-${preset}.log"
  echo "=== ${preset}: test"
  ctest --test-dir "build/${preset}" -j "$jobs" --output-on-failure 2>&1 | tee "build/${preset}/ctest.out"
  [ "${PIPESTATUS[0]}" -eq 0 ] || status=1
  summary=$(grep -E '^[0-9]+% tests passed, [0-9]+ tests failed out of [0-9]+' "build/${preset}/ctest.out" | tail -n 1)
  if [ -n "$summary" ]; then
    failed=$(echo "$summary" | sed -E 's/.* ([0-9]+) tests failed out of ([0-9]+).*/\1/')
    all=$(echo "$summary" | sed -E 's/.* tests failed out of ([0-9]+).*/\1/')
    total_passed=$((total_passed + all - failed))
    total_failed=$((total_failed + failed))
  else
    status=1
  fi
done

echo
echo "=== Summary over ${presets[*]}"
echo "${total_passed} passed, ${total_failed} failed"
exit $status
