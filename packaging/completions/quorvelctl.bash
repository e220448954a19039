# Completion of quorvelctl for bash.

_quorvelctl_clones() {
  local wrapper
  for wrapper in ~/Applications/*.app; do
    [ -f "$wrapper/Contents/Resources/instance.json" ] && printf '%s\n' "$wrapper"
  done
}

_quorvelctl() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} command= options=
  local word
  COMPREPLY=()
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    case $word in -*) ;; *) command=$word; break ;; esac
  done
  case $previous in
    --kind) mapfile -t COMPREPLY < <(compgen -W "app web file command" -- "$current"); return ;;
    --strategy)
      mapfile -t COMPREPLY < <(compgen -W \
        "home-override container-redirect wrapper-identity unsupported" -- "$current")
      return ;;
    --label-position | --position)
      mapfile -t COMPREPLY < <(compgen -W "bottom center top" -- "$current"); return ;;
    --workdir | --home | --output | --search-dir | --real-library)
      mapfile -t COMPREPLY < <(compgen -d -- "$current"); return ;;
    --target | --open | --command | --icon | --runner)
      mapfile -t COMPREPLY < <(compgen -f -- "$current"); return ;;
  esac
  case $command in
    "") mapfile -t COMPREPLY < <(compgen -W \
      "inspect apps probe running list show create open delete migrate icon --help --version" -- "$current"); return ;;
    inspect) options="--help --json" ;;
    apps) options="--help --json --search-dir" ;;
    probe) options="--help --json --settle-a --settle-b --real-library" ;;
    running) options="--help --json" ;;
    list) options="--help --json --search-dir" ;;
    show) options="--help --json" ;;
    create) options="--help --json --kind --name --target --url --open --command --arg --workdir --home --shared-home --output --bundle-id --strategy --icon --hide-icon --extra-arg --no-extra-args --env --plist --browser --open-with --label --label-color --label-position --menu-bar-icon --menu-bar-template --isolate-folders --runner --launch" ;;
    open) options="--help --json" ;;
    delete) options="--help --json --including-data --yes" ;;
    migrate) options="--help --json" ;;
    icon) options="--help --json --list --label --color --position --output" ;;
  esac
  if [[ $current == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
  elif [[ $command == @(inspect|probe|icon) ]]; then
    mapfile -t COMPREPLY < <(compgen -f -- "$current")
  elif [[ $command == @(show|open|delete|migrate) ]]; then
    local IFS=$'\n'
    mapfile -t COMPREPLY < <(compgen -W "$(_quorvelctl_clones)" -- "$current")
  fi
}

complete -o filenames -F _quorvelctl quorvelctl
