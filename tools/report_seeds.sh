#!/bin/sh
# How often a good generator's report is green, over many seeds:
#
#   tools/report_seeds.sh [SEEDS [GENERATOR]]     (100 philox4x32_10)
#
# Verdicts allow one red page in a thousand, so that at least 99 of 100 seeds stay green; exits with
# 1 when fewer do. About two seconds a seed.
set -eu
cd "$(dirname "$0")/.."
tools/install_packages.sh build
cmake --preset release >/dev/null
ninja --quiet -C build test_report
TV_REPORT_SEEDS=${1:-100} TV_REPORT_GENERATOR=${2:-philox4x32_10} \
  build/bin/test_report --gtest_filter=Report.GoodGeneratorStaysGreen
