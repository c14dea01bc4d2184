#!/bin/sh
# Builds the benchmarks and runs ours beside the peers; options go to benchmarks/compare.py:
#
#   tools/bench.sh                                      all of it
#   tools/bench.sh --filter 'uniform double/' --repetitions 5
#   tools/bench.sh --native                             peers compiled with -O3 -march=native
#   tools/bench.sh --baseline                           our kernels on the lowest instruction set
#   tools/bench.sh --numpy                              NumPy as one more peer
#   tools/bench.sh --update docs/performance.md         keep the table
set -eu

root=$(cd "$(dirname "$0")/.." && pwd)
preset=bench
groups="build bench"
for option in "$@"; do
  shift
  case $option in
    --native) preset=bench-native ;;
    --numpy) groups="$groups numpy"; set -- "$@" "$option" ;;
    *) set -- "$@" "$option" ;;
  esac
done
# shellcheck disable=SC2086  # a list of words
"$root/tools/install_packages.sh" $groups
cd "$root"
cmake --preset $preset >&2
ninja --quiet -C "out/$preset" tvbench >&2
# NumPy from Debian belongs to Debian's Python.
exec /usr/bin/python3 benchmarks/compare.py "out/$preset/bin/tvbench" "$@"
