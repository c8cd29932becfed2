#!/usr/bin/env bash
# packages.sh ARCHITECTURE CACHE CONSUMER: makes the Debian packages, installs them with apt-get in
# a fresh Debian system and runs cloudconv and the program CONSUMER there.
#
# The fresh system is made once, by debootstrap, and kept as an archive in the folder CACHE. One of
# this machine's kind serves both processors: packages of the other one are installed beside its
# own and run under emulation. Those that cannot be installed beside its own, Python and development
# files, are checked in a root of nothing but that processor's packages. Exits with 77 where a fresh
# system cannot be made.
set -euo pipefail
architecture=$1 cache=$2 consumer=$3
project=$(cd "$(dirname "$0")/../.." && pwd)
native=$(dpkg --print-architecture)

skip() {
  echo "skipped: $1"
  exit 77
}

[ "$(id -u)" -eq 0 ] || skip "only root can make a fresh root with debootstrap"
mirror=$(apt-get indextargets --format '$(CODENAME) $(REPO_URI)' 'Created-By: Packages' |
  sed -n 's/^bookworm //p' | head -n 1)
[ -n "$mirror" ] || skip "apt-get has no package source for Debian 12"

# The archive of the fresh system, made by one test at a time.
mkdir -p "$cache"
exec 9>"$cache/lock"
flock 9
if [ ! -f "$cache/minbase.tar" ]; then
  rm -rf "$cache/minbase"
  debootstrap --variant=minbase bookworm "$cache/minbase" "$mirror" >"$cache/debootstrap.log" 2>&1 ||
    skip "debootstrap fails here: $(tail -n 1 "$cache/debootstrap.log")"
  tar -C "$cache/minbase" -cf "$cache/minbase.tar.part" .
  mv "$cache/minbase.tar.part" "$cache/minbase.tar"
  rm -rf "$cache/minbase"
fi
flock -u 9

root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
tar -C "$root" -xf "$cache/minbase.tar"

emulator=()
in_root=(chroot "$root")
at=
if [ "$architecture" != "$native" ]; then
  emulator=(qemu-aarch64 -L "$root")
  in_root=("${emulator[@]}")
  at=$root
  chroot "$root" dpkg --add-architecture "$architecture"
fi

quiet() {
  "$@" >"$root/tmp/log" 2>&1 || {
    cat "$root/tmp/log"
    return 1
  }
}
# install PACKAGE [OPTION...]: one of the packages just made.
install() {
  local file
  file=$(find "$root/tmp" -name "$1_*.deb" -printf '/tmp/%f')
  quiet chroot "$root" env DEBIAN_FRONTEND=noninteractive apt-get install -y \
    --no-install-recommends "${@:2}" "$file"
}

