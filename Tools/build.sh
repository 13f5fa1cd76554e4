# shellcheck shell=bash
# What ./run and ./test share: installing what is missing, and building one preset.
# Sets `root`, the folder of the checkout. Everything said here goes to standard error, which
# leaves standard output to the program.

root=$(dirname "$(dirname "$(realpath "${BASH_SOURCE[0]}")")")

# The tests and benchmarks are configured in the same build folder as the programs, so their libraries
# are needed too.
# shellcheck disable=SC2034  # used where this file is sourced
program_packages=(g++ cmake ninja-build libgtest-dev libbenchmark-dev libcli11-dev nlohmann-json3-dev)
# What the view needs to be built, shown and driven.
# shellcheck disable=SC2034
view_packages=(gobjc++ libgnustep-gui-dev gnustep-back0.29-cairo xvfb openbox xdotool fonts-dejavu-core
  fonts-ipafont-gothic)
# What packages are made with, and what tests of them use: the desktop's own tools, and all that the package asks for.
# shellcheck disable=SC2034
packaging_packages=(dpkg-dev file man-db desktop-file-utils shared-mime-info xdg-utils libfile-mimeinfo-perl
  gnustep-back0.29)

# Words to put before cmake: the build runs the test programs to list their tests.
run_under=()

say() { printf '%s\n' "$*" >&2; }

# install_packages PACKAGE...: asks nothing of apt when all of them are there.
install_packages() {
  if ! command -v dpkg-query >/dev/null; then
    say "Not a Debian system: taking it that these are installed in some other way: $*"
    return 0
  fi

  local installed missing=() package
  # dpkg-query fails when it does not know one of the packages, and lists the others all the same.
  # shellcheck disable=SC2016  # the fields are dpkg-query's, not the shell's
  installed=$(dpkg-query -W -f '${Package} ${db:Status-Status}\n' "$@" 2>/dev/null || true)
  for package in "$@"; do
    grep -qxF "$package installed" <<<"$installed" || missing+=("$package")
  done
  ((${#missing[@]})) || return 0

  local as_root=()
  if ((EUID)); then
    if ! command -v sudo >/dev/null; then
      say "These packages are missing, and installing them takes root or sudo: ${missing[*]}"
      return 1
    fi
    as_root=(sudo)
  fi
  say "Installing the Debian packages: ${missing[*]}"
  # Lists that are only partly fresh may still do: whether they do is the install's to say.
  "${as_root[@]}" apt-get update -q >&2 || say "apt-get update failed; trying to install all the same"
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -q -y --no-install-recommends "${missing[@]}" >&2
}

# build PRESET [TARGET...]: configures where that is due, then builds; silent when nothing is to be done.
# The lock keeps two of these scripts out of one build folder.
build() {
  mkdir -p "$root/build" || return
  (
    flock 9 || exit
    cd "$root" || exit
    configure "$1" && build_targets "$@"
  ) 9>"$root/build/.lock"
}

# Ninja itself notices when a CMakeLists.txt has changed. It does not notice changed presets, nor
# that the checkout was copied together with its build folder, whose files name the old place.
configure() {
  local preset=$1 stamp=build/$1/.configured-in
  if [[ -f $stamp && $(<"$stamp") == "$root" && ! CMakePresets.json -nt $stamp ]]; then
    return 0
  fi
  say "$preset: configuring"
  local log=build/$preset-configure.log
  if ! cmake --fresh --preset "$preset" >"$log" 2>&1; then
    cat "$log" >&2
    return 1
  fi
  printf '%s\n' "$root" >"$stamp"
}

build_targets() {
  local preset=$1 targets=()
  shift
  (($#)) && targets=(--target "$@")
  "${run_under[@]}" cmake --build "build/$preset" -j2 "${targets[@]}" 2>&1 | sed -u '/^ninja: no work to do\.$/d' >&2
}
