#!/bin/sh
# The statistical batteries: our own (battery/) on every generator, and dieharder on words of
# `tvrng stream` and of the lowest bits. docs/statistics.md shows what came out.
#
#   tools/battery.sh                          our own with 2^22 numbers a test, then dieharder
#   tools/battery.sh own --log2 26            our own alone; its options follow
#   tools/battery.sh dieharder                dieharder on every generator
#   tools/battery.sh dieharder philox4x32_10  dieharder on one of them
#
# The exit status is 1 when a source that should pass fails, or a weak one passes.
set -eu

root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"

# Of dieharder's tests those that take seconds and that it calls good: birthday spacings, bitstream,
# ones in a stream, squeeze, runs, craps, monobit, byte distribution. Each starts a stream of its
# own. Some of the others take minutes each.
tests="0 4 8 13 15 16 100 205"

own() {
  tools/build.sh tv_battery
  build/bin/tv_battery "$@"
}

# The leading 32 bits of each number, and its lowest 32 in reverse order.
high() { build/bin/tvrng stream --generator "$1" --seed 1 --dist integers --raw; }
low() { build/bin/tv_battery --words "$1" --low; }

dieharder_row() { # generator, high or low
  for test in $tests; do
    "$2" "$1" 2>/dev/null | dieharder -g 200 -d "$test" -c , -D test_name -D ntuple -D pvalues
  done | tr -d ' ' | awk -F , -v source="$1, $2 bits" -v weak="$3" \
    -v tests="$(echo "$tests" | wc -w)" '
    NF == 3 {
      n++
      if (!seen[$1]++) done++
      extreme = $3 < 0.5 ? $3 : 1 - $3
      if (n == 1 || extreme < least) { least = extreme; p = $3; test = $1 }
    }
    END {
      family = 2 * least * n
      if (family > 1) family = 1
      if (done != tests) {
        printf "| %s | %d | %d of %d tests ended | | BROKEN |\n", source, n, done, tests
        exit 1
      }
      failed = family < 1e-6
      printf "| %s | %d | %s: %s | %.2g | %s%s |\n", source, n, test, p, family,
        failed ? "fails" : "passes", failed && !weak ? ", UNEXPECTED" : ""
      exit failed && !weak
    }'
}

# 1 for a generator whose row in the registry says that it fails, else 0.
mayFail() { # generator
  awk -v wanted="$1" '
    /^TFL_GENERATOR\(/ { name = $0; gsub(/^TFL_GENERATOR\(|,.*/, "", name) }
    /Verdict::fails/ && name == wanted { weak = 1 }
    END { print weak + 0 }' tfl_rng/generators.def
}

run_dieharder() { # generators
  tools/install_packages.sh battery
  tools/build.sh tv_battery tvrng
  unexpected=0
  echo "| Source | p-values | Most extreme | Family-wise | Verdict |"
  echo "|---|---|---|---|---|"
  for generator in "$@"; do
    for bits in high low; do
      dieharder_row "$generator" $bits "$(mayFail "$generator")" || unexpected=1
    done
  done
  return $unexpected
}

all=$(sed -n 's/^TFL_GENERATOR(\([a-z0-9_]*\),.*/\1/p' tfl_rng/generators.def)
what=${1:-all}
[ $# -eq 0 ] || shift
# shellcheck disable=SC2086  # a list of words
case $what in
  own) own "$@" ;;
  dieharder) run_dieharder ${*:-$all} ;;
  all)
    status=0
    own || status=1
    run_dieharder $all || status=1
    exit $status
    ;;
  *)
    echo "battery.sh: own or dieharder, not $what" >&2
    exit 2
    ;;
esac
