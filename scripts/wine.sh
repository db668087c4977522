#!/usr/bin/env bash
# Runs Windows programs through Wine, each kind (32 or 64 bits) in a prefix of its own in the user's cache folder.
#
#   scripts/wine.sh prepare 32|64             gets ready what the other two use
#   scripts/wine.sh exec 32|64 PROGRAM...     runs a program; ZKR_WINE_DISPLAY=1024x768x8 gives it a screen
#   scripts/wine.sh session 32|64 COMMAND...  keeps Wine's server alive while COMMAND runs programs
#
# Where no Wine of the machine runs 32-bit programs, a small i386 system is made in the cache folder. A program
# sees its /usr and /etc in the place of the machine's own, and everything else as it is. The mounts live in a
# namespace of that one process: nothing is left behind, whatever ends it.
# shellcheck source=common.sh disable=SC2016
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

action="${1:-}" bits="${2:-}"
[[ "$action" =~ ^(prepare|exec|session)$ && "$bits" =~ ^(32|64)$ ]] || die "see the head of scripts/wine.sh"
shift 2
home="$cache/wine$bits"
root="$home/root"
recipe=1 # of the i386 system; another number remakes it

export WINEDEBUG="${WINEDEBUG:--all}" WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe=d" LC_ALL=C.UTF-8
if [ "$bits" = 32 ]; then export WINEARCH=win32; else export WINEARCH=win64; fi
export WINEPREFIX="$home/prefix"

# A namespace of mounts, as root, or as a user who is root in it.
own_mounts=(unshare --mount)
[ "$(id -u)" -eq 0 ] || own_mounts+=(--map-root-user)

# Finds the programs of Wine. Inside the i386 system they have its paths.
machine_wine() {
  local directory
  for directory in /usr/lib/wine /usr/bin; do
    [ "$bits" = 64 ] && [ -x "$directory/wine64" ] && wine="$directory/wine64"
    [ -x "$directory/wineserver" ] && server="$directory/wineserver"
  done
  if command -v wine >/dev/null; then wine="$(command -v wine)"; fi
  if command -v wineserver >/dev/null; then server="$(command -v wineserver)"; fi
  in_system=()
}
system_wine() {
  wine=/usr/lib/wine/wine server=/usr/lib/wine/wineserver
  in_system=("${own_mounts[@]}" /bin/bash -c 'mount --bind "$0/etc" /etc && mount --bind "$0/usr" /usr && exec "$@"' "$root")
}
choose_wine() {
  wine="" server=""
  if [ "$bits" = 64 ] || [ -e "$home/machine" ]; then machine_wine; else system_wine; fi
}
ready() {
  if [ "$bits" = 64 ] || [ -e "$home/machine" ]; then
    [ -n "$wine" ] && [ -n "$server" ]
  else
    [ "$(cat "$root/etc/zkr13n-recipe" 2>/dev/null)" = "$recipe" ]
  fi
}

# Whether a wine on the PATH runs 32-bit programs is found out with the smallest of them.
machine_runs_32() {
  command -v wine >/dev/null || return 1
  echo 'int main(void) { return 7; }' | i686-w64-mingw32-gcc -x c - -o "$home/probe.exe" || return 1
  local status=0
  WINEPREFIX="$home/probe" timeout 120 wine "$home/probe.exe" >/dev/null 2>&1 || status=$?
  rm -rf "$home/probe" "$home/probe.exe"
  [ "$status" -eq 7 ]
}

# Runs as root, in a namespace of mounts.
make_system='
  root="$1" address="$2" release="$3" recipe="$4"
  export DEBIAN_FRONTEND=noninteractive
  case "$address" in https:*) also=--include=ca-certificates ;; *) also= ;; esac
  debootstrap --arch=i386 --variant=minbase $also "$release" "$root" "$address" || exit 1
  mount --bind /proc "$root/proc"
  printf "#!/bin/sh\nexit 101\n" >"$root/usr/sbin/policy-rc.d"
  chmod +x "$root/usr/sbin/policy-rc.d"
  chroot "$root" apt-get -q update || exit 1
  chroot "$root" apt-get -q -y install --no-install-recommends wine wine32 xvfb || exit 1
  chroot "$root" apt-get clean
  echo "$recipe" >"$root/etc/zkr13n-recipe"'

# The system is made under another name and renamed when it is whole, so that a half-made one is never used.
prepare_system() {
  local address release
  need "making an i386 system with Wine in $home" debootstrap
  read -r address release <<<"$(package_source)"
  [ -n "$address" ] || die "found no package source of Debian in /etc/apt"
  say "Making a small i386 system with Wine (once, about a minute and 2 GB in $home)"
  as_root rm -rf --one-file-system "$root.new" "$root"
  as_root unshare --mount /bin/bash -c "$make_system" make "$root.new" "$address" "$release" "$recipe" \
    >"$home/make.log" 2>&1 </dev/null || {
    tail -n 20 "$home/make.log" >&2
    as_root rm -rf --one-file-system "$root.new"
    installation_failed "the i386 system with Wine (see $home/make.log)"
  }
  as_root mv "$root.new" "$root"
}

