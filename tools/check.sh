#!/bin/sh
# All checks of the source tree, or the named ones:
#
#   tools/check.sh                 everything but tsan, packages and browser
#   tools/check.sh format layers   these steps only
#
# Installs the packages it needs. Each step runs to its end whatever became of the one before; the
# table at the end tells how they went. Build trees are kept in out/.
# shellcheck disable=SC2317  # the steps are called by name
set -u

root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root" || exit 2
all_steps="format layers gcc clang tidy asan"

sources() { git ls-files '*.h' '*.cpp'; }

configure_and_build() { # preset
  cmake --preset "$1" >/dev/null && ninja --quiet -C "out/$1"
}

run_tests() { # preset
  ctest --test-dir "out/$1" --output-on-failure -j "$(nproc)"
}

step_format() {
  sources | xargs clang-format --dry-run --Werror ||
    { echo "Mend with: git ls-files '*.h' '*.cpp' | xargs clang-format -i"; return 1; }
}
step_layers() { python3 tools/check_layers.py; }
# The tree of ./run and ./test, where from now on warnings are errors.
step_gcc() { cmake --preset release -DTV_WERROR=ON >/dev/null && ./test; }
step_clang() { configure_and_build clang && run_tests clang; }
step_tidy() {
  # The examples see the headers as they are installed.
  cmake --preset clang >/dev/null && ninja --quiet -C out/clang installed_headers || return 1
  if run-clang-tidy -quiet -p out/clang -j "$(nproc)" "^$root/(?!benchmarks/|tests/)" \
    >out/clang/tidy.log 2>&1; then
    return 0
  fi
  # A finding in a header comes once for each source that includes it.
  sed 's/\x1b\[[0-9;]*m//g' out/clang/tidy.log | grep -E ': (error|warning): ' | sort -u
  echo "The whole output is in out/clang/tidy.log"
  return 1
}
step_asan() {
  configure_and_build asan &&
    ASAN_OPTIONS=detect_stack_use_after_return=1:strict_string_checks=1 \
      UBSAN_OPTIONS=print_stacktrace=1 run_tests asan
}
# Debian packages, installed into a scratch root.
step_packages() { tools/packages.sh --check; }
# Reports of generators in headless Chromium.
step_browser() {
  tools/install_packages.sh build browser && cmake --preset release >/dev/null &&
    ninja --quiet -C build tvrng && python3 tests/report/check_browser.py build/bin/tvrng
}
# The test programs that run threads.
step_tsan() {
  rooms="embedded_host plugin_rng threads"
  # shellcheck disable=SC2046,SC2086  # lists of words
  cmake --preset tsan >/dev/null && ninja --quiet -C out/tsan $(printf 'test_%s ' $rooms) &&
    TSAN_OPTIONS=suppressions=$root/tools/tsan.supp \
      ctest --test-dir out/tsan --output-on-failure -R "^($(echo $rooms | tr ' ' '|'))\$"
}

for step in "$@"; do
  if ! command -v "step_$step" >/dev/null; then
    echo "check.sh: no step '$step'; there are: $all_steps tsan packages browser" >&2
    exit 2
  fi
done
tools/install_packages.sh build check || exit 1

failed=0
table=
# shellcheck disable=SC2086
[ $# -gt 0 ] || set -- $all_steps
for step in "$@"; do
  printf '\n== %s\n' "$step"
  start=$(date +%s)
  if "step_$step"; then outcome=ok; else outcome=FAILED; failed=1; fi
  table="$table$(printf '%-8s %-7s %5d s' "$step" $outcome $(($(date +%s) - start)))
"
done
printf '\n%s' "$table"
exit $failed
