#!/bin/sh
# The golden table in builds of other compilers, optimisation levels and instruction sets:
#
#   tools/golden_matrix.sh                 all of them, one after the other
#   tools/golden_matrix.sh gcc-O0 emulated these only
#
# Builds tvrng with each, in out/, and runs `tvrng doctor`, which goes through the vector targets and
# numbers of threads; then once more with the C library's variants for FMA and AVX2 masked. Fails
# when one hash differs. Takes about four minutes of one core for each build.
set -u

cd "$(dirname "$0")/.." || exit 2
tools/install_packages.sh build check || exit 1

# name  compiler  flags
builds="
gcc-O2          g++      -O2 -DNDEBUG
clang-O2        clang++  -O2 -DNDEBUG
gcc-O0          g++      -O0
emulated        clang++  -O2 -DNDEBUG
gcc-haswell     g++      -O3 -march=haswell -DNDEBUG
clang-native    clang++  -O3 -march=native -DNDEBUG
clang-haswell   clang++  -O3 -march=haswell -DNDEBUG
gcc-native      g++      -O3 -march=native -DNDEBUG
clang-O0        clang++  -O0
"
masked=glibc.cpu.hwcaps=-FMA,-FMA4,-AVX2

# The trees of the presets are used as they are.
tree_of() { # name
  case $1 in
    gcc-O2) echo build ;;
    clang-O2) echo out/clang ;;
    *) echo "out/golden-$1" ;;
  esac
}

configure() { # name compiler flags
  case $1 in
    gcc-O2) cmake --preset release; return ;;
    clang-O2) cmake --preset clang; return ;;
    emulated) every_target=ON ;;
    *) every_target=OFF ;;
  esac
  # A build type without flags of its own. At -O3 compilers warn of what is none.
  cmake -S . -B "$(tree_of "$1")" -G Ninja -DCMAKE_CXX_COMPILER="$2" -DCMAKE_BUILD_TYPE=Golden \
    -DCMAKE_CXX_FLAGS="$3" -DTV_EVERY_TARGET=$every_target -DTV_TESTS=OFF
}

check() { # name, what is told of it, setting of the environment
  env "$3" "$(tree_of "$1")/bin/tvrng" doctor >"out/golden-$1.txt" 2>&1
  status=$?
  targets=$(sed -n 's/^  *\([A-Z].*\)/\1/p' "out/golden-$1.txt" | tr -s ' ')
  printf '%-14s %-12s %s: %s\n' "$1" "$2" "$targets" "$(tail -n 1 "out/golden-$1.txt")"
  return $status
}

mkdir -p out
failed=0
while read -r name compiler flags; do
  [ -n "$name" ] || continue
  case " $* " in "  " | *" $name "*) ;; *) continue ;; esac
  if ! { configure "$name" "$compiler" "$flags" && ninja -C "$(tree_of "$name")" tvrng; } \
    >"out/golden-$name.log" 2>&1; then
    echo "$name: cannot be built, see out/golden-$name.log"
    failed=1
    continue
  fi
  check "$name" "" TV= || failed=1
  check "$name" "masked libm" "GLIBC_TUNABLES=$masked" || failed=1
done <<TABLE
$builds
TABLE
exit $failed
