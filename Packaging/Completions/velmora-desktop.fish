# What fish offers after "velmora-desktop".

complete -c velmora-desktop -f -k -a "(__fish_complete_suffix .adl)"
complete -c velmora-desktop -s h -l help -d "Print what the program takes"
complete -c velmora-desktop -l version -d "Print the version"
complete -c velmora-desktop -l bundle -x -a "(__fish_complete_directories)" -d "Take the view from this bundle"
complete -c velmora-desktop -l snapshot -r -d "Draw the window to a picture and end"
complete -c velmora-desktop -l spot -d "Press the spot button once the project is loaded"
