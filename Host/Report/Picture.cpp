#include "Report/Picture.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <map>
#include <ostream>
#include <set>
#include <string>

#include "Report/Markup.h"
#include "Report/TimeTicks.h"

namespace velmora::report {
namespace {

// In pixels.
constexpr int kRulerHeight = 24;
constexpr int kLaneHeight = 46;
constexpr int kRegionTop = 4;
constexpr int kRegionHeight = 38;  // as Page.css gives it to them

/// The picture's width in units of its own, whatever it is shown at.
constexpr double kWidth = 1'000'000;

/// With at most `digits` decimals, and none that say nothing.
std::string Number(double value, int digits = 0) {
  std::array<char, 64> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value,
                                 std::chars_format::fixed, digits);
  std::string number(text.data(), end.ptr);
  if (number.find('.') == std::string::npos) return number;
  number.erase(number.find_last_not_of('0') + 1);
  if (number.back() == '.') number.pop_back();
  return number;
}

/// What is shown of the timeline, in samples. In floating point: positions come from projects and
/// may be anything.
struct View {
  double first = 0;
  double end = 1;

  void Include(std::int64_t from, std::int64_t to) {
    first = isEmpty ? static_cast<double>(from) : std::min(first, static_cast<double>(from));
    end = isEmpty ? static_cast<double>(to) : std::max(end, static_cast<double>(to));
    isEmpty = false;
  }
  /// A length in the picture's units.
  [[nodiscard]] double Units(double samples) const {
    return kWidth * samples / std::max(end - first, 1.0);
  }
  [[nodiscard]] double Place(std::int64_t sample) const {
    return Units(static_cast<double>(sample) - first);
  }
  bool isEmpty = true;
};

bool IsShown(EventState state) {
  return state == EventState::Missing || state == EventState::Off || state == EventState::LeftOut;
}

/// Bars around the middle of a box, each one unit wide.
void WriteWave(const Peaks& peaks, std::ostream& out) {
  constexpr int kMiddle = kRegionHeight / 2;
  constexpr float kReach = kMiddle - 2;
  int place = kMiddle;  // of the pen, from the top
  out << "M-.5 " << place;
  for (const float peak : peaks) {
    const auto up = static_cast<int>(std::lround(peak * kReach));
    if (up == 0) {  // silence has no bar
      out << "m1 0";
      continue;
    }
    const int move = kMiddle - up - place;
    out << "m1" << (move < 0 ? "" : " ") << move << 'v' << 2 * up;
    place = kMiddle + up;
  }
}

enum class Ramp { Up, Down };

class PictureWriter {
 public:
  PictureWriter(const host::TargetInput& input, const std::vector<EventState>& states,
                const std::vector<Peaks>& peaks, std::ostream& out)
      : input_(input), states_(states), peaks_(peaks), out_(out) {
    std::set<std::int64_t> tracks;
    for (const host::SessionRegion& region : input.session.Regions()) {
      tracks.insert(region.track);
      view_.Include(region.position, std::max(region.End(), region.position));
    }
    for (std::size_t i = 0; i < states.size(); ++i) {
      const host::RecordedEvent& event = input.record.events[i];
      if (!IsShown(states[i])) continue;
      tracks.insert(event.track);
      view_.Include(event.position, std::max(event.end, event.position));
    }
    for (const std::int64_t track : tracks) lanes_.emplace(track, lanes_.size());
  }

  void Write() {
    out_ << "<div class=\"picture\" id=\"picture\" data-ticks=\"2\" tabindex=\"0\" role=\"group\" "
            "aria-label=\"Timeline\" aria-describedby=\"picture-text\">\n<div class=\"names\" "
            "aria-hidden=\"true\">";
    for (const auto& [track, lane] : lanes_) {
      out_ << "<div>Track " << input_.record.TrackNumber(track) << "</div>";
    }
    const std::size_t height = kRulerHeight + lanes_.size() * kLaneHeight;
    out_ << "</div>\n<svg class=\"lanes\" id=\"lanes\" width=\"100%\" height=\"" << height
         << "\" aria-hidden=\"true\">\n";
    WriteTicks(height);
    for (const auto& [track, lane] : lanes_) {
      const std::size_t line = kRulerHeight + lane * kLaneHeight;
      out_ << "<line class=\"l\" x2=\"100%\" y1=\"" << line << "\" y2=\"" << line << "\"/>\n";
    }
    // Without an aspect ratio: it is stretched, and lines and texts are not in it.
    out_ << "<svg width=\"100%\" height=\"" << height << "\" viewBox=\"0 0 " << Number(kWidth)
         << ' ' << height << "\" preserveAspectRatio=\"none\">\n";
    // Under the regions: a cut that is off may lie where another one plays.
    for (std::size_t i = 0; i < states_.size(); ++i) {
      if (IsShown(states_[i])) WriteEvent(input_.record.events[i], states_[i]);
    }
    for (std::size_t i = 0; i < input_.session.Regions().size(); ++i) WriteRegion(i);
    out_ << "</svg>\n</svg>\n</div>\n";
  }

