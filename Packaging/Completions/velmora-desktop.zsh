#compdef velmora-desktop

_arguments \
  '(- *)'{-h,--help}'[print what the program takes]' \
  '(- *)--version[print the version]' \
  "--bundle[take the view from this bundle]:bundle:_files -/" \
  '--snapshot[draw the window to a picture and end]:picture:_files -g "*.png"' \
  '--spot[press the spot button once the project is loaded]' \
  '1:project:_files -g "*.(#i)adl"'
