# Shared by the scripts: paths, dependencies and how they are installed.
# shellcheck shell=bash

set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"
# Without it, ccache caches nothing that is compiled with a precompiled header.
export CCACHE_SLOPPINESS=${CCACHE_SLOPPINESS-pch_defines,time_macros}

say() { printf '\n==> %s\n' "$*"; }
fail() { printf '%s\n' "$*" >&2; exit 1; }

# What is needed to build, and what the tests need on top of that.
debian_build=(g++ python3 cmake ninja-build pkg-config nlohmann-json3-dev rapidjson-dev libplist-dev libicu-dev
  libcli11-dev libglib2.0-dev libsqlite3-dev libxcb1-dev qt6-base-dev qt6-base-private-dev libqt6svg6-dev
  libwayland-dev wayland-protocols libopenjp2-7-dev libwebkitgtk-6.0-dev fontconfig fonts-urw-base35 procps)
debian_test=(libgtest-dev libgmock-dev xdg-utils libplist-utils
  dbus dbus-daemon binutils file git clang-format-14 shellcheck
  shared-mime-info icnsutils imagemagick inotify-tools xvfb xauth
  xdotool openbox xfwm4 xfconf sway foot x11-utils at-spi2-core libatspi2.0-dev fonts-inter
  fonts-dejavu-core fonts-noto-color-emoji fonts-wqy-microhei qt6-image-formats-plugins
  clang-16 lld-16 llvm-16 libc++-16-dev zsh desktop-file-utils qt6-l10n-tools flatpak strace
  libglib2.0-bin dconf-gsettings-backend evince gnome-shell xwayland python3-gi iproute2
  thunar openssl btrfs-progs xfsprogs)
# The applications that tests clone. Some distributions lack some; their tests are skipped there.
debian_apps=(firefox-esr chromium gedit gnome-calculator kcalc keepassxc meld transmission-gtk)
# The C library headers for the other processor of Macs.
case "$(uname -m)" in
  x86_64) debian_test+=(libc6-dev-arm64-cross) ;;
  aarch64) debian_test+=(libc6-dev-amd64-cross) ;;
esac
# What packing needs on top of building; the tests use it, too.
debian_package=(dpkg-dev file gzip lintian)
# What the fuzzers need on top of building. Clang only recommends its own runtime.
debian_fuzz=(clang-16 libclang-rt-16-dev)
homebrew_build=(cmake ninja pkg-config nlohmann-json rapidjson libplist icu4c cli11 qt openjpeg)
homebrew_test=(googletest)

as_root() {
  if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

install_debian() {
  local missing=() package
  for package in "$@"; do
    [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null)" = installed ] ||
      missing+=("$package")
  done
  [ ${#missing[@]} -gt 0 ] || return 0
  say "Installing ${missing[*]}"
  as_root apt-get update -q
  as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends \
    "${missing[@]}"
}

# Installs those of the packages that the distribution has.
install_available() {
  local available=() package
  dpkg-query -W -f='' "$@" 2>/dev/null || as_root apt-get update -q
  for package in "$@"; do
    apt-cache show "$package" >/dev/null 2>&1 && available+=("$package")
  done
  install_debian "${available[@]}"
}

install_homebrew() {
  local missing=() package
  command -v brew >/dev/null || fail "Homebrew is needed to install $*: see https://brew.sh"
  for package in "$@"; do
    brew list --versions "$package" >/dev/null 2>&1 || missing+=("$package")
  done
  [ ${#missing[@]} -gt 0 ] || return 0
  say "Installing ${missing[*]}"
  brew install "${missing[@]}"
}

# install_packages build|test|fuzz|package
install_packages() {
  if [ "$(uname)" = Darwin ]; then
    install_homebrew "${homebrew_build[@]}"
    [ "$1" != test ] || install_homebrew "${homebrew_test[@]}"
    # Homebrew keeps this apart from the ICU of macOS.
    ICU_ROOT=$(brew --prefix icu4c)
    export ICU_ROOT
  elif command -v apt-get >/dev/null; then
    install_debian "${debian_build[@]}"
    case "$1" in
      test)
        install_debian "${debian_test[@]}" "${debian_package[@]}"
        install_available "${debian_apps[@]}"
        ;;
      package) install_debian "${debian_package[@]}" ;;
      fuzz) install_debian "${debian_fuzz[@]}" ;;
    esac
  else
    echo "No apt-get and no Homebrew: install the dependencies that docs/architecture.md lists."
  fi
}

# configure_preset PRESET [CMAKE OPTIONS...]: shows what CMake says only if it fails.
configure_preset() {
  local preset=$1 output
  shift
  say "Building ($preset)"
  output=$(cmake --preset "$preset" "$@" 2>&1) || fail "$output"
}

# build_preset PRESET [CMAKE OPTIONS...]
build_preset() {
  configure_preset "$@"
  cmake --build --preset "$1"
}

# Where the build puts the program with the window.
window_program() {
  if [ "$(uname)" = Darwin ]; then
    echo "$root/build/release/bin/Quorvel.app/Contents/MacOS/Quorvel"
  else
    echo "$root/build/release/bin/quorvel"
  fi
}
