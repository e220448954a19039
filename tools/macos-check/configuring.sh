# Has CMake configure a build for macOS, to check that its files name the right sources.
# The variables are those of tools/macos-check/check.
# shellcheck shell=bash disable=SC2154

# configure_for_macos: prints the sources of the program that would be built, one per line.
configure_for_macos() {
  local build=$out/build
  rm -rf "$build"
  touch "$out/libplist-2.0.a"
  cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DQUORVEL_APP=ON \
    -DCMAKE_TOOLCHAIN_FILE="$here/cmake/toolchain.cmake" \
    -DCMAKE_PROJECT_INCLUDE="$here/cmake/after_project.cmake" \
    -DQUORVEL_PLIST_ARCHIVE="$out/libplist-2.0.a" -DCMAKE_EXPORT_COMPILE_COMMANDS=ON \
    >"$out/configure.log" 2>&1 || return 1
  sed -n "s|^ *\"file\": \"$root/\(.*\)\",\{0,1\}$|\1|p" "$build/compile_commands.json" |
    grep -vE '^(tests|fuzz|build)/' | sort -u
}

# unlike_built BUILT FILES...: what CMake would build (>), or not build (<), other than these.
unlike_built() {
  local built=$1
  shift
  diff <(printf '%s\n' "$@" | sort -u) <(echo "$built") | grep '^[<>]' || true
}

# check_configuration FILES...: whether CMake would build these files, and no others.
check_configuration() {
  local built difference
  if ! built=$(configure_for_macos); then
    failed "CMake can't prepare a build for macOS:"
    tail -20 "$out/configure.log" | sed 's/^/    /' >>"$out/failures"
    return
  fi
  difference=$(unlike_built "$built" "$@")
  [ -z "$difference" ] ||
    failed "CMake builds other files than were looked at:"$'\n'"$difference"
  [ -f "$out/build/bin/Quorvel.app/Contents/Info.plist" ] ||
    failed "CMake would make no bundle of the application"
  # A planted mistake: one file left out, another made up.
  [ "$(unlike_built "$built" "${@:2}" Platform/nothing_macos.cpp | wc -l)" = 2 ] ||
    failed "a file that CMake does not build went unnoticed"
}
