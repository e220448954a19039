# Finds breaches of the system's rules about handlers and delegates, which the compiler can't see.
# The variables are those of tools/macos-check/check.
# shellcheck shell=bash disable=SC2154

# check_conventions FILES...
check_conventions() {
  local file expected found
  "$here/conventions" "$@" >>"$out/failures" || true
  for file in "$here"/mistakes/conventions/*.mm; do
    expected=$(sed -n '1s|^// expected: ||p' "$file")
    found=$("$here/conventions" "$file" 2>&1) || true
    grep -qF -- "$expected" <<<"$found" ||
      failed "the conventions miss “$expected”: $file"
  done
}
