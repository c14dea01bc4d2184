#!/bin/sh
# Builds the Debian packages into build/packages/, one for each component, from a tree of their own,
# out/package, whose prefix is /usr: libraries then go where Debian has those of each architecture.
#
#   tools/packages.sh             the packages
#   tools/packages.sh --check     and installs them into a scratch root, against the packages of this
#                                 system, where the shell must draw
set -eu

root=$(cd "$(dirname "$0")/.." && pwd)
packages=$root/build/packages
check=
case ${1-} in
  --check) check=yes ;;
  "") ;;
  *) echo "packages.sh: unknown option '$1'; there is --check" >&2; exit 2 ;;
esac

"$root/tools/install_packages.sh" build package
tree=$root/out/package
cmake --preset release -S "$root" -B "$tree" -DCMAKE_INSTALL_PREFIX=/usr -DTV_TESTS=OFF >/dev/null
ninja --quiet -C "$tree"
rm -rf "$packages"
mkdir -p "$packages"
(cd "$tree" && cpack -B "$packages" >"$tree/cpack.log" 2>&1) || {
  cat "$tree/cpack.log" >&2
  exit 1
}
rm -rf "$packages/_CPack_Packages"
ls "$packages"/*.deb
[ -n "$check" ] || exit 0

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
# With the list of what this system has, dpkg checks the dependencies as it would here.
mkdir -p "$scratch/var/lib/dpkg/info" "$scratch/var/lib/dpkg/updates"
cp /var/lib/dpkg/status "$scratch/var/lib/dpkg/"
# The packages renew the linker's cache, which here would be this system's.
mkdir "$scratch/stubs"
ln -s /bin/true "$scratch/stubs/ldconfig"
PATH=$scratch/stubs:$PATH dpkg --root="$scratch" --force-script-chrootless --force-not-root --log=/dev/null \
  -i "$packages"/*.deb >"$scratch/log" 2>&1 || { cat "$scratch/log" >&2; exit 1; }

seen=$("$scratch/usr/bin/tvrng" --json -e "rand")
case $seen in
  *0.81472368639317894*) echo "installed in a scratch root, tvrng draws 0.81472368639317894" ;;
  *) echo "packages.sh: the installed tvrng gave: $seen" >&2; exit 1 ;;
esac
if ldd "$scratch/usr/bin/tvrng" | grep -E 'libtv|libtfl' | grep -v "$scratch/"; then
  echo "packages.sh: the installed tvrng takes these from elsewhere" >&2
  exit 1
fi