# apt_alone ARGUMENT...: apt-get for a system that has nothing yet, and only packages of the other
# processor.
apt_alone() {
  local state=$root/tmp/apt
  mkdir -p "$state"/{etc/apt.conf.d,etc/preferences.d,lists/partial,cache/archives/partial}
  touch "$state/status"
  echo "deb $mirror bookworm main" >"$state/etc/sources.list"
  cat >"$state/apt.conf" <<END
APT::Architecture "$architecture";
APT::Architectures { "$architecture"; };
APT::Install-Recommends "false";
Dir::State "$state";
Dir::State::status "$state/status";
Dir::Cache "$state/cache";
Dir::Etc "$state/etc";
Dir::Etc::trustedparts "/etc/apt/trusted.gpg.d";
END
  APT_CONFIG=$state/apt.conf quiet apt-get --yes "$@"
}
# unpack_alone ROOT PACKAGE...: unpacks packages, and all that they depend on, into such a system. No
# script of theirs is run: nothing here could.
unpack_alone() {
  local file
  apt_alone install --download-only "${@:2}"
  mkdir -p "$1"/usr/{bin,lib,sbin}
  ln -s usr/bin usr/lib usr/sbin "$1"
  for file in "$root"/tmp/apt/cache/archives/*.deb "${@:2}"; do
    dpkg-deb --fsys-tarfile "$file" | tar -C "$1" -x --keep-directory-symlink
  done
}

"$project/scripts/package.sh" $([ "$architecture" = "$native" ] || echo --aarch64)
cp "$project"/build/packages/*_"$architecture".deb "$root/tmp"
quiet chroot "$root" apt-get update
install libconverters1

# The consumer was linked with a staged install that the root does not have.
cp "$consumer" "$root/tmp/consumer"
"${in_root[@]}" "$at/tmp/consumer" | grep -qx '1 2 3 4'

# The tool: a scan of three points to binary and back to text.
install cloudconv
printf '%s\n' ply 'format ascii 1.0' 'element vertex 3' 'property float x' 'property float y' \
  'property float z' 'property float intensity' end_header '1 2 3 4' '5 6 7 8' '-9 0.5 1e+10 0' \
  >"$root/tmp/scan.ply"
"${in_root[@]}" "$at/usr/bin/cloudconv" "$at/tmp/scan.ply" "$at/tmp/binary.ply"
"${in_root[@]}" "$at/usr/bin/cloudconv" "$at/tmp/binary.ply" "$at/tmp/text.ply" --ascii
diff <(tail -n 3 "$root/tmp/scan.ply") <(tail -n 3 "$root/tmp/text.ply")
[ -s "$root/usr/share/man/man1/cloudconv.1" ]
"${in_root[@]}" "$at/usr/bin/cloudconv" preview "$at/tmp/scan.ply" "$at/tmp/page.html"
grep -q '</html>' "$root/tmp/page.html"

# The Python package: a scan there and back.
package=$(find "$root/tmp" -name 'python3-converters_*.deb')
[ "$(dpkg-deb --field "$package" Architecture)" = "$architecture" ]
version=$(dpkg-deb --field "$package" Version)
for dependency in "libconverters1 (= $version)" python3-numpy 'python3 (<< 3.12)'; do
  dpkg-deb --field "$package" Depends | grep -qF "$dependency"
done
dpkg-deb --extract "$package" "$root/tmp/python"
modules=usr/lib/python3/dist-packages/converters
diff <(cd "$project/python/converters" && find . -name '*.py*' ! -path '*__pycache__*' | sort) \
  <(cd "$root/tmp/python/$modules" && find . -name '*.py*' | sort)
machine=$([ "$architecture" = arm64 ] && echo aarch64 || echo x86_64)
file "$root/tmp/python/$modules/_native.cpython-311-$machine-linux-gnu.so" |
  grep -q "shared object, $([ "$architecture" = arm64 ] && echo 'ARM aarch64' || echo x86-64)"
[ -s "$root/tmp/python/usr/share/doc/python3-converters/copyright" ]
there_and_back='
import converters, importlib.metadata, platform, sys
cloud = converters.read_scan(sys.argv[1])
assert converters.from_ply(cloud.to_bytes()).xyz.shape == (3, 3)
assert importlib.metadata.version("converters") == converters.__version__
assert converters.__file__.startswith(sys.argv[2] + "/usr/lib/python3/"), converters.__file__
assert platform.machine() == sys.argv[3], platform.machine()
'
if [ "$architecture" = "$native" ]; then
  install python3-converters
  chroot "$root" python3 -c "$there_and_back" /tmp/scan.ply '' "$machine"
  [ -d "$root/$modules/__pycache__" ]
  quiet chroot "$root" apt-get remove -y python3-converters
  [ ! -e "$root/$modules" ]
fi

# Development files: that their dependencies can be met. And of the other processor Python, which
# cannot be installed beside this one's either.
if [ "$architecture" = "$native" ]; then
  install libconverters-dev --simulate
else
  apt_alone update
  apt_alone install --simulate "$root"/tmp/*_"$architecture".deb
  alone=$root/tmp/alone
  unpack_alone "$alone" "$root"/tmp/{libconverters1,cloudconv,python3-converters}_*.deb
  # Where scripts of packages would have made links to.
  libraries=$alone/usr/lib/aarch64-linux-gnu
  qemu-aarch64 -L "$alone" -E "LD_LIBRARY_PATH=$libraries/blas:$libraries/lapack" \
    "$alone/usr/bin/python3" -c "$there_and_back" "$root/tmp/scan.ply" "$alone" "$machine"
fi
