# Shared by ./run, ./test and .ci/run: installs what is missing, configures, builds.
# Sourced by bash; the caller stands in the project's folder.
set -euo pipefail

say() { printf '==> %s\n' "$*"; }
fail() {
  printf 'halvane2: %s\n' "$*" >&2
  exit 1
}

# Debian packages by name; only what is missing is installed.
build_packages=(g++ cmake ninja-build qt6-base-dev qt6-serialport-dev)
display_packages=(xvfb openbox xdotool imagemagick xauth fonts-dejavu-core)
test_packages=(libgtest-dev libbenchmark-dev)

missing_packages() {
  local package
  for package in "$@"; do
    dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' ||
      printf '%s\n' "$package"
  done
}

install_missing() {
  command -v dpkg-query >/dev/null || {
    say "no Debian package manager here: taking the tools that are there"
    return 0
  }
  local missing
  mapfile -t missing < <(missing_packages "$@")
  [ "${#missing[@]}" -gt 0 ] || return 0
  local as_root=()
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null ||
      fail "these packages are missing and need root: ${missing[*]}. Install them as root (apt-get install ${missing[*]}), then start again."
    as_root=(sudo)
  fi
  say "installing ${missing[*]}"
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -qq update ||
    fail "the package lists could not be read (apt-get update); is there a network?"
  local log
  log=$(mktemp)
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -qq -y --no-install-recommends \
    install "${missing[@]}" >"$log" 2>&1 || {
    tail -n 20 "$log" >&2
    fail "apt-get could not install ${missing[*]}: all it said is in $log"
  }
  rm -f "$log"
}

# build FOLDER TARGETS -- CMake options: incremental; prints only what goes wrong.
build() {
  local folder=$1 targets=$2
  shift 3
  local launcher=()
  command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
  mkdir -p "$folder"
  # A build folder that was moved with its project knows the former place only. The same place can
  # have two names, one of them through a link.
  local fresh=() known
  if [ -e "$folder/CMakeCache.txt" ]; then
    known=$(sed -n 's/^CMAKE_CACHEFILE_DIR:INTERNAL=//p' "$folder/CMakeCache.txt")
    [ "$known" -ef "$folder" ] || fresh=(--fresh)
  fi
  say "configuring $folder"
  cmake "${fresh[@]}" -S . -B "$folder" -G Ninja "${launcher[@]}" "$@" >"$folder.log" 2>&1 || {
    cat "$folder.log" >&2
    fail "CMake could not configure $folder"
  }
  say "building $folder"
  # shellcheck disable=SC2086
  NINJA_STATUS='    [%f/%t %es] ' cmake --build "$folder" --target $targets -- ${HALVANE2_JOBS:+-j"$HALVANE2_JOBS"} ||
    fail "the build failed"
}
