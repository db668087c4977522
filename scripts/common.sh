# shellcheck shell=bash disable=SC2034
# What the doors of the project share: where things lie, packages, configuring and building. Sourced, not run.
set -euo pipefail

top="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cache="${XDG_CACHE_HOME:-${HOME:-/tmp}/.cache}/zkr13n"
no_answer=75 # exit status when a package server does not answer

say() { printf '\033[1m==> %s\033[0m\n' "$*" >&2; }
die() {
  printf 'error: %s\n' "$*" >&2
  exit 1
}

# as_root command...: runs a command with the rights to install.
as_root() {
  if [ "$(id -u)" -eq 0 ]; then
    "$@"
  elif command -v sudo >/dev/null && { sudo -n true 2>/dev/null || [ -t 0 ]; }; then
    sudo "$@"
  else
    die "this needs root: $*
       Run it as root yourself, or start this program from a terminal of a user that may use sudo."
  fi
}

# The package source and the release of this machine, as "address release", from its own apt sources; nothing
# where there is none.
package_source() {
  local release
  release="$(. /etc/os-release && echo "${VERSION_CODENAME:-}")"
  {
    cat /etc/apt/sources.list /etc/apt/sources.list.d/*.list 2>/dev/null |
      sed -nE 's/^deb +(\[[^]]*\] +)?([^ ]+) +([^ ]+) +(.*)/\2 \3/p' || true
    awk 'function flush(i, j, n, m, u, s) {
           if (types ~ /deb( |$)/ && enabled != "no") {
             n = split(uris, u, " "); m = split(suites, s, " ")
             for (i = 1; i <= n; i++) for (j = 1; j <= m; j++) print u[i], s[j]
           }
           types = uris = suites = enabled = ""
         }
         /^[ \t]*$/ { flush() } FNR == 1 { flush() }
         /^Types:/ { $1 = ""; types = $0 } /^URIs:/ { $1 = ""; uris = $0 }
         /^Suites:/ { $1 = ""; suites = $0 } /^Enabled:/ { enabled = $2 }
         END { flush() }' /etc/apt/sources.list.d/*.sources 2>/dev/null || true
  } | awk -v release="$release" '($2 == release || $2 == "stable") && $1 ~ /^(https?|file):/ { print $1, release; exit }'
}

# Whether the package source gives its index at all.
server_answers() {
  local address release file status=0
  read -r address release <<<"$(package_source)"
  [ -n "$address" ] || return 0
  file="$(mktemp)"
  /usr/lib/apt/apt-helper -o Acquire::Retries=2 download-file "${address%/}/dists/$release/Release" "$file" \
    >/dev/null 2>&1 || status=1
  rm -f "$file"
  return $status
}

# installation_failed log package...: ends the program with the cause that the log tells, in one line; with a status of
# its own where the server is to blame.
installation_failed() {
  local log="$1" cause
  shift
  if ! server_answers; then
    printf 'error: could not install %s: the package server does not answer (all of it: %s)\n' "$*" "${log%.last}" >&2
    exit $no_answer
  fi
  cause="$(sed -n 's/^[EW]: //p' "$log" | head -n 1)"
  die "could not install $*: ${cause:-see the log} (all of it: ${log%.last})"
}

# Shows the comment at the head of the program that was started.
usage() { sed -n '2,/^[^#]/s/^#$//p; 2,/^[^#]/s/^# //p' "$0"; }

installed() { [ "$(dpkg-query -W -f '${Status}' "$1" 2>/dev/null)" = "install ok installed" ]; }

# need why package...: installs the packages that are missing.
need() {
  local why="$1" package missing=()
  shift
  if ! command -v dpkg-query >/dev/null; then
    say "Not a Debian system: make sure that you have what these packages hold ($why): $*"
    return
  fi
  for package in "$@"; do
    installed "$package" || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return
  local log install
  mkdir -p "$top/build" || exit 1
  log="$top/build/packages.log"
  : >"$log" || exit 1
  say "Installing for $why: ${missing[*]}"
  install=(env DEBIAN_FRONTEND=noninteractive apt-get -q -y -o DPkg::Lock::Timeout=600
    install --no-install-recommends "${missing[@]}")
  # Old lists name files that are gone. An index that does not load (of another architecture, say) matters
  # only when a package then cannot be had.
  if ! apt-cache show "${missing[@]}" >/dev/null 2>&1 || ! as_root "${install[@]}" >>"$log" 2>&1; then
    say "Refreshing the lists of packages"
    as_root apt-get -q -o DPkg::Lock::Timeout=600 update >>"$log" 2>&1 || true
    as_root "${install[@]}" >"$log.last" 2>&1 || failed=1
    cat "$log.last" >>"$log"
    [ -z "${failed:-}" ] || installation_failed "$log.last" "${missing[@]}"
    rm -f "$log.last"
  fi
}

need_compiler() { need "building" g++ cmake ninja-build ccache pkg-config python3 libqoi-dev zlib1g-dev; }
need_pictures() {
  need "the program zkr and its pictures" libcli11-dev libpng-dev libjpeg62-turbo-dev libexif-dev libfreetype-dev libgif-dev libsdl2-dev \
    fonts-dejavu-core palapeli-data jbigkit-bin jbigkit-testdata python3-imageio
}
need_tests() { need "testing" googletest python3-jinja2; }
need_python() { need "the tests of the Python package" python3-pytest python3-numpy python3-pil mypy python3-distributed; }

# Whether temporary files can lie in memory. The tests make and delete a hundred thousand of them, which a disk bears
# badly, and the largest want some room.
memory_takes_files() {
  local free
  free="$(df --output=avail -k /dev/shm 2>/dev/null | tail -n 1)" || true
  ! grep -q ' /dev/shm .*noexec' /proc/mounts && [ -w /dev/shm ] && [ "$(stat -f -c %T /dev/shm)" = tmpfs ] && [ "${free:-0}" -gt 8000000 ]
}

# show_build preset: passes on what a build prints, from where it begins to do something; on a terminal its steps take
# one line.
show_build() {
  local line quiet=1 columns=0
  [ -t 2 ] && columns="$(tput cols 2>/dev/null || echo 80)"
  while IFS= read -r line; do
    [[ "$line" == *"Re-checking globbed directories"* || "$line" == "ninja: no work to do." ]] && continue
    [ -z "$quiet" ] || say "Building build/$1"
    quiet=""
    if [[ "$columns" -gt 0 && "$line" =~ ^\[[0-9]+/[0-9]+\] ]]; then
      printf '\r\033[K%s' "${line:0:columns-1}" >&2
    else
      printf '%s\n' "$line" >&2
    fi
  done
  if [ -z "$quiet" ] && [ "$columns" -gt 0 ]; then printf '\r\033[K' >&2; fi
}

settings=() # for CMake, beside those of the preset

# build preset [target...]: configures where needed and builds what changed; says nothing where nothing did.
build() {
  local preset="$1" target targets=() log
  shift
  for target in "$@"; do targets+=(--target "$target"); done
  log="$top/build/configure-$preset.log"
  mkdir -p "$top/build" || exit 1
  : >"$log" || exit 1
  (
    cd "$top"
    cmake --preset "$preset" "${settings[@]}" >"$log" 2>&1 || {
      cat "$log" >&2
      die "cannot configure the preset $preset"
    }
    cmake --build "build/$preset" -j "$(nproc)" "${targets[@]}" 2>&1 | show_build "$preset"
  )
}
