# Links what was compiled against the lists of symbols, and looks at what came out.
# The variables are those of tools/macos-check/check.
# shellcheck shell=bash disable=SC2154

failed() { printf '%s\n' "$*" >>"$out/failures"; }
link_failed() { failed "$1"; head -20 "$out/link.log" | sed 's/^/    /' >>"$out/failures"; }

# link_for ARCHITECTURE OUTPUT ARGUMENTS...
link_for() {
  local arch=$1 output=$2 framework frameworks=()
  shift 2
  for framework in AppKit CoreFoundation CoreServices Foundation Network Security UserNotifications \
    WebKit; do
    frameworks+=(-framework "$framework")
  done
  "$linker" -arch "$arch" -platform_version macos 13.0 13.0 -syslibroot "$here/libraries" \
    -F/System/Library/Frameworks -lSystem -lc++ -lobjc "${frameworks[@]}" \
    -dead_strip -dead_strip_dylibs -map "$output.map" -o "$output" "$@" >"$out/link.log" 2>&1
}

# The libraries that a program names and that are not the system's.
outside_libraries() {
  "llvm-objdump-$version" --macho --dylibs-used "$1" | sed -n 's/^\t\([^ ]*\) (.*/\1/p' |
    grep -vE '^(/usr/lib|/System/Library)/' || true
}

# make_archive ARCHITECTURE FILES...: of their objects and the stand-ins. Prints its path.
make_archive() {
  local arch=$1 archive=$out/quorvel.$1.a file name objects=()
  shift
  for file in "$@"; do objects+=("$(result_of object "$arch" "$file")"); done
  for name in platform_version libplist; do
    "clang-$version" -target "$arch-apple-macos13.0" -nostdinc -Os \
      -c "$here/stand-ins/$name.c" -o "$out/$name.$arch.o"
    objects+=("$out/$name.$arch.o")
  done
  rm -f "$archive"
  "llvm-ar-$version" rcs "$archive" "${objects[@]}"
  echo "$archive"
}

# check_runner ARCHITECTURE ARCHIVE: links it as a self-contained program.
check_runner() {
  local arch=$1 runner=$out/quorvel-runner.$1 outside
  if ! link_for "$arch" "$runner" "$(result_of object "$arch" Runner/main.cpp)" "$2"; then
    link_failed "the runner does not link for $arch"
    return
  fi
  outside=$(outside_libraries "$runner")
  [ -z "$outside" ] || failed "the runner needs what is not the system's: $outside"
  ! "llvm-objdump-$version" --macho --private-headers "$runner" | grep -q LC_RPATH ||
    failed "the runner looks for libraries beside itself"
}

# check_status_item ARCHITECTURE ARCHIVE: links the program that shows clones in the menu bar. It is
# copied into clones, too.
check_status_item() {
  local arch=$1 item=$out/quorvel-status-item.$1 outside
  if ! link_for "$arch" "$item" \
    "$(result_of object "$arch" Platform/statusitem/CloneStatusItem_macos.mm)" "$2"; then
    link_failed "the program for the menu bar does not link for $arch"
    return
  fi
  outside=$(outside_libraries "$item")
  [ -z "$outside" ] || failed "the program for the menu bar needs what is not the system's: $outside"
  ! "llvm-objdump-$version" --macho --dylibs-used "$item" | grep -q WebKit ||
    failed "the program for the menu bar needs the web engine"
}

# linked_files ARCHITECTURE FILES...: those whose objects became a part of what was linked for it.
linked_files() {
  local arch=$1 file name
  shift
  for file in "$@"; do
    name=$(result_of object "$arch" "$file")
    ! grep -qF "${name##*/}" "$out"/{quorvel-runner,quorvel-status-item,platform,quorvel-web-host}."$arch.map" ||
      echo "$file"
  done
}

# check_system_files ARCHITECTURE ARCHIVE FILES...: all of them, whether the runner uses them or not.
check_system_files() {
  local arch=$1 archive=$2 file objects=()
  shift 2
  for file in "$@"; do objects+=("$(result_of object "$arch" "$file")"); done
  link_for "$arch" "$out/platform.$arch" -dylib "${objects[@]}" "$archive" ||
    link_failed "the macOS files do not link for $arch"
}

# check_web_host ARCHITECTURE ARCHIVE FILES...: links it as the module that the runner loads. It is
# copied into clones, too.
check_web_host() {
  local arch=$1 archive=$2 module=$out/quorvel-web-host.$1 file outside objects=()
  shift 2
  for file in "$@"; do objects+=("$(result_of object "$arch" "$file")"); done
  if ! link_for "$arch" "$module" -bundle -exported_symbol _quorvel_web_host_run "${objects[@]}" \
    "$archive"; then
    link_failed "the web host does not link for $arch"
    return
  fi
  outside=$(outside_libraries "$module")
  [ -z "$outside" ] || failed "the web host needs what is not the system's: $outside"
  ! "llvm-objdump-$version" --macho --dylibs-used "$out/quorvel-runner.$arch" | grep -q WebKit ||
    failed "the runner itself needs the web engine"
  [ "$("llvm-nm-$version" -gU "$module" | sed 's/.* //')" = _quorvel_web_host_run ] ||
    failed "the web host has other functions than the one that the runner calls"
}

# listed_symbols [FOLDER]: what the lists name.
listed_symbols() {
  find "$here/libraries/${1:-}" -name '*.tbd' -exec sed -nE "s/^      - '?([^']+)'?$/\1/p" {} + |
    sort -u
}

# check_lists PROGRAMS...: whether the lists of the frameworks name only what the programs use. Those
# of the C and C++ libraries may name more: what code uses of these changes with every compiler.
check_lists() {
  # shellcheck disable=SC2016 # The dollar sign is a part of the symbols' names.
  "llvm-nm-$version" -u "$@" 2>/dev/null | sed -n 's/^.* //; /./p' |
    sed -e 's/^_OBJC_\(META\)\{0,1\}CLASS_\$_//' | sort -u >"$out/used"
  local unused
  unused=$(listed_symbols System | grep -vxFf "$out/used" || true)
  [ -z "$unused" ] || failed "listed, but used by nothing: $(tr '\n' ' ' <<<"$unused")"
}

# check_link_mistakes ARCHITECTURE ARCHIVE FILES...
check_link_mistakes() {
  local arch=$1 archive=$2 file expected
  shift 2
  for file in "$@"; do
    expected=$(sed -n '1s|^// expected: ||p' "$file")
    if link_for "$arch" "$out/mistake" -dylib "$(result_of link "$arch" "$file")" \
      "$archive"; then
      failed "linked, which it must not be: $file"
    else
      grep -qF -- "$expected" "$out/link.log" ||
        link_failed "not linked, but for another reason than “$expected”: $file"
    fi
  done
}

# check_foreign_library ARCHITECTURE: whether a program that needs Homebrew's libraries is detected.
check_foreign_library() {
  local foreign=mistakes/foreign
  link_for "$1" "$out/mistake" -dylib -install_name /usr/lib/libmistake.dylib \
    "$(result_of link "$1" $foreign/foreign_library.cpp)" \
    "$here/$foreign/libforeign.tbd" || link_failed "the library from elsewhere does not link"
  [ "$(outside_libraries "$out/mistake")" = /opt/homebrew/lib/libforeign.dylib ] ||
    failed "a library from elsewhere went unnoticed"
}
