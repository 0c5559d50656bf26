#compdef zvfilter
# Completion of zvfilter for zsh.

_zvfilter_words() {
  local found=
  case $1 in
@WORDS@
  esac
  print -r -- $found
}

_zvfilter_values() {
  local found=
  case $1 in
@VALUES@
  esac
  print -r -- $found
}

_zvfilter_keys() {
  local found=
  case $1 in
@KEYS@
  esac
  print -r -- $found
}

_zvfilter() {
  local command= word previous=$words[CURRENT-1] current=$words[CURRENT]
  for word in ${words[2,CURRENT-1]}; do
    [[ $word == -* ]] && continue
    if [[ -z $command ]]; then
      command=$word
      [[ $command == (@NESTED@) ]] || break
    else
      command+=" $word"
      break
    fi
  done
  local -a choices
  choices=(${=$(_zvfilter_values $previous)})
  if [[ $previous == (-f|--filter) && $current == *:* ]]; then
    # NAME:key=value,key=value: the keys come after the colon and after each comma.
    local name=${current%%:*} head=${current%${current##*[:,]}}
    choices=($head${^${=$(_zvfilter_keys ${name##*=})}})
  fi
  # TAG=NAME
  [[ $previous == (-f|--filter) && $current == *=* && $current != *:* ]] && choices=(${current%%=*}=$^choices)
  if (( $#choices )); then
    compadd -S '' -- $choices
    return
  fi
  [[ $current == -* || $previous != -* ]] && compadd -- ${=$(_zvfilter_words "$command")}
  _files
}

_zvfilter "$@"
