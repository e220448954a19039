# shellcheck shell=bash
# A tilde and a backslash between quotes are meant as such here.
# shellcheck disable=SC2088,SC1003
#
# Completion of quorvelctl for bash 4.4 or later. File names are data here: they pass between
# functions ended by NULs, go into the line quoted by us, and no shell ever expands them.

# Appends what the text between $' and ' spells to typed.
_quorvelctl_spell() {
  local index pair escaped='' spelled
  for ((index = 0; index < ${#1}; index++)); do
    pair=${1:index:1}
    [[ $pair != '\' ]] || { ((++index)); pair+=${1:index:1}; }
    # %b would keep these backslashes.
    [[ $pair != '\'[\"?] ]] || pair=${pair:1}
    # %b takes one digit more after a zero.
    if [[ $pair == '\0' && ${1:index+1:2} =~ ^[0-7]{1,2} ]]; then
      ((index += ${#BASH_REMATCH[0]}))
      printf -v pair '\\x%02x' "0${BASH_REMATCH[0]}"
    fi
    escaped+=$pair
  done
  printf -v spelled %b "$escaped"
  typed+=$spelled
}

# Sets typed to a word without its quotes and backslashes, and quote to the one that is still open.
_quorvelctl_unquote() {
  local text=$1 character index spelling="^'(([^\\']|\\\\.)*)'"
  typed='' quote=''
  if [[ $text == '~/'* ]]; then
    typed=$HOME/
    text=${text:2}
  fi
  for ((index = 0; index < ${#text}; index++)); do
    character=${text:index:1}
    case $quote$character in
      '\' | '"\')
        ((++index))
        # Within double quotes a backslash is literal before most characters.
        [[ -z $quote || ${text:index:1} == [\$\`\"\\] ]] || typed+=$character
        typed+=${text:index:1}
        ;;
      '$')
        [[ ${text:index+1} =~ $spelling ]] || { typed+=$; continue; }
        # The shell's editor takes such a quote for the end.
        [[ ${BASH_REMATCH[1]} != *"\\'"* ]] || { quote="'"; return; }
        ((index += ${#BASH_REMATCH[0]}))
        _quorvelctl_spell "${BASH_REMATCH[1]}"
        ;;
      "'" | '"') quote=$character ;;
      "''" | '""') quote='' ;;
      *) typed+=$character ;;
    esac
  done
}

# Sets quoted to a text as it must appear in the line after the open quote, if any.
_quorvelctl_quote() {
  local index character
  quoted=''
  [[ -n $quote ]] || { printf -v quoted %q "$1"; return; }
  for ((index = 0; index < ${#1}; index++)); do
    character=${1:index:1}
    case $quote$character in
      "''") quoted+="'\\''" ;;
      '"!') quoted+="\"'!'\"" ;;
      '""' | '"$' | '"`' | '"\') quoted+=\\$character ;;
      *) quoted+=$character ;;
    esac
  done
}

# Makes patterns match files regardless of the user's shell options. Call it in a subshell.
_quorvelctl_plain_patterns() {
  set +f
  shopt -u failglob nocaseglob dotglob
  shopt -s nullglob
  GLOBIGNORE=
}

_quorvelctl_clones() {
  local wrapper
  _quorvelctl_plain_patterns
  for wrapper in "$HOME"/Applications/*.app; do
    [[ $wrapper != "$1"* || ! -f $wrapper/Contents/Resources/instance.json ]] ||
      printf '%s\0' "$wrapper"
  done
}

_quorvelctl_folders() {
  local folder
  _quorvelctl_plain_patterns
  for folder in "$1"*/; do
    # The program would take it for an option.
    [[ $folder != -* ]] || folder=./$folder
    printf '%s\0' "$folder"
  done
}

_quorvelctl_files() {
  local file
  _quorvelctl_folders "$1"
  for file in "$1"*; do
    [[ $file != -* ]] || file=./$file
    [[ -d $file ]] || printf '%s\0' "$file"
  done
}

# Sets words to the line's words up to the cursor, joined again where the editor broke them at ":",
# "=" or "@". Sets kept to the part of the last one that the editor does not replace.
_quorvelctl_join() {
  local line=$COMP_LINE index word glued
  words=() kept=''
  for ((index = 0; index <= COMP_CWORD; index++)); do
    word=${COMP_WORDS[index]}
    glued=$line
    line=${line#"${line%%[![:space:]]*}"}
    if [[ $index -gt 0 && $glued == "$line" && $line == "$word"* ]]; then
      kept=${words[-1]}
      words[-1]+=$word
    else
      kept=''
      words+=("$word")
    fi
    [[ $word != +([:=@]) ]] || kept=${words[-1]}
    line=${line#"$word"}
  done
  kept=${kept%@} # this one the editor takes for the beginning of a word
}

# _quorvelctl_reply NAME SKIPPED   Sets COMPREPLY to the name without its first SKIPPED characters.
_quorvelctl_reply() {
  quoted=''
  # As quotes around nothing it would end the word.
  ((${#1} == $2)) || _quorvelctl_quote "${1:$2}"
  COMPREPLY=("$quoted")
}

# _quorvelctl_offer WORD LISTER   LISTER prints what begins with the word, each ended by a NUL
_quorvelctl_offer() {
  local typed quote quoted name common skipped
  local -a names
  _quorvelctl_unquote "$kept"
  skipped=${#typed}
  _quorvelctl_unquote "$1"
  # With a quote within the word, the shell's editor would insert names after it.
  [[ -z $quote || $1 == "$quote"* ]] || return
  mapfile -d '' -t names < <("$2" "$typed")
  ((${#names[@]} > 0)) || return
  common=${names[0]}
  for name in "${names[@]}"; do
    while [[ $name != "$common"* ]]; do common=${common%?}; done
  done
  # Completion can't continue after the $'' that spells the rest, which may be half a character.
  ((${#names[@]} == 1)) || common=${common%%[^[:print:]]*}
  if [[ ${#names[@]} -gt 1 && ${#common} -le ${#typed} ]]; then
    # With the blank among them they have nothing in common that would go into the line.
    COMPREPLY=(' ')
    for name in "${names[@]}"; do
      _quorvelctl_quote "$name"
      COMPREPLY+=("$quoted")
    done
    return
  fi
  _quorvelctl_reply "$common" "$skipped"
  [[ ${#names[@]} -eq 1 && $common != */ ]] || compopt -o nospace
}

# _quorvelctl_offer_words TYPED WORDS   the words must be this file's own
_quorvelctl_offer_words() {
  mapfile -t COMPREPLY < <(compgen -W "$2" -- "$1")
}

_quorvelctl() {
  local kept current previous command='' options='' word
  local -a words
  COMPREPLY=()
  _quorvelctl_join
  ((${#words[@]} > 1)) || return # something right after the program's name
  current=${words[-1]} previous=${words[-2]}
  for word in "${words[@]:1:${#words[@]}-2}"; do
    case $word in -*) ;; *) command=$word; break ;; esac
  done
  case $previous in
    --kind) _quorvelctl_offer_words "$current" "app web file command"; return ;;
    --strategy)
      _quorvelctl_offer_words "$current" \
        "home-override container-redirect wrapper-identity unsupported"
      return ;;
    --links)
      case $current in
        [/~.]*) _quorvelctl_offer "$current" _quorvelctl_clones ;;
        *) _quorvelctl_offer_words "$current" "default inside" ;;
      esac
      return ;;
    --label-position | --position)
      _quorvelctl_offer_words "$current" "bottom center top"; return ;;
    --workdir | --home | --output | --search-dir | --real-library)
      _quorvelctl_offer "$current" _quorvelctl_folders; return ;;
    --target | --open | --command | --icon | --runner)
      _quorvelctl_offer "$current" _quorvelctl_files; return ;;
  esac
  case $command in
    "") _quorvelctl_offer_words "$current" \
      "inspect apps probe running list show create edit rename refresh open stop log duplicate delete migrate icon --help --version"; return ;;
    inspect) options="--help --json" ;;
    apps) options="--help --json --search-dir" ;;
    probe) options="--help --json --settle-a --settle-b --real-library" ;;
    running) options="--help --json" ;;
    list) options="--help --json --search-dir --stale --runner" ;;
    show) options="--help --json" ;;
    create) options="--help --json --kind --name --target --url --open --command --arg --workdir --home --shared-home --output --replace --seed --bundle-id --strategy --icon --hide-icon --extra-arg --no-extra-args --env --no-default-env --plist --browser --open-with --label --label-color --label-position --menu-bar-icon --menu-bar-template --isolate-folders --links --runner --launch" ;;
    edit) options="--help --json --url --open --command --no-args --arg --workdir --strategy --icon --hide-icon --no-hide-icon --label --label-color --label-position --extra-arg --no-extra-args --default-extra-args --env --unset-env --plist --unset-plist --browser --no-browser --open-with --no-open-with --menu-bar-icon --no-menu-bar-icon --menu-bar-template --no-menu-bar-template --isolate-folders --no-isolate-folders --links --runner" ;;
    rename) options="--help --json --move-data" ;;
    refresh) options="--help --json --all --runner" ;;
    open) options="--help --json" ;;
    duplicate) options="--help --json --with-data --runner" ;;
    stop) options="--help --json --force --wait" ;;
    log) options="--help --json --follow" ;;
    delete) options="--help --json --including-data --yes" ;;
    migrate) options="--help --json" ;;
    icon) options="--help --json --list --label --color --position --output" ;;
  esac
  if [[ $current == -* ]]; then
    _quorvelctl_offer_words "$current" "$options"
  elif [[ $command == @(inspect|probe|icon) ]]; then
    _quorvelctl_offer "$current" _quorvelctl_files
  elif [[ $command == @(show|edit|rename|refresh|open|stop|log|duplicate|delete|migrate) ]]; then
    _quorvelctl_offer "$current" _quorvelctl_clones
  fi
}

complete -F _quorvelctl quorvelctl
