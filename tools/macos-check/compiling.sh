# Has the files compiled by as many calls at once as there are processors, and only those again
# that changed since the last time.
# The variables are those of tools/macos-check/check.
# shellcheck shell=bash disable=SC2154

# result_of KIND ARCHITECTURE FILE
result_of() {
  local name=${3#"$here/"}
  echo "$out/${name//\//_}.$2.$1.o"
}

# write_if_new FILE <TEXT: what depends on the file is done again only when it changed.
write_if_new() {
  cat >"$1.new"
  cmp -s "$1.new" "$1" || cp "$1.new" "$1"
  rm "$1.new"
}

begin_jobs() {
  cat <<NINJA
builddir = $out/$1
rule one
  command = $here/compile-one $out \$kind \$arch \$in \$out
  depfile = \$out.d
  deps = gcc
  description = \$kind \$in
rule prefix
  command = $compiler @\$flags \$language -MD -MF \$out.d -MT \$out \$in -o \$out
  depfile = \$out.d
  deps = gcc
NINJA
}

# jobs_for KIND ARCHITECTURE FILES...
jobs_for() {
  local kind=$1 arch=$2 file needs
  shift 2
  needs="$out/$arch.flags $here/compile-one $here/include/poison.h"
  # As compile-one chooses them; each is there before anything that may need it.
  [ "$arch" != "$first" ] || needs+=" $out/window.$arch.pch"
  needs+=" $out/cpp.$arch.pch $out/mm.$arch.pch"
  for file in "$@"; do
    printf 'build %s: one %s | %s\n  kind = %s\n  arch = %s\n' \
      "$(result_of "$kind" "$arch" "$file")" "$file" "$needs" "$kind" "$arch"
  done
}

# prefix_job ARCHITECTURE NAME HEADER LANGUAGE...: makes NAME.ARCHITECTURE.pch.
prefix_job() {
  local arch=$1 name=$2 header=$3
  shift 3
  printf 'build %s: prefix %s | %s\n  flags = %s\n  language = %s\n' \
    "$out/$name.$arch.pch" "$here/include/$header" "$out/$arch.flags" "$out/$arch.flags" "$*"
}

# The headers that most files read; those of Objective-C++ need their own.
standard_prefix_jobs() {
  prefix_job "$1" cpp standard.h -x c++-header
  prefix_job "$1" mm standard.h -x objective-c++-header -fobjc-arc
}

# run_jobs NAME: false when one fails. All are tried.
run_jobs() {
  ninja -f "$out/$1.ninja" -k 0 --quiet >"$out/$1.log" 2>&1 && return
  grep -vE '^(FAILED: |ninja: |\[[0-9]+/[0-9]+\] )|^[^ ]*/compile-one ' "$out/$1.log" \
    >>"$out/failures" || true
  return 1
}