 private:
  void WriteTicks(std::size_t height) {
    const double limit = std::ldexp(1.0, 62);
    if (view_.isEmpty || view_.first < -limit || view_.end > limit) return;
    const host::SessionClock clock(input_.rates);
    for (const TimeTick& tick : TicksBetween(clock, static_cast<std::int64_t>(view_.first),
                                             static_cast<std::int64_t>(view_.end))) {
      const std::string x = Number(100 * view_.Place(tick.sample) / kWidth, 4) + '%';
      out_ << "<g class=\"t z" << tick.level << "\"><line x1=\"" << x << "\" x2=\"" << x
           << "\" y1=\"16\" y2=\"" << height << "\"/><text x=\"" << x << "\" y=\"13\">"
           << Html(tick.label) << "</text></g>\n";
    }
  }

  [[nodiscard]] std::size_t TopOf(std::int64_t track) const {
    return kRulerHeight + lanes_.at(track) * kLaneHeight + kRegionTop;
  }

  void WriteBox(std::int64_t track, std::int64_t position, double length) {
    out_ << " x=" << Number(view_.Place(position)) << " y=" << TopOf(track)
         << " width=" << Number(std::max(view_.Units(length), 1.0)) << " />";
  }

  void WriteEvent(const host::RecordedEvent& event, EventState state) {
    const double length = static_cast<double>(event.end) - static_cast<double>(event.position);
    out_ << "<rect class=\"e " << (state == EventState::Off ? "off" : "gone")
         << "\" data-e=" << event.event;
    WriteBox(event.track, event.position, std::max(length, 0.0));
    out_ << '\n';
  }

  void WriteRegion(std::size_t index) {
    const host::SessionRegion& region = input_.session.Regions()[index];
    const auto length = static_cast<double>(std::max<std::int64_t>(region.Length(), 0));
    const RegionPiece piece = region.origin ? region.origin->piece : RegionPiece::Main;
    out_ << "<rect class=\"r";
    if (piece != RegionPiece::Main) out_ << ' ' << NameOf(piece);
    out_ << "\" data-r=" << index;
    WriteBox(region.track, region.position, length);
    const double left = view_.Place(region.position), width = view_.Units(length);
    const std::size_t top = TopOf(region.track);
    const Peaks& peaks = peaks_[index];
    if (!peaks.empty()) {
      out_ << "<path transform=\"matrix(" << Number(width / static_cast<double>(peaks.size()), 2)
           << " 0 0 1 " << Number(left) << ' ' << top << ")\" d=\"";
      WriteWave(peaks, out_);
      out_ << "\"/>";
    }
    WriteFades(index, length);
    out_ << '\n';
  }

  /// A rendered piece is a fade from end to end.
  void WriteFades(std::size_t index, double length) {
    const host::SessionRegion& region = input_.session.Regions()[index];
    const RegionPiece piece = region.origin ? region.origin->piece : RegionPiece::Main;
    if (piece == RegionPiece::FadeIn || piece == RegionPiece::Crossfade) {
      WriteRamp(region, 0, length, Ramp::Up);
    }
    if (piece == RegionPiece::FadeOut || piece == RegionPiece::Crossfade) {
      WriteRamp(region, 0, length, Ramp::Down);
    }
    const host::AppliedShape& shape = input_.heard.Shapes()[index];
    const auto fadeIn = static_cast<double>(shape.fadeIn);
    const auto fadeOut = static_cast<double>(shape.fadeOut);
    if (fadeIn > 0) WriteRamp(region, 0, fadeIn, Ramp::Up);
    if (fadeOut > 0) WriteRamp(region, length - fadeOut, length, Ramp::Down);
  }

  /// The shade over what a fade takes away, between two samples of a region.
  void WriteRamp(const host::SessionRegion& region, double from, double to, Ramp ramp) {
    const double start = view_.Place(region.position);
    const std::string left = Number(start + view_.Units(from));
    const std::string width = Number(std::max(view_.Units(to - from), 0.0));
    out_ << "<path class=f d=\"M" << left << ' ' << TopOf(region.track);
    if (ramp == Ramp::Up) {
      out_ << 'v' << kRegionHeight << 'l' << width << '-' << kRegionHeight;
    } else {
      out_ << 'l' << width << ' ' << kRegionHeight << "v-" << kRegionHeight;
    }
    out_ << "z\"/>";
  }

  const host::TargetInput& input_;
  const std::vector<EventState>& states_;
  const std::vector<Peaks>& peaks_;
  std::ostream& out_;
  View view_;
  std::map<std::int64_t, std::size_t> lanes_;  ///< by track, from the top
};

}  // namespace

void WritePicture(const host::TargetInput& input, const std::vector<EventState>& states,
                  const std::vector<Peaks>& peaks, std::ostream& out) {
  PictureWriter(input, states, peaks, out).Write();
}

}  // namespace velmora::report
