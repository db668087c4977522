#!/usr/bin/env bash
# Installs packages of Debian into a minimal system, uses them there and removes them: minimal_root.sh FOLDER PACKAGE...
#
# The system is made once in the user's cache folder (about 300 MB, half a minute). What a run changes of it goes to FOLDER, in a
# namespace of mounts of its own.
. "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/../../scripts/common.sh"

folder="$1"
base="$cache/minimal"
root="$folder/root"

make_base() {
  local address release
  [ -e "$base/etc/zkr13n-ready" ] && return
  need "making a minimal system in $base" debootstrap
  read -r address release <<<"$(package_source)"
  [ -n "$address" ] || die "found no package source of Debian in /etc/apt"
  say "Making a minimal system (once) in $base"
  mkdir -p "$cache"
  as_root rm -rf --one-file-system "$base"
  as_root debootstrap --variant=minbase --include=ca-certificates "$release" "$base" "$address" >"$folder/make.log" 2>&1 </dev/null ||
    installation_failed "$folder/make.log" "a minimal system"
  as_root touch "$base/etc/zkr13n-ready"
}

if [ "${2:-}" != --inside ]; then
  make_base
  status=0
  as_root unshare --mount --propagation private env "XDG_CACHE_HOME=${cache%/*}" "$0" "$folder" --inside "${@:2}" || status=$?
  as_root rm -rf --one-file-system "$root" "$folder/changes"
  as_root chown -R "$(id -u)" "$folder"
  exit "$status"
fi

# From here on as root, in the namespace.
shift 2
export DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8
inside() { env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin "LC_ALL=$LC_ALL" DEBIAN_FRONTEND=noninteractive chroot "$root" "$@"; }

mkdir -p "$root" "$folder/changes" "$cache/minimal-packages"
# The folder of overlays must not lie on an overlay itself.
mount -t tmpfs tmpfs "$folder/changes"
mkdir "$folder/changes/upper" "$folder/changes/work"
mount -t overlay overlay -o "lowerdir=$base,upperdir=$folder/changes/upper,workdir=$folder/changes/work" "$root" ||
  cp -a "$base/." "$root"
mount -t proc proc "$root/proc"
mount --rbind /dev "$root/dev"
mount --bind "$cache/minimal-packages" "$root/var/cache/apt/archives"
cp /etc/resolv.conf "$root/etc/" 2>/dev/null || true
cp -r /etc/apt/apt.conf.d/. "$root/etc/apt/apt.conf.d/" 2>/dev/null || true
printf 'APT::Keep-Downloaded-Packages "true";\n' >"$root/etc/apt/apt.conf.d/99keep"
printf '#!/bin/sh\nexit 101\n' >"$root/usr/sbin/policy-rc.d"
chmod +x "$root/usr/sbin/policy-rc.d"
cp "$@" "$root/root/"
files=()
for file in "$@"; do files+=("/root/$(basename "$file")"); done
(inside apt-get -q update && inside apt-get -q -y install --no-install-recommends "${files[@]}") >"$folder/install.log" 2>&1 ||
  installation_failed "$folder/install.log" "$@"

inside ldconfig -p | grep -q 'libZKR13N\.so\.13 ' || die "the loader does not know libZKR13N.so.13"

# A program of a stranger, built against what lies in the system, and run there.
consumer="$top/tests/consumer"
libraries="$(dirname "$(find "$root/usr/lib" -name zkr13n.pc)")"
read -ra flags <<<"$(PKG_CONFIG_LIBDIR="$libraries" pkg-config --cflags --libs zkr13n)"
cc -std=c99 "$consumer/main.c" -o "$root/root/by-pkg-config" "${flags[@]}"
(cmake -S "$consumer" -B "$folder/cmake" -DCMAKE_PREFIX_PATH="$root/usr" && cmake --build "$folder/cmake") >"$folder/cmake.log" 2>&1 ||
  { cat "$folder/cmake.log" && exit 1; }
cp "$folder/cmake/consumer" "$root/root/by-cmake"
inside /root/by-pkg-config
inside /root/by-cmake

# The program, with the module for strips of 1 bit.
{ printf 'P4 64 64\n' && head -c 512 /dev/zero; } >"$root/root/page.pbm"
inside zkr rotate /root/page.pbm /root/turned.png --angle 90 --storage strips
head -c 4 "$root/root/turned.png" | grep -q PNG || die "zkr has written no picture"
[ -n "$(inside dpkg -L zkr | sed -n /zkr.1.gz/p)" ] || die "there is no man page"

if [ -e "$root/usr/lib/python3/dist-packages/zkr13n" ]; then
  cp "$top/tests/packages/wheel.py" "$root/root/"
  inside python3 /root/wheel.py /usr/lib
fi

names=()
for file in "$@"; do names+=("$(dpkg-deb -f "$file" Package)"); done
inside dpkg --purge "${names[@]}" >"$folder/purge.log" 2>&1 || die "cannot purge: $(cat "$folder/purge.log")"
left="$(find "$root/usr" "$root/etc" "$root/var/lib/dpkg/info" \( -iname '*zkr*' -o -name '*ZFCMP13S*' -o -name '*ZFFAX13S*' \) ! -name zkr13n-ready)"
[ -z "$left" ] || die "what purging leaves behind: $left"
echo "installed, used and purged in a minimal system: ${names[*]}"
