#!/usr/bin/env bash
# Installs the Debian packages that building and testing need. Does nothing when all are there.
set -euo pipefail

packages=(
  # to build
  g++ cmake ninja-build git
  libpcl-dev libdxflib-dev libopencv-core-dev libeigen3-dev libboost-filesystem-dev libspdlog-dev
  libcli11-dev
  # to test
  libgtest-dev libgmock-dev clang-format-14
)

missing=()
for package in "${packages[@]}"; do
  if ! dpkg-query --show --showformat='${db:Status-Status}\n' "$package" 2>/dev/null |
    grep -qx installed; then
    missing+=("$package")
  fi
done
if [ "${#missing[@]}" -eq 0 ]; then
  exit 0
fi

as_root=()
if [ "$(id -u)" -ne 0 ]; then
  as_root=(sudo)
fi
echo "Installing: ${missing[*]}"
"${as_root[@]}" apt-get update -qq
DEBIAN_FRONTEND=noninteractive "${as_root[@]}" apt-get install -y -qq --no-install-recommends \
  "${missing[@]}" >/dev/null
