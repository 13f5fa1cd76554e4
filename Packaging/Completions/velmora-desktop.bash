# shellcheck shell=bash
# What bash offers after "velmora-desktop". It needs nothing but bash itself.

_velmora_desktop() {
  local typed=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} pattern='*.[aA][dD][lL]'
  COMPREPLY=()
  # bash takes "=" for a word of its own.
  if [[ $typed == '=' ]]; then
    typed=
  elif [[ $before == '=' ]]; then
    before=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  case $before in
    --bundle) pattern='*.bundle' ;;
    --snapshot) pattern='*.png' ;;
    *)
      if [[ $typed == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W '-h --help --version --bundle --snapshot --spot' -- "$typed")
        return
      fi
      ;;
  esac
  compopt -o filenames 2>/dev/null
  mapfile -t COMPREPLY < <(compgen -d -- "$typed"; compgen -f -X "!$pattern" -- "$typed" | while IFS= read -r name; do
    [[ -d $name ]] || printf '%s\n' "$name"
  done)
}
complete -F _velmora_desktop velmora-desktop
