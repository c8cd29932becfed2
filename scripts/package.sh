#!/usr/bin/env bash
# scripts/package.sh [--aarch64]: makes the Debian packages in build/packages.
set -euo pipefail
cd "$(dirname "$0")/.."

preset=package
architecture=$(dpkg --print-architecture)
case ${1-} in
'') ;;
--aarch64)
  preset=package-aarch64
  architecture=arm64
  ;;
*)
  echo "usage: $0 [--aarch64]" >&2
  exit 2
  ;;
esac

scripts/install-dependencies.sh "$@"
scripts/build.sh "$preset"
mkdir -p build/packages
rm -f build/packages/*_"$architecture".deb
# dpkg-shlibdeps looks for the libraries of the processor that the environment names.
dpkg-architecture --host-arch "$architecture" --force --command \
  cpack --config "build/$preset/CPackConfig.cmake" >"build/$preset/cpack.log" 2>&1 || {
  cat "build/$preset/cpack.log"
  exit 1
}
mv "build/$preset"/packages/*.deb build/packages
ls build/packages/*_"$architecture".deb
