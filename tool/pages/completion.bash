# Completion of zvfilter for bash.

_zvfilter_words() {
  local found=
  case $1 in
@WORDS@
  esac
  printf "%s" "$found"
}

_zvfilter_values() {
  local found=
  case $1 in
@VALUES@
  esac
  printf "%s" "$found"
}

_zvfilter_keys() {
  local found=
  case $1 in
@KEYS@
  esac
  printf "%s" "$found"
}

_zvfilter() {
  local cur prev words cword command= i
  _get_comp_words_by_ref -n := cur prev words cword
  for ((i = 1; i < cword; i++)); do
    case ${words[i]} in
      -*) continue ;;
    esac
    if [ -z "$command" ]; then
      command=${words[i]}
      case $command in
        @NESTED@) ;;
        *) break ;;
      esac
    else
      command+=" ${words[i]}"
      break
    fi
  done
  local choices
  choices=$(_zvfilter_values "$prev")
  case $prev in
    -f | --filter)
      # NAME:key=value,key=value: the keys come after the colon and after each comma.
      if [[ $cur == *:* ]]; then
        local name=${cur%%:*} head=${cur%"${cur##*[:,]}"} key
        choices=
        for key in $(_zvfilter_keys "${name##*=}"); do choices+=" $head$key"; done
      fi
      # TAG=NAME
      if [[ $cur == *=* && $cur != *:* ]]; then choices=${choices:+${cur%%=*}=${choices// / ${cur%%=*}=}}; fi
      compopt -o nospace
      ;;
  esac
  if [ -z "$choices" ] && { [[ $cur == -* ]] || [[ $prev != -* ]]; }; then choices=$(_zvfilter_words "$command"); fi
  mapfile -t COMPREPLY < <(compgen -W "$choices" -- "$cur")
  [ ${#COMPREPLY[@]} -gt 0 ] || _filedir
  __ltrim_colon_completions "$cur"
}

complete -F _zvfilter zvfilter
