# Finds the compiler, the linker and the headers, and writes the compiler's flags.
# The variables are those of tools/macos-check/check.
# shellcheck shell=bash disable=SC2154

version=16
compiler=clang++-$version
linker=ld64.lld-$version

skip() { printf 'skipped: %s\n' "$*"; exit 77; }

find_tools() {
  [ "$(uname)" = Linux ] || skip "this check is for Linux"
  local tool
  for tool in $compiler clang-$version $linker llvm-{ar,nm,objdump}-$version cmake ninja python3; do
    command -v "$tool" >/dev/null ||
      skip "$tool is missing (Debian: clang-16 lld-16 llvm-16 libc++-16-dev)"
  done
  libcxx=$("$compiler" -print-resource-dir)/../../../include/c++/v1
  [ -d "$libcxx" ] || skip "libc++'s headers are missing (Debian: libc++-16-dev)"
  qt=$(compgen -G '/usr/include/*/qt6/QtWidgets') || skip "the headers of Qt Widgets are missing"
  qt=${qt%/QtWidgets}
}

# libc_headers ARCHITECTURE: the folders of the C library's headers, one per line; none if missing.
libc_headers() {
  local triple=${1/arm64/aarch64}-linux-gnu
  if [ -d "/usr/include/$triple/bits" ]; then
    printf '%s\n' "/usr/include/$triple" /usr/include
  elif [ -d "/usr/$triple/include/bits" ]; then
    printf '%s\n' "/usr/$triple/include" /usr/include
  fi
}

# compiler_flags ARCHITECTURE: one per line. Three are there for glibc's headers: clang defines
# __nonnull for macOS, which is a macro of theirs; they hide much without _GNU_SOURCE; and their
# character tables know no locale of libc++'s.
compiler_flags() {
  local arch=$1 folder
  printf '%s\n' -std=c++20 -target "$arch-apple-macos13.0" -fblocks -fPIC -Os -DNDEBUG \
    -ffunction-sections -fdata-sections \
    -nostdinc++ -nostdlibinc -U__nonnull -D_GNU_SOURCE -D__NO_CTYPE
  for folder in "$here/libcxx" "$libcxx" "$here/include" $(libc_headers "$arch") \
    "$qt" "$qt"/Qt{Core,Gui,Widgets,Svg} $(compgen -G '/usr/include/openjpeg-*'); do
    printf '%s\n' -isystem "$folder"
  done
  # Tables that the build makes for Linux are empty.
  printf '%s\n' -I "$root" -I "$here/generated" '-DQUORVEL_VERSION=\"0\"' \
    '-DQUORVEL_LIBEXEC=\"/usr/local/libexec/quorvel\"' \
    -DQT_NO_{CAST_{FROM_ASCII,TO_ASCII,FROM_BYTEARRAY},CONTEXTLESS_CONNECT,URL_CAST_FROM_STRING} \
    -DQT_NO_{NARROWING_CONVERSIONS_IN_CONNECT,KEYWORDS} \
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Werror \
    -Wunguarded-availability -Wno-macro-redefined
}
