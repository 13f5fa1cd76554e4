# shellcheck shell=bash
# What bash offers after "velmora". It needs nothing but bash itself.

# The words that begin with what has been typed, as the answer.
_velmora_offer() {
  mapfile -t COMPREPLY < <(compgen "${@:2}" -- "$1")
}

_velmora_offer_folders() {
  compopt -o filenames 2>/dev/null
  _velmora_offer "$1" -d
}

# Folders, and the files whose names fit a pattern.
_velmora_offer_files() {
  compopt -o filenames 2>/dev/null
  mapfile -t COMPREPLY < <(compgen -d -- "$1"; compgen -f -X "!$2" -- "$1" | while IFS= read -r name; do
    [[ -d $name ]] || printf '%s\n' "$name"
  done)
}

_velmora() {
  local typed=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command='' word host=''
  COMPREPLY=()
  # bash takes "=" and ":" for words of their own.
  if [[ $typed == '=' ]]; then
    typed=
  elif [[ $typed == ':' ]]; then
    typed='' host=$before before=':'
  elif [[ $before == '=' ]]; then
    before=${COMP_WORDS[COMP_CWORD - 2]}
  elif [[ $before == ':' ]]; then
    host=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    case $word in info | spot | report | check | prepare) command=$word && break ;; esac
  done

  local options='-h --help'
  case $command in
    info) options+=' --json --summary' ;;
    spot | report)
      options+=' --position --offset --start --skip-tracks --only-tracks --skip-events --only-events
        --depth --fades --gain --copy-to --session-rate --session-frame-rate --true-position --host
        --dawproject --otio --bounce --bounce-tracks --report --embed-media --bounce-depth --native --json --quiet'
      if [[ $command == report ]]; then
        options+=' -o --output'
      else
        options+=' --prepare --media --trust --encoding --copy-media --keep-stereo --keep-off --resample'
      fi
      case $before in
        --position) _velmora_offer "$typed" -W 'project offset start first' && return ;;
        --depth) _velmora_offer "$typed" -W '16 24' && return ;;
        --bounce-depth) _velmora_offer "$typed" -W '16 24 32f' && return ;;
        --session-frame-rate) _velmora_offer "$typed" -W '24 25 29.97 29.97df 30 30df 23.976' && return ;;
        --host) _velmora_offer "$typed" -W 'embedded ardour' && return ;;
        :)
          case $host in
            embedded) _velmora_offer_files "$typed" '*.json' ;;
            ardour) _velmora_offer_folders "$typed" ;;
          esac
          return
          ;;
        --copy-to | --prepare | --media | --bounce-tracks) _velmora_offer_folders "$typed" && return ;;
        --dawproject) _velmora_offer_files "$typed" '*.dawproject' && return ;;
        --otio) _velmora_offer_files "$typed" '*.otio' && return ;;
        --bounce) _velmora_offer_files "$typed" '*.wav' && return ;;
        --report | -o | --output) _velmora_offer_files "$typed" '*.html' && return ;;
        --trust) _velmora_offer "$typed" -W 'marks header' && return ;;
        --offset | --start | --skip-* | --only-* | --session-rate | --encoding) return ;;
      esac
      ;;
    check)
      options+=' --media --trust --encoding --session-rate --session-frame-rate --jobs --json'
      case $before in
        --trust) _velmora_offer "$typed" -W 'marks header' && return ;;
        --session-frame-rate) _velmora_offer "$typed" -W '24 25 29.97 29.97df 30 30df 23.976' && return ;;
        --media) _velmora_offer_folders "$typed" && return ;;
        --encoding | --session-rate | --jobs) return ;;
      esac
      ;;
    prepare)
      options+=' --into --media --trust --encoding --session-rate --session-frame-rate --copy-media --keep-stereo
        --keep-off --resample --json'
      case $before in
        --trust) _velmora_offer "$typed" -W 'marks header' && return ;;
        --session-frame-rate) _velmora_offer "$typed" -W '24 25 29.97 29.97df 30 30df 23.976' && return ;;
        --into | --media) _velmora_offer_folders "$typed" && return ;;
        --encoding | --session-rate) return ;;
      esac
      ;;
    *) options+=' --version' ;;
  esac
  if [[ $typed == -* ]]; then
    _velmora_offer "$typed" -W "$options"
  elif [[ -z $command ]]; then
    _velmora_offer "$typed" -W 'info spot report check prepare'
  else
    _velmora_offer_files "$typed" '*.[aA][dD][lL]'
  fi
}
complete -F _velmora velmora
