#!/bin/sh
# Fuzzing: runs one target of fuzz/, or all of them in turn, under libFuzzer with the address and
# undefined-behaviour sanitizers:
#
#   tools/fuzz.sh                    each for 60 seconds
#   tools/fuzz.sh shell_source 600   one of them for ten minutes
#   tools/fuzz.sh all 600
#
# Starts from the saved inputs of fuzz/corpus/TARGET; new ones are kept in out/fuzz/corpus/TARGET.
# An input that ends the program is a finding: it lies in out/fuzz/findings, its story in
# out/fuzz/TARGET.log, and the exit status is 1. Once mended it joins fuzz/corpus/TARGET, whose
# files every ./test runs.
set -eu

root=$(cd "$(dirname "$0")/.." && pwd)
target=${1:-all}
seconds=${2:-60}
cd "$root"
tools/install_packages.sh build fuzz

targets=$(sed -n 's/^tv_add_fuzzer(\([a-z_]*\).*/\1/p' fuzz/CMakeLists.txt)
if [ "$target" != all ]; then
  if ! printf '%s\n' "$targets" | grep -qxF "$target"; then
    # shellcheck disable=SC2086  # a list of words
    echo "fuzz.sh: no target '$target'; there are: all" $targets >&2
    exit 2
  fi
  targets=$target
fi

cmake --preset fuzz >/dev/null
# shellcheck disable=SC2046  # a list of words
ninja -C out/fuzz $(printf 'fuzz_%s ' $targets) >&2
status=0
for name in $targets; do
  mkdir -p "out/fuzz/corpus/$name" out/fuzz/findings
  dictionary=
  if [ -f "fuzz/$name.dict" ]; then dictionary=-dict=fuzz/$name.dict; fi
  # shellcheck disable=SC2086  # absent when empty
  if UBSAN_OPTIONS=print_stacktrace=1 "out/fuzz/bin/fuzz_$name" $dictionary \
    -max_total_time="$seconds" -max_len=8192 -timeout=60 -rss_limit_mb=2048 \
    -artifact_prefix="out/fuzz/findings/$name-" -print_final_stats=1 \
    "out/fuzz/corpus/$name" "fuzz/corpus/$name" 2>"out/fuzz/$name.log"; then
    outcome="no finding"
  else
    outcome="FINDING, see out/fuzz/$name.log"
    status=1
  fi
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "out/fuzz/$name.log")
  covered=$(sed -n 's/.* cov: \([0-9]*\) .*/\1/p' "out/fuzz/$name.log" | tail -n 1)
  printf '%-14s %6d s  %10s runs  %6s edges  %s\n' "$name" "$seconds" "${runs:-?}" \
    "${covered:-?}" "$outcome"
done
exit $status
