#!/bin/sh
# Brings build/ up to date: installs missing packages, configures once, builds the named targets
# (everything when none is named). Says nothing when there is nothing to do; otherwise everything
# goes to standard error, so that a caller's standard output stays its own.
set -eu

root=$(cd "$(dirname "$0")/.." && pwd)
build=$root/build

"$root/tools/install_packages.sh" build
mkdir -p "$build"
# One build at a time in this tree; a second caller waits for the first.
exec 9>"$build/.lock"
flock 9
if [ ! -f "$build/build.ninja" ]; then
  cmake --preset release -S "$root" >&2 9>&-
fi
# What a dry run cannot tell: whether there are sources, or packages of the system, that the last
# configure did not find.
said=$(ninja -C "$build" build.ninja 2>&1 9>&-) || {
  printf '%s\n' "$said" >&2
  exit 1
}
case $said in *"Re-running CMake"*) printf '%s\n' "$said" >&2 ;; esac
# A dry run of the rest tells whether anything is to do, without a word on the terminal.
sed '/: RERUN_CMAKE/,/^$/d' "$build/build.ninja" >"$build/dry_run.ninja"
case $(ninja -C "$build" -f dry_run.ninja -n "$@" 2>&1 9>&-) in
  *"no work to do."*) ;;
  *) ninja -C "$build" "$@" >&2 9>&- ;;
esac
