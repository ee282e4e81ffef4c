#!/usr/bin/env bash
# Installs the Debian packages that building, testing and the demo need.
# Runs apt-get only when a package is missing; uses sudo when not root.
set -euo pipefail

packages=(build-essential cmake pkg-config libcups2-dev libcupsimage2-dev libgtest-dev
          libbenchmark-dev libpng-dev cups-ppdc cups-client help2man man-db libpappl-dev
          libavahi-client-dev
          cups-ipp-utils libjpeg-turbo-progs python3)
if [ "${1:-}" = "--full" ]; then
  packages+=(cups cups-filters ghostscript poppler-utils clang libclang-rt-14-dev
             lintian logrotate chromium)
  # The printer application's browser test drives chromium with a driver
  # from the npm registry; node and npm may come from outside Debian.
  command -v npm >/dev/null 2>&1 || packages+=(npm)
  # Real documents of the end-to-end tests: a Code 128 bar code made with
  # barcode, and a screenshot shipped in valgrind's documentation.
  packages+=(barcode valgrind)
  # The photo badge of the black rendering test: its Code 128 bar code is
  # made with zint and read back from the black panel with zbarimg.
  packages+=(zint zbar-tools)
  # The badge table: badges made with glabels, qrencode and zint, read back
  # with zbarimg and, for Data Matrix and PDF417, which zbarimg cannot read,
  # with the zxing-cpp Python binding.
  packages+=(glabels qrencode python3-zxing-cpp python3-numpy)
fi

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

SUDO=""
[ "$(id -u)" -ne 0 ] && SUDO="sudo"
echo "Installing: ${missing[*]}"
$SUDO apt-get update -qq
DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
