#pragma once

#import <AppKit/AppKit.h>

#include <cstdint>

namespace velmora::desktop {

// The colours of the shell, as 0xRRGGBB: the one place where they are numbers. draw_pictures.py
// reads them from these lines.
enum class Tone : std::uint32_t {
  Window = 0xF4F6F9,           // what all controls stand on
  WindowFrame = 0xE4E8EE,      // the toolkit's own window frames
  Surface = 0xFFFFFF,          // fields, tables, lanes
  DisabledSurface = 0xF7F8FA,  // a button that takes no click
  Stripe = 0xF3F5F9,           // every other row
  Raised = 0xEEF1F5,           // headers, bars, the slots of scrollers
  Highlight = 0xF1F3F6,        // the lit edge of a bevel
  Line = 0xCBD1DA,             // borders
  FaintLine = 0xE7EAEF,        // grids
  Text = 0x1F2933,
  QuietText = 0x66727F,
  HeaderText = 0x52606D,
  DisabledText = 0x9AA5B1,
  Accent = 0x2F6FDE,      // the primary button, the focus, the selected region
  Selection = 0xDCE7FA,   // selected rows, pressed buttons
  MarkedText = 0xBFD6FB,  // selected text
  Knob = 0xB4BDC9,
  PressedKnob = 0x8E99A8,
  Problem = 0xC23B3B,
  Notice = 0xA8660A,
};

// Autoreleased, opaque.
[[nodiscard]] NSColor* ColorOf(Tone tone);

// The colours of a track's regions: one hue in five strengths. Autoreleased.
struct TrackColors {
  NSColor* fill;  // a region
  NSColor* edge;  // its border, and the track's mark
  NSColor* ramp;  // the shape of a fade
  NSColor* wave;  // what sounds in a region
  NSColor* ink;   // a region's name
};

// `track` counts from 0. Neighbouring tracks differ; after eight the hues come again.
[[nodiscard]] TrackColors ColorsOfTrack(std::int64_t track);

}  // namespace velmora::desktop
