#!/bin/sh
# Makes a fresh Debian of this system's release in a scratch folder and runs every block of commands
# of the documents there, page by page, in order, in a clone of the last commit: what a newcomer
# sees. Wants root and debootstrap; takes half an hour.
#
#   tools/fresh.sh [PAGE...]
set -eu

root=$(cd "$(dirname "$0")/.." && pwd)
"$root/tools/install_packages.sh" fresh
release=$(. /etc/os-release && echo "$VERSION_CODENAME")
site=$(apt-get indextargets --format '$(SITE)' "Codename: $release" | head -n 1)
fresh=$(mktemp -d)
leave() {
  umount "$fresh/proc" 2>/dev/null || true
  rm -rf --one-file-system "$fresh"
}
trap leave EXIT
debootstrap --variant=minbase --include=ca-certificates,git,python3 "$release" "$fresh" "$site" >/dev/null
# Packages come from where this system has them from.
rm -f "$fresh/etc/apt/sources.list"
for part in sources.list sources.list.d apt.conf.d trusted.gpg.d keyrings; do
  [ ! -e "/etc/apt/$part" ] || cp -r "/etc/apt/$part" "$fresh/etc/apt/"
done
cp /etc/resolv.conf "$fresh/etc/resolv.conf"
mount -t proc proc "$fresh/proc"
git clone --quiet "$root" "$fresh/tree"
for page in "$@"; do set -- "$@" "/tree/$page"; shift; done
chroot "$fresh" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 \
  python3 /tree/tests/documents/run_commands.py "$@"
