#!/bin/sh
# Line and branch coverage of every folder that is no test itself:
#
#   tools/coverage.sh          the table by folder, and the lines that no test runs in
#                              out/coverage/uncovered.txt
#
# Builds in out/coverage with -O1, the kernels for AVX2 alone, and runs all tests but that of the
# exported symbols, to which the counters add their own. Fails below 95 % of the lines. Takes about
# half an hour of one core.
set -eu

cd "$(dirname "$0")/.."
tools/install_packages.sh build coverage

tree=out/coverage
mkdir -p out
others="tests fuzz benchmarks battery examples out"
least=95

cmake -S . -B $tree -G Ninja -DCMAKE_BUILD_TYPE=Coverage \
  -DCMAKE_CXX_FLAGS="-O1 --coverage -fprofile-update=atomic -march=haswell -DHWY_COMPILE_ONLY_STATIC" \
  >$tree.log
ninja -C $tree >>$tree.log
find $tree -name '*.gcda' -delete
ctest --test-dir $tree -j "$(nproc)" -E '^exported_symbols_' >>$tree.log || { tail -n 20 $tree.log; exit 1; }

gcovr -r . --exclude "($(echo "$others" | tr ' ' '|'))/" -j "$(nproc)" --exclude-unreachable-branches --exclude-throw-branches \
  --json $tree/coverage.json $tree >/dev/null
python3 tools/coverage_table.py $tree/coverage.json $tree/uncovered.txt $least
