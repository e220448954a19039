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
  command = $compiler @\$flags -MD -MF \$out.d -MT \$out -x c++-header \$in -o \$out
  depfile = \$out.d
  deps = gcc
NINJA
}

# jobs_for KIND ARCHITECTURE FILES...
jobs_for() {
  local kind=$1 arch=$2 file needs
  shift 2
  needs="$out/$arch.flags $here/compile-one"
  [ "$kind" != window ] || needs+=" $out/prefix.pch"
  for file in "$@"; do
    printf 'build %s: one %s | %s\n  kind = %s\n  arch = %s\n' \
      "$(result_of "$kind" "$arch" "$file")" "$file" "$needs" "$kind" "$arch"
  done
}

# The header that the files of the windows have in common.
prefix_job() {
  printf 'build %s: prefix %s | %s\n  flags = %s\n' \
    "$out/prefix.pch" "$here/include/prefix.h" "$out/$1.flags" "$out/$1.flags"
}

# run_jobs NAME: false when one fails. All are tried.
run_jobs() {
  ninja -f "$out/$1.ninja" -k 0 --quiet >"$out/$1.log" 2>&1 && return
  grep -vE '^(FAILED: |ninja: |\[[0-9]+/[0-9]+\] )|^[^ ]*/compile-one ' "$out/$1.log" \
    >>"$out/failures" || true
  return 1
}
