#!/bin/sh
# Installs the Debian packages of the named groups of tools/packages.txt that are missing:
#
#   tools/install_packages.sh build bench
#
# Asks the package database first, so that nothing is fetched, and no network needed, when all are
# there. Installs as root or through sudo; otherwise prints the command to run and stops.
# Everything it says goes to standard error.
set -eu

list=$(dirname "$0")/packages.txt
wanted=
for group in "$@"; do
  packages=$(sed -n "s/^$group: //p" "$list" | tr '\n' ' ')
  if [ -z "$packages" ]; then
    echo "install_packages.sh: no group '$group' in $list" >&2
    exit 2
  fi
  wanted="$wanted $packages"
done

# Other systems bring their packages under their own names; the build then says what it misses.
command -v dpkg-query >/dev/null || exit 0

# shellcheck disable=SC2086  # lists of words
installed=$(dpkg-query -W -f='${db:Status-Status} ${Package}\n' $wanted 2>/dev/null |
  sed -n 's/^installed //p') || true
missing=
for package in $wanted; do
  if ! printf '%s\n' "$installed" | grep -qxF "$package"; then missing="$missing $package"; fi
done
[ -n "$missing" ] || exit 0

install="apt-get install -y --no-install-recommends$missing"
if [ "$(id -u)" = 0 ]; then
  as_root=
elif command -v sudo >/dev/null && { [ -t 0 ] || sudo -n true 2>/dev/null; }; then
  as_root="sudo "
else
  {
    echo "These Debian packages are missing:$missing"
    echo "Install them as root with:"
    echo "  apt-get update && $install"
  } >&2
  exit 1
fi
echo "Installing:$missing" >&2
# shellcheck disable=SC2086
{
  ${as_root}env DEBIAN_FRONTEND=noninteractive apt-get update
  ${as_root}env DEBIAN_FRONTEND=noninteractive $install
} >&2
