#!/bin/sh
# Builds the documents as a site into build/site/, with the reference pages of the C++ and C
# interfaces, and checks its links. Search needs a server: python3 -m http.server -d build/site
set -eu

root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
tools/install_packages.sh docs site
tools/docs.sh >build/site.log 2>&1 || { cat build/site.log >&2; exit 1; }
python3 tools/site_pages.py build/site_pages
cp -r build/docs/html build/site_pages/reference
cp docs/site.yml build/site.yml
printf 'docs_dir: site_pages\nsite_dir: site\n' >>build/site.yml
mkdocs build --quiet --strict --clean -f build/site.yml
python3 tools/site_pages.py --check build/site
echo "$root/build/site/index.html"
