# What fish offers after "velmora".

function __velmora_project
    __fish_complete_suffix .adl
end

set -l commands info spot check prepare
set -l alone "not __fish_seen_subcommand_from $commands"
set -l info "__fish_seen_subcommand_from info"
set -l spot "__fish_seen_subcommand_from spot"
set -l check "__fish_seen_subcommand_from check"
set -l prepare "__fish_seen_subcommand_from prepare"

complete -c velmora -f
complete -c velmora -s h -l help -d "Print what is taken"
complete -c velmora -n $alone -l version -d "Print the version"
complete -c velmora -n $alone -a info -d "Show what a project holds"
complete -c velmora -n $alone -a spot -d "Prepare the audio and place every cut"
complete -c velmora -n $alone -a check -d "Say what would go wrong in a spot, and why"
complete -c velmora -n $alone -a prepare -d "Make a clean project out of one that is not"
complete -c velmora -n "not $alone" -k -a "(__velmora_project)"

complete -c velmora -n $info -l json -d "As one JSON object"

complete -c velmora -n $spot -l position -x -a "project offset start first" -d "Where the project lands"
complete -c velmora -n $spot -l offset -x -d "How far --position offset moves it"
complete -c velmora -n $spot -l start -x -d "Where the first cut lands"
complete -c velmora -n $spot -l skip-tracks -x -d "Tracks to leave out"
complete -c velmora -n $spot -l only-tracks -x -d "The only tracks to place"
complete -c velmora -n $spot -l skip-events -x -d "Events to leave out"
complete -c velmora -n $spot -l only-events -x -d "The only events to place"
complete -c velmora -n $spot -l depth -x -a "16 24" -d "Bits per sample"
complete -c velmora -n $spot -l fades -d "Make fade and crossfade pieces"
complete -c velmora -n $spot -l gain -d "Make files with the project's gains in them"
complete -c velmora -n $spot -l copy-to -x -a "(__fish_complete_directories)" -d "Copy all audio into this folder"
complete -c velmora -n $spot -l session-rate -x -d "The session's sample rate in Hz"
complete -c velmora -n $spot -l session-frame-rate -x -a "24 25 29.97 29.97df 30 30df 23.976" -d "The session's frame rate"
complete -c velmora -n $spot -l prepare -d "Spot what prepare makes of the project"
complete -c velmora -n $spot -l media -x -a "(__fish_complete_directories)" -d "A folder to look for audio in"
complete -c velmora -n $spot -l trust -x -a "marks header" -d "What tells the rates of times"
complete -c velmora -n $spot -l encoding -x -d "The encoding of the project's text"
complete -c velmora -n $spot -l copy-media -d "Copy audio that stays as it is"
complete -c velmora -n $spot -l keep-stereo -d "Leave cuts of whole files whole"
complete -c velmora -n $spot -l keep-off -d "Keep events that are switched off"
complete -c velmora -n $spot -l resample -d "Bring audio to the project's sample rate"
complete -c velmora -n $spot -l true-position -d "Place every cut where the project has it"
complete -c velmora -n $spot -l host -x -a embedded -d "Where the regions go"
complete -c velmora -n $spot -l json -d "Tell every step as JSON Lines"
complete -c velmora -n $spot -l quiet -d "No progress bar"

complete -c velmora -n $check -l media -x -a "(__fish_complete_directories)" -d "A folder to look for audio in"
complete -c velmora -n $check -l trust -x -a "marks header" -d "What tells the rates of times"
complete -c velmora -n $check -l encoding -x -d "The encoding of the project's text"
complete -c velmora -n $check -l session-rate -x -d "The sample rate of the session to spot into"
complete -c velmora -n $check -l session-frame-rate -x -a "24 25 29.97 29.97df 30 30df 23.976" -d "That session's frame rate"
complete -c velmora -n $check -l jobs -x -d "Projects that are read side by side"
complete -c velmora -n $check -l json -d "As JSON Lines"

complete -c velmora -n $prepare -l into -x -a "(__fish_complete_directories)" -d "The folder to make"
complete -c velmora -n $prepare -l media -x -a "(__fish_complete_directories)" -d "A folder to look for audio in"
complete -c velmora -n $prepare -l trust -x -a "marks header" -d "What tells the rates of times"
complete -c velmora -n $prepare -l encoding -x -d "The encoding of the project's text"
complete -c velmora -n $prepare -l session-rate -x -d "The sample rate of the session to spot into"
complete -c velmora -n $prepare -l session-frame-rate -x -a "24 25 29.97 29.97df 30 30df 23.976" -d "That session's frame rate"
complete -c velmora -n $prepare -l copy-media -d "Copy audio that stays as it is"
complete -c velmora -n $prepare -l keep-stereo -d "Leave cuts of whole files whole"
complete -c velmora -n $prepare -l keep-off -d "Keep events that are switched off"
complete -c velmora -n $prepare -l resample -d "Bring audio to the project's sample rate"
complete -c velmora -n $prepare -l json -d "As one JSON object"
