#!/usr/bin/env bash
# scripts/install-dependencies.sh [--aarch64] [--bench] [--tidy]: installs the Debian packages that
# building and testing need; with --aarch64 also those for cross-building and emulation, with --bench
# those of the benchmark, with --tidy clang-tidy. Does nothing when all are there.
set -euo pipefail

packages=(
  # to build
  g++ cmake ninja-build git ccache
  libpcl-dev libdxflib-dev libopencv-core-dev libeigen3-dev libboost-filesystem-dev libspdlog-dev
  libcli11-dev nlohmann-json3-dev libcairo2-dev fonts-dejavu-core
  # to test
  libgtest-dev libgmock-dev clang libclang-rt-14-dev clang-format-14 valgrind
  gdal-bin python3-ezdxf python3-gdal python3-scipy python3-open3d python3-vtk9 parallel rsync
  doxygen
  chromium chromium-driver python3-selenium python3-pil
  # to build and test the Python package
  python3-dev python3-pybind11 python3-numpy
  python3-pytest python3-matplotlib python3-pandas python3-distributed
  python3-pip python3-setuptools python3-venv python3-wheel mypy
  # to package, and to install the packages in a fresh root
  dpkg-dev file pkg-config debootstrap
)
aarch64_packages=(
  g++-aarch64-linux-gnu qemu-user
  libpcl-common1.13:arm64 libdxflib-dev:arm64 libboost-filesystem1.74-dev:arm64
  libspdlog-dev:arm64 libcairo2:arm64 libgtest-dev:arm64 libgmock-dev:arm64
  libpython3.11-dev:arm64
)
bench_packages=(
  libbenchmark-dev time libvtk9-dev libopen3d-dev libboost-iostreams-dev libgdal-dev
)

as_root=()
if [ "$(id -u)" -ne 0 ]; then
  as_root=(sudo)
fi

for option in "$@"; do
  case $option in
  --aarch64)
    packages+=("${aarch64_packages[@]}")
    if ! dpkg --print-foreign-architectures | grep -qx arm64; then
      "${as_root[@]}" dpkg --add-architecture arm64
    fi
    ;;
  --bench) packages+=("${bench_packages[@]}") ;;
  --tidy) packages+=(clang-tidy-14) ;;
  *)
    echo "usage: $0 [--aarch64] [--bench] [--tidy]" >&2
    exit 2
    ;;
  esac
done

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

echo "Installing: ${missing[*]}"
"${as_root[@]}" apt-get update -qq
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq \
  --no-install-recommends -o DPkg::Lock::Timeout=600 "${missing[@]}" >/dev/null
