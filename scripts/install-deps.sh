#!/usr/bin/env bash
# Installs everything Corvida needs to build, test and benchmark, from Debian's packages.
# Safe to run again: when every package is present it only checks and returns.
set -euo pipefail

packages=(
    build-essential cmake ninja-build pkg-config
    qt6-base-dev qt6-base-dev-tools libgl-dev
    qt6-serialport-dev qt6-svg-dev qt6-5compat-dev
    qt6-tools-dev qt6-tools-dev-tools qt6-l10n-tools qt6-translations-l10n
    libedf-dev libxlsxwriter-dev
    libbenchmark-dev clang
    python3-openpyxl biosig-tools
    xvfb xauth
    fonts-open-sans
    dpkg-dev desktop-file-utils   # the Debian package (cpack -G DEB) and its desktop entry
    python3-markdown help2man     # the manual as HTML and the manual pages
)

missing=()
for p in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
        missing+=("$p")
    fi
done

if [ ${#missing[@]} -eq 0 ]; then
    exit 0
fi

echo "Installing: ${missing[*]}"
sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then
    sudo_cmd=(sudo)
fi
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update -qq
"${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
