# shellcheck shell=bash
# What ./run and ./test share: installing what is missing, and building one preset.
# Sets `root`, the folder of the checkout. Everything said here goes to standard error, which
# leaves standard output to the program.

root=$(dirname "$(dirname "$(realpath "${BASH_SOURCE[0]}")")")

# The tests and benchmarks are configured in the same build folder as the programs, so their libraries
# are needed too.
# shellcheck disable=SC2034  # used where this file is sourced
program_packages=(g++ cmake ninja-build python3 libgtest-dev libbenchmark-dev libcli11-dev
  nlohmann-json3-dev libsndfile1-dev libsoxr-dev libicu-dev libpugixml-dev zlib1g-dev libminizip-dev nettle-dev
  pkg-config)
# What the view needs to be built, shown and driven.
# shellcheck disable=SC2034
view_packages=(gobjc++ libgnustep-gui-dev gnustep-back0.29-cairo xvfb openbox xdotool libxres1
  fonts-dejavu-core fonts-ipafont-gothic)
# What packages are made with, and what tests of them use: the desktop's own tools, and all that the package asks for.
# shellcheck disable=SC2034
packaging_packages=(dpkg-dev file man-db desktop-file-utils shared-mime-info xdg-utils libfile-mimeinfo-perl
  gnustep-back0.29)
# clang builds for the sanitizers, and the sources are held against its formatter and two checkers.
# shellcheck disable=SC2034
checker_packages=(clang libclang-rt-dev clang-format clang-tidy cppcheck)

# Where a compiler cache is installed it is used, unless somebody has chosen another launcher.
# What it may take on trust lets it keep precompiled headers.
if command -v ccache >/dev/null && [[ -z ${CMAKE_CXX_COMPILER_LAUNCHER+set} ]]; then
  export CMAKE_C_COMPILER_LAUNCHER=ccache CMAKE_CXX_COMPILER_LAUNCHER=ccache
  export CMAKE_OBJC_COMPILER_LAUNCHER=ccache CMAKE_OBJCXX_COMPILER_LAUNCHER=ccache
fi
export CCACHE_SLOPPINESS=${CCACHE_SLOPPINESS-pch_defines,time_macros}

# Words to put before cmake and ctest, say: nice.
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
    apt-get -o DPkg::Lock::Timeout=120 install -q -y --no-install-recommends "${missing[@]}" >&2
}

# folder_of PRESET: where it is built. The view is built beside the portable part, with the same flags.
folder_of() {
  case $1 in
    view) echo build/release ;;
    view-asan) echo build/asan ;;
    *) echo "build/$1" ;;
  esac
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
# A folder that has the view keeps it when the portable part alone is asked for.
configure() {
  local preset=$1 folder stamp found=
  folder=$(folder_of "$preset")
  stamp=$folder/.configured-in
  [[ -f $stamp ]] && found=$(<"$stamp")
  case $found in
    *" view" | *" view-asan") preset=${found##* } ;;
  esac
  if [[ $found == "$root $preset" && ! CMakePresets.json -nt $stamp ]]; then
    return 0
  fi
  say "$preset: configuring"
  local log=build/$preset-configure.log
  if ! cmake --fresh --preset "$preset" >"$log" 2>&1; then
    cat "$log" >&2
    return 1
  fi
  printf '%s\n' "$root $preset" >"$stamp"
}

build_targets() {
  local folder targets=()
  folder=$(folder_of "$1")
  shift
  (($#)) && targets=(--target "$@")
  "${run_under[@]}" cmake --build "$folder" -j2 "${targets[@]}" 2>&1 | sed -u '/^ninja: no work to do\.$/d' >&2
}
