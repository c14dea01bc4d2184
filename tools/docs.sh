#!/bin/sh
# Reference pages of the C++ and C interfaces, with the guides beside them, into build/docs/html;
# a warning is an error. Checks the man page too.
set -eu

root=$(cd "$(dirname "$0")/.." && pwd)
"$root/tools/install_packages.sh" docs
cd "$root"
mkdir -p build/docs
(cat docs/Doxyfile && echo "OUTPUT_DIRECTORY = build/docs") | doxygen -
mandoc -Tlint docs/tvrng.1
echo "$root/build/docs/html/index.html"
