#pragma once

#include <cstdint>

namespace velmora::timeline {

/// The horizontal mapping of a timeline between samples and view coordinates.
///
///     samples  ....origin........................
///     view         0 --------- x ------- width
///
/// Positions of regions are known only to lie somewhere in 64 bits: all arithmetic saturates.
class TimeScale {
 public:
  static constexpr double kFinest = 1.0 / 16;  ///< samples per pixel at the deepest zoom
  static constexpr double kCoarsest = 1e15;    ///< samples per pixel at the widest

  [[nodiscard]] double SamplesPerPixel() const { return samplesPerPixel_; }
  [[nodiscard]] std::int64_t Origin() const { return origin_; }  ///< sample at x = 0

  /// Sets the sample at the left edge.
  void MoveTo(std::int64_t origin) { origin_ = origin; }
  /// Moves the visible range right by a number of pixels, left if negative.
  void ScrollBy(double pixels);
  /// Shows `first` to `end` (exclusive) across `width` pixels, with a small margin on both sides.
  void Fit(std::int64_t first, std::int64_t end, double width);
  /// Magnifies by `factor` (above 1: closer; not above 0: not at all), keeping the sample under `x`
  /// where it is.
  void ZoomAround(double x, double factor);

  /// View coordinate of a sample; beyond the view, any value on the right side of it.
  [[nodiscard]] double ToX(std::int64_t sample) const;
  /// Sample under a view coordinate, rounded down.
  [[nodiscard]] std::int64_t ToSample(double x) const;

 private:
  std::int64_t origin_ = 0;
  double samplesPerPixel_ = 480;
};

/// What a scroller shows of the visible range.
struct ScrollState {
  double value = 0;       ///< 0 at the left end, 1 at the right
  double proportion = 1;  ///< of the knob, 1: all is visible
};

/// The scroller's state for a view of `width` pixels over content from `first` to `end`. The
/// visible range counts as content where it lies outside, so that a knob never jumps.
[[nodiscard]] ScrollState ScrollStateOf(const TimeScale& scale, double width, std::int64_t first,
                                        std::int64_t end);

/// The origin that a scroller's value asks for.
[[nodiscard]] std::int64_t OriginForScroll(const TimeScale& scale, double width, std::int64_t first,
                                           std::int64_t end, double value);

}  // namespace velmora::timeline
