#include "Report/Picture.h"

#include <algorithm>
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
constexpr int kRegionHeight = 38;

/// With at most `digits` decimals, and none that say nothing.
std::string Number(double value, int digits) {
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
  /// "12.5%"; for lengths from `first` on.
  [[nodiscard]] std::string Share(double samples) const {
    return Number(100 * samples / std::max(end - first, 1.0), 4) + '%';
  }
  [[nodiscard]] std::string Place(std::int64_t sample) const {
    return Share(static_cast<double>(sample) - first);
  }
  bool isEmpty = true;
};

bool IsShown(EventState state) {
  return state == EventState::Missing || state == EventState::Off || state == EventState::LeftOut;
}

/// Bars around the middle, `n` of them side by side in a box that is `n` wide.
void WriteWave(const Peaks& peaks, std::ostream& out) {
  constexpr int kMiddle = kRegionHeight / 2;
  constexpr float kReach = kMiddle - 2;
  if (peaks.empty()) return;
  out << "<path class=w d=\"M.5 " << kMiddle;
  for (std::size_t i = 0; i < peaks.size(); ++i) {
    const auto up = static_cast<int>(std::lround(peaks[i] * kReach));
    const std::string move = i == 0 ? "m0" : "m1";
    if (up == 0) {
      out << move << " 0";  // silence has no bar
      continue;
    }
    // Up, down twice as far, and back to the middle.
    out << move << '-' << up << 'v' << 2 * up << "m0-" << up;
  }
  out << "\"/>";
}

enum class Ramp { Up, Down };

/// The shade over what a fade takes away, from `from` to `to` across the box.
void WriteRamp(double from, double to, Ramp ramp, std::ostream& out) {
  const std::string left = Number(from, 3), right = Number(to, 3);
  out << "<path class=f d=\"M" << left << " 0";
  if (ramp == Ramp::Up) {
    out << 'V' << kRegionHeight << 'L' << right << " 0";
  } else {
    out << 'L' << right << ' ' << kRegionHeight << "V0";
  }
  out << "Z\"/>";
}

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
    out_ << "<div class=\"picture\" id=\"picture\" data-level=\"0\" tabindex=\"0\" role=\"group\" "
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
    // Under the regions: a cut that is off may lie where another one plays.
    for (std::size_t i = 0; i < states_.size(); ++i) {
      if (IsShown(states_[i])) WriteEvent(input_.record.events[i], states_[i]);
    }
    for (std::size_t i = 0; i < input_.session.Regions().size(); ++i) WriteRegion(i);
    out_ << "</svg>\n</div>\n";
  }

 private:
  void WriteTicks(std::size_t height) {
    const double limit = std::ldexp(1.0, 62);
    if (view_.isEmpty || view_.first < -limit || view_.end > limit) return;
    const host::SessionClock clock(input_.rates);
    for (const TimeTick& tick : TicksBetween(clock, static_cast<std::int64_t>(view_.first),
                                             static_cast<std::int64_t>(view_.end))) {
      const std::string x = view_.Place(tick.sample);
      out_ << "<g class=\"t z" << tick.level << "\"><line x1=\"" << x << "\" x2=\"" << x
           << "\" y1=\"16\" y2=\"" << height << "\"/><text x=\"" << x << "\" y=\"13\">"
           << Html(tick.label) << "</text></g>\n";
    }
  }

  [[nodiscard]] std::size_t TopOf(std::int64_t track) const {
    return kRulerHeight + lanes_.at(track) * kLaneHeight + kRegionTop;
  }

  void WriteEvent(const host::RecordedEvent& event, EventState state) {
    const double length = static_cast<double>(event.end) - static_cast<double>(event.position);
    const char* const look = state == EventState::Off ? "off" : "gone";
    out_ << "<rect class=\"e " << look << "\" data-e=\"" << event.event << "\" x=\""
         << view_.Place(event.position) << "\" y=\"" << TopOf(event.track) << "\" width=\""
         << view_.Share(std::max(length, 0.0)) << "\" height=\"" << kRegionHeight << "\"/>\n";
  }

  void WriteRegion(std::size_t index) {
    const host::SessionRegion& region = input_.session.Regions()[index];
    const auto length = static_cast<double>(std::max<std::int64_t>(region.Length(), 0));
    const Peaks& peaks = peaks_[index];
    const double width = peaks.empty() ? 1 : static_cast<double>(peaks.size());
    const RegionPiece piece = region.origin ? region.origin->piece : RegionPiece::Main;
    out_ << "<svg class=\"r " << NameOf(piece) << "\" data-r=\"" << index << "\" x=\""
         << view_.Place(region.position) << "\" y=\"" << TopOf(region.track) << "\" width=\""
         << view_.Share(length) << "\" height=\"" << kRegionHeight << "\" viewBox=\"0 0 " << width
         << ' ' << kRegionHeight << "\" preserveAspectRatio=\"none\"><rect width=\"" << width
         << "\" height=\"" << kRegionHeight << "\"/>";
    WriteWave(peaks, out_);
    WriteFades(index, length, width);
    out_ << "</svg>\n";
  }

  /// A rendered piece is a fade from end to end.
  void WriteFades(std::size_t index, double length, double width) {
    const host::SessionRegion& region = input_.session.Regions()[index];
    const RegionPiece piece = region.origin ? region.origin->piece : RegionPiece::Main;
    if (piece == RegionPiece::FadeIn || piece == RegionPiece::Crossfade) {
      WriteRamp(0, width, Ramp::Up, out_);
    }
    if (piece == RegionPiece::FadeOut || piece == RegionPiece::Crossfade) {
      WriteRamp(0, width, Ramp::Down, out_);
    }
    const host::AppliedShape& shape = input_.heard.Shapes()[index];
    if (length <= 0 || !shape.HasFades()) return;
    const double scale = width / length;
    if (shape.fadeIn > 0) {
      WriteRamp(0, static_cast<double>(shape.fadeIn) * scale, Ramp::Up, out_);
    }
    if (shape.fadeOut > 0) {
      WriteRamp(width - static_cast<double>(shape.fadeOut) * scale, width, Ramp::Down, out_);
    }
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
