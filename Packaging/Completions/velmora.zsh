#compdef velmora

_velmora_info() {
  _arguments -s \
    '(- *)'{-h,--help}'[print what the command takes]' \
    '(--summary)--json[as one JSON object]' \
    '(--json)--summary[counts in place of the rows]' \
    '*:project:_files -g "*.(#i)adl"'
}

_velmora_hosts() {
  if compset -P 'embedded:'; then
    _files -g '*.json'
  elif compset -P 'ardour:'; then
    _files -/
  else
    compadd -S '' embedded ardour
  fi
}

_velmora_placing() {
  _arguments -s "$@" \
    '(- *)'{-h,--help}'[print what the command takes]' \
    '--position[where the project lands]:position:(project offset start first)' \
    '--offset[how far --position offset moves it]:[+-]HH\:MM\:SS\:FF: ' \
    '--start[where the first cut lands with --position start]:HH\:MM\:SS\:FF: ' \
    '(--only-tracks)--skip-tracks[tracks to leave out]:numbers such as 1,3-5: ' \
    '(--skip-tracks)--only-tracks[the only tracks to place]:numbers such as 1,3-5: ' \
    '(--only-events)--skip-events[events to leave out]:numbers such as 0,3-5: ' \
    '(--skip-events)--only-events[the only events to place]:numbers such as 0,3-5: ' \
    '--depth[bits per sample]:bits:(16 24)' \
    '--fades[make fade and crossfade pieces]' \
    "--gain[make files with the project's gains in them]" \
    '--copy-to[copy all audio into this folder]:folder:_files -/' \
    "--session-rate[the session's sample rate]:Hz: " \
    "--session-frame-rate[the session's frame rate]:frame rate:(24 25 29.97 29.97df 30 30df 23.976)" \
    '--true-position[place every cut where the project has it]' \
    '--host[where the regions go]:host:_velmora_hosts' \
    '*--dawproject[make a DAWproject file]:file:_files -g "*.dawproject"' \
    '*--otio[make an OpenTimelineIO file]:file:_files -g "*.otio"' \
    '*--bounce[make the audio as the session plays it]:file:_files -g "*.wav"' \
    '*--bounce-tracks[the same with a file for each track]:folder:_files -/' \
    '*--report[make a page of what became of everything]:page:_files -g "*.html"' \
    '--embed-media[audio inside the DAWproject file]' \
    '--bounce-depth[bits per sample of bounces]:bits:(16 24 32f)' \
    '--native[fades and gain as facts of the regions]' \
    '--json[tell every step as JSON Lines]' \
    '--quiet[no progress bar]' \
    '*:project:_files -g "*.(#i)adl"'
}

_velmora_spot() {
  _velmora_placing \
    '--prepare[spot what prepare makes of the project]' \
    '--media[a folder to look for audio in]:folder:_files -/' \
    '--trust[what tells the rates of times]:what:(marks header)' \
    "--encoding[the encoding of the project's text]:encoding: " \
    '--copy-media[copy audio that stays as it is]' \
    '--keep-stereo[leave cuts of whole files whole]' \
    '--keep-off[keep events that are switched off]' \
    "--resample[bring audio to the project's sample rate]"
}

_velmora_report() {
  _velmora_placing \
    '(-o --output)'{-o,--output}'[the page to make]:page:_files -g "*.html"'
}

_velmora_check() {
  _arguments -s \
    '(- *)'{-h,--help}'[print what the command takes]' \
    '--media[a folder to look for audio in]:folder:_files -/' \
    '--trust[what tells the rates of times]:what:(marks header)' \
    "--encoding[the encoding of the project's text]:encoding: " \
    '--session-rate[the sample rate of the session to spot into]:Hz: ' \
    "--session-frame-rate[that session's frame rate]:frame rate:(24 25 29.97 29.97df 30 30df 23.976)" \
    '--jobs[projects that are read side by side]:number: ' \
    '--json[as JSON Lines]' \
    '*:project:_files -g "*.(#i)adl"'
}

_velmora_prepare() {
  _arguments -s \
    '(- *)'{-h,--help}'[print what the command takes]' \
    '--into[the folder to make]:folder:_files -/' \
    '--media[a folder to look for audio in]:folder:_files -/' \
    '--trust[what tells the rates of times]:what:(marks header)' \
    "--encoding[the encoding of the project's text]:encoding: " \
    '--session-rate[the sample rate of the session to spot into]:Hz: ' \
    "--session-frame-rate[that session's frame rate]:frame rate:(24 25 29.97 29.97df 30 30df 23.976)" \
    '--copy-media[copy audio that stays as it is]' \
    '--keep-stereo[leave cuts of whole files whole]' \
    '--keep-off[keep events that are switched off]' \
    "--resample[bring audio to the project's sample rate]" \
    '--json[as one JSON object]' \
    '*:project:_files -g "*.(#i)adl"'
}

_velmora() {
  local curcontext=$curcontext state line
  _arguments -C \
    '(- *)'{-h,--help}'[print what the program takes]' \
    '(- *)--version[print the version]' \
    '1: :->command' \
    '*:: :->rest'
  case $state in
    command)
      local -a commands=('info:show what a project holds' 'spot:prepare the audio and place every cut'
        'report:make a page of what a spot would do'
        'check:say what would go wrong in a spot, and why' 'prepare:make a clean project out of one that is not')
      _describe command commands
      ;;
    rest)
      (( $+functions[_velmora_$words[1]] )) && _velmora_$words[1]
      ;;
  esac
}

_velmora "$@"
