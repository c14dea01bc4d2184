#!/bin/sh
# The library for JavaScript and the shell in a page, as WebAssembly by emscripten:
#
#   tools/web.sh            builds, packs and tests what follows
#   tools/web.sh build      out/wasm/site, the page; out/wasm/package, the files of the npm package
#   tools/web.sh doctor     tvrng doctor under node
#   tools/web.sh package    packs out/wasm/tvmathrng-*.tgz, and tests it in a fresh project
#   tools/web.sh page       tests the page in headless Chromium
#   tools/web.sh bench      times beside Math.random, seedrandom and pure-rand
#   tools/web.sh serve      the page on http://localhost:8000
#
# What the machine has no program for is skipped with a word; tools/install_packages.sh web brings
# them all.
set -eu

root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
out=$root/out/wasm

has() { # program, step
  command -v "$1" >/dev/null && return
  echo "web.sh: $2: skipped, there is no $1 (tools/install_packages.sh web)"
  return 1
}

step_build() {
  has em++ build || return 0
  # Modules of Debian's that emscripten runs, where node is not Debian's.
  export NODE_PATH=/usr/share/nodejs
  cmake --preset wasm >/dev/null && ninja --quiet -C "$out" tvrng tvmathrng_js
  rm -rf "$out/site" "$out/package"
  mkdir -p "$out/site" "$out/package"
  cp web/*.html web/*.css web/*.js web/*.mjs "$out/bin/tvrng.mjs" "$out/bin/tvrng.wasm" "$out/site"
  cp js/package.json js/README.md js/*.js js/*.ts "$out/bin/tvmathrng.wasm" "$out/package"
}
# What the other steps need; those say themselves that they are skipped.
built() { # file, step
  [ -e "$1" ] && return
  echo "web.sh: $2: skipped, nothing has been built"
  return 1
}
step_doctor() {
  built "$out/site/tvrng.wasm" doctor && has node doctor || return 0
  node "$out/site/run.mjs" doctor
}
step_package() {
  built "$out/package/tvmathrng.wasm" package && has npm package || return 0
  (cd "$out" && npm pack --silent ./package)
  fresh=$out/fresh
  rm -rf "$fresh"
  mkdir -p "$fresh"
  cp -r js/test "$fresh"
  cp -r tests/kat/draws "$fresh/test"
  (cd "$fresh" && echo '{"private": true, "type": "module"}' >package.json &&
    npm install --offline --no-audit --no-fund --no-package-lock --silent "$out"/tvmathrng-*.tgz &&
    node --test test/)
}
step_page() {
  built "$out/site/tvrng.wasm" page && has chromium page || return 0
  python3 tests/web/check_page.py "$out/site" "$out/fresh/node_modules/tvmathrng" "$out/pictures"
}
step_bench() {
  built "$out/package/tvmathrng.wasm" bench && has npm bench || return 0
  rm -rf "$out/bench"
  cp -r js/bench "$out/bench"
  (cd "$out/bench" && npm install --no-audit --no-fund --no-package-lock --silent "$out"/tvmathrng-*.tgz &&
    taskset -c 0 node bench.mjs)
}
step_serve() { python3 -m http.server --bind localhost --directory "$out/site" 8000; }

[ $# -gt 0 ] || set -- build doctor package page
for step in "$@"; do
  command -v "step_$step" >/dev/null || { sed -n '2,/^set/s/^# \{0,1\}//p' "$0"; exit 2; }
  "step_$step"
done
