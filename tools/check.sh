#!/bin/sh
# All checks of the source tree, or the named ones:
#
#   tools/check.sh                 format layers gcc clang tidy asan
#   tools/check.sh ci              what a change has to pass: gcc format layers clang tidy_changed
#                                  asan_quick, below 40 minutes on two cores
#   tools/check.sh format tsan     these steps; there are packages, browser, web, documents, walkthrough too
#
# Installs the packages it needs. Each step runs to its end whatever became of the one before; the
# table at the end tells how they went. Build trees are kept in out/.
# shellcheck disable=SC2317  # the steps are called by name
set -u

root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root" || exit 2
all_steps="format layers gcc clang tidy asan"
ci_steps="gcc format layers clang tidy_changed asan_quick"

sources() { git ls-files '*.h' '*.cpp'; }

configure_and_build() { # preset
  cmake --preset "$1" >/dev/null && ninja --quiet -C "out/$1"
}

run_tests() { # preset, options of ctest
  tree=out/$1
  shift
  ctest --test-dir "$tree" --output-on-failure -j "$(nproc)" "$@"
}

step_format() {
  sources | xargs clang-format --dry-run --Werror ||
    { echo "Mend with: git ls-files '*.h' '*.cpp' | xargs clang-format -i"; return 1; }
}
step_layers() { python3 tools/check_layers.py; }
# The tree of ./run and ./test, where from now on warnings are errors.
step_gcc() { cmake --preset release -DTV_WERROR=ON >/dev/null && ./test; }
# Statistics are the same whatever compiler: one build runs them.
step_clang() { configure_and_build clang && run_tests clang -E '^(battery|report)'; }
tidy() { # pattern of sources
  # The examples see the headers as they are installed.
  cmake --preset clang >/dev/null && ninja --quiet -C out/clang installed_headers || return 1
  if run-clang-tidy -quiet -p out/clang -j "$(nproc)" "$1" >out/clang/tidy.log 2>&1; then
    return 0
  fi
  # A finding in a header comes once for each source that includes it.
  sed 's/\x1b\[[0-9;]*m//g' out/clang/tidy.log | grep -E ': (error|warning): ' | sort -u
  echo "The whole output is in out/clang/tidy.log"
  return 1
}
step_tidy() { tidy "^$root/(?!benchmarks/|tests/)"; }
# The files that differ from where this branch left main, on main from the commit before.
changed_files() {
  head=$(git rev-parse HEAD) || return 1
  for main in origin/main main; do
    base=$(git merge-base HEAD "$main" 2>/dev/null) && [ "$base" != "$head" ] && break
    base=$(git rev-parse --verify --quiet HEAD~1)
  done
  [ -n "$base" ] && git diff --name-only "$base"
}
# The changed sources, and for each changed header one that includes it. All when git does not tell.
step_tidy_changed() {
  if ! changed=$(changed_files); then
    step_tidy
    return
  fi
  files=$(for file in $changed; do
    case $file in
      benchmarks/* | tests/*) ;;
      *.cpp) echo "$file" ;;
      *.h) git grep -lF "#include \"$file\"" -- '*.cpp' ':!benchmarks' ':!tests' | head -n 1 ;;
    esac
  done | sort -u)
  [ -n "$files" ] || return 0
  tidy "^$root/($(echo "$files" | tr '\n' '|' | sed 's/|$//; s/[.+]/\\&/g'))\$"
}
asan_tests() { # options of ctest
  ASAN_OPTIONS=detect_stack_use_after_return=1:strict_string_checks=1 \
    UBSAN_OPTIONS=print_stacktrace=1 run_tests asan "$@"
}
step_asan() { configure_and_build asan && asan_tests; }
# The programs that test libraries; what is written in the language runs through them as well.
step_asan_quick() {
  rooms="embedded_host plugin_rng rng rng_kernels builtins cpp runtime second_host faults threads float_environment"
  inputs="arguments settings_file snapshots stream_states"
  # shellcheck disable=SC2046,SC2086  # lists of words
  cmake --preset asan >/dev/null &&
    ninja --quiet -C out/asan test_c $(printf 'test_%s ' $rooms) $(printf 'fuzz_%s ' $inputs) &&
    asan_tests -R "^(c|$(echo $rooms | tr ' ' '|')|fuzz_($(echo $inputs | tr ' ' '|')))\$"
}
# The tutorial of CONTRIBUTING.md, played from its own text in a copy of the tree up to ./test.
step_walkthrough() { python3 tools/walkthrough.py; }
# Debian packages, installed into a scratch root.
step_packages() { tools/packages.sh --check; }
# Reports of generators in headless Chromium.
step_browser() {
  tools/install_packages.sh build browser && cmake --preset release >/dev/null &&
    ninja --quiet -C build tvrng && python3 tests/report/check_browser.py build/bin/tvrng
}
# The page and the npm package, where the programs for them are to be had.
step_web() {
  tools/install_packages.sh build web
  tools/web.sh
}
# Every block of commands of the documents, as a newcomer pastes them, in a clone.
step_documents() { python3 tests/documents/run_commands.py; }
# The test programs that run threads.
step_tsan() {
  rooms="embedded_host plugin_rng threads"
  # shellcheck disable=SC2046,SC2086  # lists of words
  cmake --preset tsan >/dev/null && ninja --quiet -C out/tsan $(printf 'test_%s ' $rooms) &&
    TSAN_OPTIONS=suppressions=$root/tools/tsan.supp \
      ctest --test-dir out/tsan --output-on-failure -R "^($(echo $rooms | tr ' ' '|'))\$"
}

# shellcheck disable=SC2086
case ${1-all} in
  all) set -- $all_steps ;;
  ci) set -- $ci_steps ;;
esac
for step in "$@"; do
  if ! command -v "step_$step" >/dev/null; then
    echo "check.sh: no step '$step'; there are: $all_steps tidy_changed asan_quick tsan packages browser web documents walkthrough" >&2
    exit 2
  fi
done
tools/install_packages.sh build check python mpi || exit 1

failed=0
table=
for step in "$@"; do
  printf '\n== %s\n' "$step"
  start=$(date +%s)
  if "step_$step"; then outcome=ok; else outcome=FAILED; failed=1; fi
  table="$table$(printf '%-12s %-7s %5d s' "$step" $outcome $(($(date +%s) - start)))
"
done
printf '\n%s' "$table"
exit $failed
