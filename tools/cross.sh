#!/bin/sh
# The same numbers on another architecture:
#
#   tools/cross.sh ARCH     aarch64, i386, ppc64el or s390x
#
# Cross-builds tvrng and the quick tests in out/cross/ARCH with Debian's compiler, runs
# `tvrng doctor` and the tests in emulation (i386 on the machine itself), and compares the snapshots
# that it makes with those of tests/rng/snapshots.txt, which the tests read. Ends with the row of
# the machine for the table in docs/reproducibility.md.
#
# The packages of the architecture are unpacked below out/cross/ARCH-root, not installed.
set -eu

cd "$(dirname "$0")/.."
arch=${1:?usage: tools/cross.sh ARCH}
case $arch in
  aarch64) debian=arm64 triplet=aarch64-linux-gnu tools=$triplet emulator=qemu-aarch64 ;;
  i386) debian=i386 triplet=i386-linux-gnu tools=i686-linux-gnu emulator=none ;;
  ppc64el) debian=ppc64el triplet=powerpc64le-linux-gnu tools=$triplet emulator=qemu-ppc64le ;;
  s390x) debian=s390x triplet=s390x-linux-gnu tools=$triplet emulator=qemu-s390x ;;
  *) echo "cross.sh: no architecture '$arch'" >&2; exit 2 ;;
esac
tools/install_packages.sh build "$arch"

tree=$PWD/out/cross/$arch
root=$tree-root
packages="libtbb-dev libboost-dev libhwy-dev libfmt-dev libtomlplusplus-dev libedit-dev
  libgtest-dev libgmock-dev"

# apt with lists and a cache of its own: as if on such a machine with nothing installed.
foreign_apt() {
  apt-get -qq -o APT::Architecture=$debian -o APT::Architectures=$debian \
    -o APT::Sandbox::User=root -o Dir::State="$root/apt" -o Dir::State::status="$root/apt/status" \
    -o Dir::Cache="$root/apt/cache" "$@"
}

if [ ! -e "$root/complete" ]; then
  mkdir -p "$root/apt/lists/partial" "$root/apt/cache/archives/partial"
  : >"$root/apt/status"
  foreign_apt update || echo "cross.sh: going on with the lists that there are" >&2
  # shellcheck disable=SC2086  # words
  foreign_apt install --yes --download-only --no-install-recommends $packages
  for archive in "$root"/apt/cache/archives/*.deb; do
    case $(basename "$archive") in
      # The cross compiler has these.
      libc6* | libc-* | linux-libc* | libgcc* | gcc-* | libstdc++*) ;;
      *) dpkg -x "$archive" "$root" ;;
    esac
  done
  touch "$root/complete"
fi

paths=$root/usr/lib/$triplet:$root/lib/$triplet
if [ "$emulator" = none ]; then
  run="/usr/$tools/lib/ld-linux.so.2;--library-path;$paths:/usr/$tools/lib"
else
  run="$emulator;-L;/usr/$tools;-E;LD_LIBRARY_PATH=$paths"
fi
cmake -S . -B "$tree" -G Ninja -DCMAKE_TOOLCHAIN_FILE=cmake/cross.cmake -DTV_ARCH="$arch" \
  -DTV_SYSROOT="$root" -DCMAKE_CROSSCOMPILING_EMULATOR="$run" -DCMAKE_BUILD_TYPE=Release \
  >"$tree.log"
quick="tfl_rng plugin_rng rng rng_kernels embedded_host vmstate language"
# shellcheck disable=SC2086,SC2046  # words
ninja -C "$tree" tvrng $(printf 'test_%s ' $quick) >>"$tree.log" ||
  { grep -E -A3 'error|FAILED' "$tree.log" | tail -n 20; exit 1; }

emulated() {
  old=$IFS
  IFS=';'
  # shellcheck disable=SC2086  # words
  set -- $run "$@"
  IFS=$old
  "$@"
}
emulated "$tree/bin/tvrng" doctor | tee "$tree.doctor"
(cd "$tree" && ctest --output-on-failure -R "^($(echo $quick | tr ' ' '|'))\$")
emulated "$tree/bin/tvrng" tools/snapshots.tv 2>/dev/null | cmp - tests/rng/snapshots.txt
echo "The snapshots of this architecture are those of the others."

targets=$(sed -n 's/^generator  *//p' "$tree.doctor" | tr -s ' ' | sed 's/ $//; s/ /, /g')
hashes=$(sed -n 's/.*: \([0-9]*\) hashes.*/\1/p' "$tree.doctor")
echo "| $("$tools-g++" --version | sed -n '1s/.* \([0-9.]*\)$/g++ \1/p'), $arch | $targets |" \
  "$hashes | $(date +%Y-%m-%d) |"
