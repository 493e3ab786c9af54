# Shared by the commands at the top of the tree: sourced, not run.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
export LC_ALL=C.UTF-8

say() { printf '%s\n' "$*" >&2; }
die() {
  say "$*"
  exit 1
}

# need PACKAGE...: installs those that are missing, and says so.
need() {
  local missing=() package as=()
  for package in "$@"; do
    [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || missing+=("$package")
  done
  [ ${#missing[@]} -gt 0 ] || return 0
  if [ "$(id -u)" != 0 ]; then
    command -v sudo >/dev/null || die "Missing packages, and neither root nor sudo to install them: ${missing[*]}"
    as=(sudo)
  fi
  say "Installing from Debian: ${missing[*]}"
  local log
  log=$(mktemp)
  if ! { "${as[@]}" apt-get -qq update &&
    "${as[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -qq install -y --no-install-recommends "${missing[@]}"; } \
    >"$log" 2>&1 </dev/null; then
    cat "$log" >&2
    rm -f "$log"
    die "apt-get could not install: ${missing[*]}"
  fi
  rm -f "$log"
}

need_build() { need g++ cmake ninja-build ccache libgtest-dev qt6-base-dev qt6-translations-l10n fonts-dejavu-core; }
# g++-multilib compiles the check of the host's 32-bit record layouts, xmllint reads what the plug-in wrote, locales makes
# the German locale that the desktop is tested under.
need_tests() {
  need_build
  need g++-multilib python3 libxml2-utils locales
}

# build PRESET [TARGET...]: configures and builds with all cores; quiet unless something is wrong.
build() {
  local preset=$1
  shift
  local log=build/$preset.log
  mkdir -p build
  # Without a home folder the compiler cache has no place of its own.
  [ -n "${HOME:-}" ] || export CCACHE_DIR=$PWD/build/ccache
  local arguments=()
  [ $# -eq 0 ] || arguments=(--target "$@")
  if ! { cmake --preset "$preset" && cmake --build "build/$preset" "${arguments[@]}"; } >"$log" 2>&1 </dev/null; then
    grep -v -E '^\[[0-9]+/[0-9]+\] (Building|Linking)' "$log" >&2 || true
    die "The build failed (preset $preset)."
  fi
}
