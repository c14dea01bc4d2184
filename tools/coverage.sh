#!/bin/sh
# Line and branch coverage of the library's own folders by its tests:
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
folders="tfl_rng errors plugin_rng rng vmstate builtins embedded_host runtime language shell"
least=95

cmake -S . -B $tree -G Ninja -DCMAKE_BUILD_TYPE=Coverage -DTV_WERROR=OFF \
  -DCMAKE_CXX_FLAGS="-O1 --coverage -fprofile-update=atomic -march=haswell -DHWY_COMPILE_ONLY_STATIC" \
  >$tree.log
ninja -C $tree >>$tree.log
find $tree -name '*.gcda' -delete
ctest --test-dir $tree -j "$(nproc)" -E '^exported_symbols$' >>$tree.log || { tail -n 20 $tree.log; exit 1; }

filters=
for folder in $folders; do filters="$filters --filter $folder/"; done
# shellcheck disable=SC2086  # words
gcovr -r . $filters -j "$(nproc)" --exclude-unreachable-branches --exclude-throw-branches \
  --json $tree/coverage.json $tree >/dev/null
python3 tools/coverage_table.py $tree/coverage.json $tree/uncovered.txt $least
