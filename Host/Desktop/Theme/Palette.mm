#import "Desktop/Theme/Palette.h"

namespace velmora::desktop {
namespace {

constexpr CGFloat kHues[] = {0.60, 0.46, 0.77, 0.09, 0.53, 0.93, 0.33, 0.69};

NSColor* Shade(CGFloat hue, CGFloat saturation, CGFloat brightness) {
  return [NSColor colorWithCalibratedHue:hue saturation:saturation brightness:brightness alpha:1];
}

}  // namespace

NSColor* ColorOf(Tone tone) {
  const auto number = static_cast<std::uint32_t>(tone);
  const auto part = [number](int shift) { return ((number >> shift) & 0xFF) / 255.0; };
  return [NSColor colorWithCalibratedRed:part(16) green:part(8) blue:part(0) alpha:1];
}

TrackColors ColorsOfTrack(std::int64_t track) {
  constexpr auto kCount = static_cast<std::int64_t>(sizeof kHues / sizeof *kHues);
  const CGFloat hue = kHues[((track % kCount) + kCount) % kCount];
  return {Shade(hue, 0.22, 0.97), Shade(hue, 0.62, 0.74), Shade(hue, 0.42, 0.88),
          Shade(hue, 0.46, 0.84), Shade(hue, 0.75, 0.36)};
}

}  // namespace velmora::desktop