# A prefix without its mark is half-made.
make_prefix() {
  [ -e "$WINEPREFIX/ready" ] && return
  say "Making a Wine prefix in $WINEPREFIX"
  rm -rf --one-file-system "$WINEPREFIX"
  mkdir -p "$WINEPREFIX"
  "${in_system[@]}" "$wine" wineboot --init >/dev/null 2>&1 || true
  "${in_system[@]}" "$server" -w
  [ -e "$WINEPREFIX/system.reg" ] || die "Wine did not make its prefix in $WINEPREFIX"
  touch "$WINEPREFIX/ready"
}

# The temporary files of programs lie in memory where there is room for them.
place_temporary_files() {
  local folder user
  folder="/dev/shm/zkr13n-$(id -u)-wine$bits"
  for user in "$WINEPREFIX"/drive_c/users/*/; do
    if memory_takes_files && mkdir -p "$folder"; then
      # Only an empty folder makes way: a program may be at work in it.
      if rmdir "${user}Temp" 2>/dev/null; then ln -s "$folder" "${user}Temp"; fi
    elif [ -L "${user}Temp" ]; then
      rm "${user}Temp"
      mkdir "${user}Temp"
    fi
  done
}

# A screen for this process, and the prefix that knows it: Wine takes its graphics driver once for a prefix. One
# process at a time has it.
take_screen() {
  local number
  WINEPREFIX="$home/prefix-display"
  exec 7>"$home/prefix-display.lock"
  flock 7
  coproc "${in_system[@]}" Xvfb -displayfd 1 -screen 0 "$1" -nolisten tcp 2>/dev/null 7>&-
  screen="$COPROC_PID"
  trap 'kill "$screen" 2>/dev/null; wait "$screen" 2>/dev/null || true' EXIT
  read -r -t 60 number <&"${COPROC[0]}" || die "Xvfb does not start"
  export DISPLAY=":$number"
}

prepare() {
  mkdir -p "$home"
  exec 9>"$home/lock"
  flock 9
  if [ "$bits" = 64 ] && ! command -v wine >/dev/null; then need "running 64-bit Windows programs" wine64 xvfb; fi
  choose_wine
  if ! ready; then
    if [ "$bits" = 32 ] && machine_runs_32; then touch "$home/machine"; fi
    choose_wine
    ready || { [ "$bits" = 32 ] && prepare_system; }
  fi
  (
    unset DISPLAY
    make_prefix
  )
  if [ ! -e "$home/prefix-display/ready" ]; then
    (
      take_screen 1024x768x8
      make_prefix
    )
  fi
  exec 9>&-
}

not_ready="Wine is not ready for $bits-bit programs: scripts/wine.sh prepare $bits gets it ready"

run_on_screen() {
  local status=0
  take_screen "$ZKR_WINE_DISPLAY"
  make_prefix
  "${in_system[@]}" "$wine" "$@" 7>&- || status=$?
  "${in_system[@]}" "$server" -k || true
  "${in_system[@]}" "$server" -w
  exit "$status"
}

# The server ends with its last session, and by itself ten minutes after a session that could not end it. The
# services that it starts hold what the first program's output goes to, so that program writes nowhere.
run_session() {
  local status=0
  exec 8>"$home/sessions"
  flock -s 8
  "${in_system[@]}" "$server" -p600 >/dev/null 2>&1 8>&- || true
  "${in_system[@]}" "$wine" cmd /c exit >/dev/null 2>&1 8>&- || true
  trap 'flock -n -x 8 && "${in_system[@]}" "$server" -k 8>&- || true' EXIT
  "$@" 8>&- || status=$?
  exit "$status"
}

case "$action" in
prepare) prepare ;;
exec)
  # Wine starts programs of this machine too, and gives 0 whatever they give.
  if [ -f "$1" ] && [ "$(head -c 2 "$1" | tr -d '\0')" != MZ ]; then die "$1 is no Windows program"; fi
  choose_wine
  ready || die "$not_ready"
  [ -n "${ZKR_WINE_DISPLAY:-}" ] && run_on_screen "$@"
  unset DISPLAY
  place_temporary_files
  exec "${in_system[@]}" "$wine" "$@"
  ;;
session)
  choose_wine
  ready || die "$not_ready"
  unset DISPLAY
  place_temporary_files
  run_session "$@"
  ;;
esac
