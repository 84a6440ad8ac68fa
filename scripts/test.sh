#!/usr/bin/env bash
# Builds everything and runs every test: the normal build, then the same tests
# under AddressSanitizer and UndefinedBehaviorSanitizer, then a bounded fuzz run.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
jobs=$(nproc)

scripts/build.sh build
(cd build && ctest --output-on-failure -j "$jobs")

scripts/build.sh build-asan -DKESTRANA_SANITIZE=ON -DCMAKE_BUILD_TYPE=Debug
(cd build-asan && ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
  ctest --output-on-failure -j "$jobs" -E '_test$')

if [ -f fuzz/CMakeLists.txt ]; then
  scripts/build.sh build-fuzz -DKESTRANA_FUZZ=ON -DKESTRANA_TESTS=OFF \
    -DCMAKE_CXX_COMPILER=clang++-14
  for target in build-fuzz/fuzz_*; do
    [ -x "$target" ] || continue
    corpus="fuzz/corpus/$(basename "$target" | sed 's/^fuzz_//')"
    mkdir -p "$corpus"
    "$target" -max_total_time="${FUZZ_SECONDS:-60}" -rss_limit_mb=2048 \
      -artifact_prefix=build-fuzz/ "$corpus"
  done
fi
echo "All tests passed."
