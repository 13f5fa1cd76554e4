# shellcheck shell=bash
# What bash offers after "velmora". It needs nothing but bash itself.

# The words that begin with what has been typed, as the answer.
_velmora_offer() {
  mapfile -t COMPREPLY < <(compgen "${@:2}" -- "$1")
}

# Folders, and the files whose names fit a pattern.
_velmora_offer_files() {
  compopt -o filenames 2>/dev/null
  mapfile -t COMPREPLY < <(compgen -d -- "$1"; compgen -f -X "!$2" -- "$1" | while IFS= read -r name; do
    [[ -d $name ]] || printf '%s\n' "$name"
  done)
}

_velmora() {
  local typed=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command='' word
  COMPREPLY=()
  # bash takes "=" and ":" for words of their own.
  if [[ $typed == '=' || $typed == ':' ]]; then
    typed=
  elif [[ $before == '=' ]]; then
    before=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    case $word in info | spot | check | prepare) command=$word && break ;; esac
  done

  local options='-h --help'
  case $command in
    info) options+=' --json' ;;
    spot)
      options+=' --position --offset --start --skip-tracks --only-tracks --skip-events --only-events
        --depth --fades --gain --copy-to --session-rate --session-frame-rate --prepare
        --media --trust --encoding --copy-media --keep-stereo --keep-off --resample --true-position --host --json --quiet'
      case $before in
        --position) _velmora_offer "$typed" -W 'project offset start first' && return ;;
        --depth) _velmora_offer "$typed" -W '16 24' && return ;;
        --session-frame-rate) _velmora_offer "$typed" -W '24 25 29.97 29.97df 30 30df 23.976' && return ;;
        --host) _velmora_offer "$typed" -W 'embedded' && return ;;
        :) _velmora_offer_files "$typed" '*.json' && return ;;
        --copy-to | --prepare | --media) compopt -o filenames 2>/dev/null; _velmora_offer "$typed" -d && return ;;
        --trust) _velmora_offer "$typed" -W 'marks header' && return ;;
        --offset | --start | --skip-* | --only-* | --session-rate | --encoding) return ;;
      esac
      ;;
    check)
      options+=' --media --trust --encoding --session-rate --session-frame-rate --jobs --json'
      case $before in
        --trust) _velmora_offer "$typed" -W 'marks header' && return ;;
        --session-frame-rate) _velmora_offer "$typed" -W '24 25 29.97 29.97df 30 30df 23.976' && return ;;
        --media) compopt -o filenames 2>/dev/null; _velmora_offer "$typed" -d && return ;;
        --encoding | --session-rate | --jobs) return ;;
      esac
      ;;
    prepare)
      options+=' --into --media --trust --encoding --session-rate --session-frame-rate --copy-media --keep-stereo
        --keep-off --resample --json'
      case $before in
        --trust) _velmora_offer "$typed" -W 'marks header' && return ;;
        --session-frame-rate) _velmora_offer "$typed" -W '24 25 29.97 29.97df 30 30df 23.976' && return ;;
        --into | --media) compopt -o filenames 2>/dev/null; _velmora_offer "$typed" -d && return ;;
        --encoding | --session-rate) return ;;
      esac
      ;;
    *) options+=' --version' ;;
  esac
  if [[ $typed == -* ]]; then
    _velmora_offer "$typed" -W "$options"
  elif [[ -z $command ]]; then
    _velmora_offer "$typed" -W 'info spot check prepare'
  else
    _velmora_offer_files "$typed" '*.[aA][dD][lL]'
  fi
}
complete -F _velmora velmora
