#!/bin/sh
# Draws the two faces of the spot button into KestaneGUI.bundle, at 1x and at 2x. Needs ImageMagick
# and the font DejaVu Sans Bold; the same versions of both give the same bytes.
set -eu
cd "$(dirname "$0")/KestaneGUI.bundle/Resources"

width=176
height=48

# face NAME COLOUR EDGE LABEL ICON: ICON is drawn in a box of 16 by 16 points at the label's left.
face() {
  for scale in 1 2; do
    suffix=$([ "$scale" = 1 ] || echo "@${scale}x")
    convert -size "$((width * scale))x$((height * scale))" xc:none \
      -fill "$3" -draw "scale $scale,$scale roundrectangle 0.5,1.5 174.5,46.5 9,9" \
      -fill "$2" -draw "scale $scale,$scale roundrectangle 0.5,0.5 174.5,44.5 9,9" \
      -fill white -stroke none -draw "scale $scale,$scale translate 36,14.5 $5" \
      -font DejaVu-Sans-Bold -pointsize "$((19 * scale))" -gravity West \
      -annotate "+$((64 * scale))-$scale" "$4" \
      -strip -define png:exclude-chunks=date,time -define png:color-type=6 "$1$suffix.png"
  done
}

# A region that lands on a track, and a stop sign.
face Spot_Off '#2f6fed' '#1f55c4' Spot \
  'polygon 6,0 10,0 10,4.5 13.5,4.5 8,10 2.5,4.5 6,4.5 roundrectangle 0,12.5 16,15.5 1,1'
face Cancel_Off '#d6453d' '#ad2f29' Cancel 'roundrectangle 1,1 15,15 2,2'
