# What the programs and their tests are built with, as Debian packages. Sourced by run, test and
# measure; installs what is missing and is quick when nothing is.

build_packages="g++ cmake ninja-build pkg-config libcli11-dev libsrecord-dev libboost-dev libgcrypt20-dev nlohmann-json3-dev"
window_packages="qt6-base-dev qt6-multimedia-dev libqt6svg6 libgl-dev fonts-dejavu-core"
test_packages="libgtest-dev libgmock-dev python3 python3-jsonschema srecord binutils sigrok-cli clang"
lint_packages="clang-format clang-tidy python3"
measure_packages="libbenchmark-dev"
link_packages="gcc-avr avr-libc libsimavr-dev"

# install_missing NAME... : apt-get install of those that are not there yet.
install_missing() {
  local missing=() name
  for name in "$@"; do
    dpkg-query -W -f '${Status}' "$name" 2>/dev/null | grep -q '^install ok installed' ||
      missing+=("$name")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  if ! command -v apt-get >/dev/null; then
    echo "This needs the Debian packages: ${missing[*]}" >&2
    return 1
  fi
  local as_root=()
  if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null; then
      echo "Install these packages as root, then call this again: ${missing[*]}" >&2
      return 1
    fi
    as_root=(sudo)
  fi
  echo "Installing ${missing[*]} ..."
  "${as_root[@]}" apt-get update -qq
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -qq --no-install-recommends "${missing[@]}"
}

# The sanitizers' runtime of clang carries the compiler's version in its name.
install_fuzzer_runtime() {
  local version
  version=$(clang --version | sed -nE '1s/.*version ([0-9]+)\..*/\1/p')
  install_missing "libclang-rt-$version-dev"
}

# configure PRESET [OPTION...] : once, and again when the presets change; the build itself notices
# everything else.
configure() {
  local preset=$1
  shift
  local folder=build/$preset
  if [ ! -e "$folder/build.ninja" ] || [ CMakePresets.json -nt "$folder/build.ninja" ]; then
    cmake --preset "$preset" "$@"
  fi
}
