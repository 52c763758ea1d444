# shellcheck shell=bash disable=SC2034
# What the scripts share; sourced by them. Leaves the shell in the project's folder.
# Only results go to standard output; progress goes to standard error.

project=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$project" || exit

# Packages of Debian 12, smallest set for each purpose.
BUILD_PACKAGES=(g++ cmake ninja-build pkg-config
  libgl-dev libegl-dev libglew-dev libfreetype-dev libfontconfig-dev libpng-dev libcairo2-dev zlib1g-dev libjs-three)
# Software rendering, and a face that stands for Arial.
RUN_PACKAGES=(libegl1 libgl1-mesa-dri fonts-liberation)
TEST_PACKAGES=(libgtest-dev libxml2-utils poppler-utils)
# The rest of scripts/test --all.
CHECK_PACKAGES=(libbenchmark-dev clang clang-format libclang-rt-14-dev)
# scripts/tidy
TIDY_PACKAGES=(clang clang-tidy-16)
# The desktop program: to build it, and to run it with its icons and a fixed-width face.
WINDOW_BUILD_PACKAGES=(libgtk-3-dev)
WINDOW_RUN_PACKAGES=(adwaita-icon-theme hicolor-icon-theme fonts-liberation)
# Tests that drive its window: two displays without a screen, a window manager, a bus with accessibility, keys
# and clicks; and those of menu entry, kind of file, metadata and manual pages.
WINDOW_TEST_PACKAGES=(xvfb openbox weston dbus at-spi2-core xdotool libx11-dev libxtst-dev imagemagick
  desktop-file-utils libxml2-utils appstream shared-mime-info libglib2.0-bin groff-base)
# scripts/test-page, with node and npm, where there are none: the distribution's or others.
PAGE_TEST_PACKAGES=(chromium)
# scripts/make-icons.
ICON_PACKAGES=(librsvg2-bin icoutils)

# The cross build for Windows, and what its tests need to run.
WINDOWS_PACKAGES=(g++-mingw-w64-x86-64-posix libz-mingw-w64-dev libjs-three googletest dpkg-dev cmake ninja-build
  make pkg-config)
# The preloader keeps the addresses free that Windows puts its shared data at: without it the heap of one start in
# some thousands lies there, and Wine ends at once.
WINE_PACKAGES=(wine wine64 wine64-preloader xvfb openbox xdotool imagemagick fonts-liberation libgl1
  libgl1-mesa-dri libxcomposite1)

say() { printf '%s\n' "$*" >&2; }

die() {
  say "$*"
  exit 1
}

as_root() {
  if [ "$(id -u)" -eq 0 ]; then
    "$@"
  else
    sudo "$@"
  fi
}

# Installs the packages that are not there yet; says nothing when all are.
install_missing() {
  local missing=() package
  if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
    say "This system has no apt; see docs/building.md for what is needed."
    return 0
  fi
  for package in "$@"; do
    if [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" != installed ]; then
      missing+=("$package")
    fi
  done
  [ ${#missing[@]} -gt 0 ] || return 0
  if [ "$(id -u)" -ne 0 ] && ! command -v sudo >/dev/null; then
    die "Neither root nor sudo; let an administrator run: apt-get install ${missing[*]}"
  fi
  say "Installing ${missing[*]}"
  as_root apt-get -qq update >&2 || say "The lists of packages could not be brought up to date; going on."
  as_root env DEBIAN_FRONTEND=noninteractive \
    apt-get -qq -y --no-install-recommends -o Dpkg::Use-Pty=0 install "${missing[@]}" >&2 ||
    die "The packages could not be installed."
}

# What drives the browser, in $page_driver: made again when tests/page/package.json has changed.
page_driver=$project/build/test-page/driver
install_page_driver() {
  # Another source than the distribution's may have brought node and its package manager.
  command -v node >/dev/null && command -v npm >/dev/null || install_missing nodejs npm
  install_missing "${PAGE_TEST_PACKAGES[@]}"
  cmp -s tests/page/package.json "$page_driver/installed.json" && return
  rm -rf "$page_driver"
  mkdir -p "$page_driver"
  cp tests/page/package.json "$page_driver"
  npm install --prefix "$page_driver" --no-package-lock --no-audit --no-fund --loglevel=error >&2 ||
    die "What drives the browser could not be installed."
  cp tests/page/package.json "$page_driver/installed.json"
}

# run_in FOLDER COMMAND...: makes the folder and runs a command in it, so that what a process file dumps into
# the current folder does not end up in the project's.
run_in() {
  local folder=$1
  shift
  mkdir -p "$folder"
  (cd "$folder" && "$@")
}

# configure PRESET OPTIONS...: configures build/PRESET.
configure() {
  cmake --preset "$@" >&2
}

# compile PRESET TARGETS...: builds targets, or all that the preset names, with all processors.
compile() {
  local preset=$1
  shift
  cmake --build --preset "$preset" --parallel "$(nproc)" ${@:+--target "$@"} >&2
}
