#!/bin/sh
# The golden table on AArch64: cross-builds tvrng in out/aarch64 and runs `tvrng doctor` under qemu.
#
#   tools/aarch64.sh
#
# The arm64 packages are unpacked below out/aarch64-root, not installed. Takes about ten minutes of
# one core.
set -eu

cd "$(dirname "$0")/.."
tools/install_packages.sh build aarch64

tree=$PWD/out/aarch64
root=$PWD/out/aarch64-root
packages="libtbb-dev libboost-dev libhwy-dev libfmt-dev libtomlplusplus-dev libedit-dev"

# apt with lists and a cache of its own: as if on an arm64 machine with nothing installed.
arm64_apt() {
  apt-get -qq -o APT::Architecture=arm64 -o APT::Architectures=arm64 -o APT::Sandbox::User=root \
    -o Dir::State="$root/apt" -o Dir::State::status="$root/apt/status" \
    -o Dir::Cache="$root/apt/cache" "$@"
}

if [ ! -e "$root/complete" ]; then
  mkdir -p "$root/apt/lists/partial" "$root/apt/cache/archives/partial"
  : >"$root/apt/status"
  arm64_apt update
  # shellcheck disable=SC2086  # words
  arm64_apt install --yes --download-only --no-install-recommends $packages
  for archive in "$root"/apt/cache/archives/*.deb; do
    case $(basename "$archive") in
      # The cross compiler has these.
      libc6* | libc-* | linux-libc* | libgcc* | gcc-* | libstdc++*) ;;
      *) dpkg -x "$archive" "$root" ;;
    esac
  done
  touch "$root/complete"
fi

cmake -S . -B "$tree" -G Ninja -DCMAKE_TOOLCHAIN_FILE=cmake/aarch64.cmake -DTV_SYSROOT="$root" \
  -DCMAKE_BUILD_TYPE=Release -DTV_TESTS=OFF >"$tree.log"
ninja -C "$tree" tvrng >>"$tree.log" || { tail -n 20 "$tree.log"; exit 1; }

# shellcheck disable=SC2086
qemu-aarch64 -L /usr/aarch64-linux-gnu \
  -E LD_LIBRARY_PATH="$root/usr/lib/aarch64-linux-gnu:$root/lib/aarch64-linux-gnu" \
  "$tree/bin/tvrng" doctor
