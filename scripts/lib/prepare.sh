# Sourced by the commands in scripts/: installs the Debian packages that a command needs, and builds.
# Every message goes to standard error; standard output belongs to the command.

root=$(dirname "$(dirname "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")")")

# libboost1.81-dev conflicts with libboost-dev (1.74): no package here may depend on the latter.
buildPackages=(
  g++ cmake ninja-build pkg-config zip
  libboost1.81-dev libboost-log1.81-dev librange-v3-dev libcli11-dev libutf8proc-dev libcpp-httplib-dev libminizip-dev nlohmann-json3-dev
)
# Chromium opens the page of `tessera parse --format html`; without it that test is skipped.
testPackages=(
  chromium
  libgtest-dev libgmock-dev libicu-dev libzip-dev rapidjson-dev python3 python3-jsonschema
  fish mandoc zsh dpkg-dev file git doxygen python3-clang-14
)
gatePackages=(clang-format-14 clang-tidy-14 python3)
benchPackages=(
  chromium libbenchmark-dev libpugixml-dev libmd4c-dev libcmark-dev libxml2-dev valgrind python3
)
clangPackages=(clang-14 libclang-rt-14-dev llvm-14)

say() { printf '%s: %s\n' "${0##*/}" "$*" >&2; }

# The exit status if something cannot be installed or built.
failStatus=1

fail() {
  say "$*"
  exit "$failStatus"
}

# Installs those of the packages named that are missing.
needPackages() {
  local missing=() name
  if ! command -v dpkg-query >/dev/null; then
    say "not a Debian system: assuming that these are installed under other names: $*"
    return
  fi
  local there
  there=" $(dpkg-query -W -f '${Package}=${db:Status-Status} ' "$@" 2>/dev/null || true)"
  for name in "$@"; do
    [[ $there == *" $name=installed "* ]] || missing+=("$name")
  done
  ((${#missing[@]} == 0)) || installPackages "${missing[@]}"
}

installPackages() {
  local asRoot=()
  if ((EUID != 0)); then
    command -v sudo >/dev/null || fail "run this as root: apt-get install $*"
    asRoot=(sudo)
  fi
  say "installing $*"
  # --no-remove: never removes a package that somebody installed, for example libboost-dev.
  "${asRoot[@]}" apt-get update -q >&2 &&
    "${asRoot[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-remove \
      --no-install-recommends -o DPkg::Lock::Timeout=600 "$@" >&2 ||
    fail "could not install: $* (they conflict with libboost-dev: remove that first if it is installed)"
}

# build FOLDER PRESET TARGETS [CMAKE OPTION]...: configures build/FOLDER, unless that was done since the
# presets last changed, and builds the targets. Locks the folder, so that concurrent runs take turns.
build() {
  local folder=$root/build/$1 preset=$2 targets=$3
  shift 3
  mkdir -p "$folder"
  (
    flock 9
    configure "$folder" "$preset" "$@" && runNinja "$folder" "$targets"
  ) 9>"$folder/lock" || fail "the build failed, see above"
}

configure() {
  local folder=$1 preset=$2
  shift 2
  [[ ! -e $folder/configured || $root/CMakePresets.json -nt $folder/configured ]] || return 0
  say "configuring ${folder#"$root/"}"
  (cd "$root" && cmake --preset "$preset" -B "$folder" "$@") >&2 && touch "$folder/configured"
}

runNinja() {
  # shellcheck disable=SC2086 # a list of targets
  ninja -C "$1" $2 2>&1 |
    sed -u -E '/^ninja: (no work to do|Entering directory)|Re-checking globbed directories/d' >&2
}
