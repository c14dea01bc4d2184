#!/bin/sh
# The binary interface of libtvmathrng against the one that is kept:
#
#   tools/abi.sh           tells every difference in the exported functions and in the layouts of
#                          classes; fails when there is one
#   tools/abi.sh --write   takes over the layouts as they are now
#
# The functions stand in tests/exported_symbols/tvmathrng.txt, which ./test holds too, the layouts
# in tests/abi_layouts.txt. Builds the library with debugging information in out/abi, its kernels in
# their scalar form alone, which changes nothing of the interface.
set -eu

cd "$(dirname "$0")/.."
tools/install_packages.sh build abi

tree=out/abi
kept=tests/abi_layouts.txt
now=$tree/layouts.txt

mkdir -p out
cmake -S . -B $tree -G Ninja -DCMAKE_BUILD_TYPE=Abi -DTV_TESTS=OFF \
  -DCMAKE_CXX_FLAGS="-O1 -g -DHWY_COMPILE_ONLY_SCALAR" >$tree.log
ninja -C $tree tvmathrng >>$tree.log || { tail -n 20 $tree.log; exit 1; }

library=$(readlink -f $tree/lib/libtvmathrng.so)
abidw --out-file $tree/abi.xml "$library"
python3 tools/abi_digest.py $tree/abi.xml >$now
[ "${1-}" != --write ] || cp $now $kept
python3 tests/exported_symbols/check.py nm "$library" tests/exported_symbols/tvmathrng.txt
diff -u $kept $now
echo "The binary interface is the one that is kept."
