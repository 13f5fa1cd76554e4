#include "Report/Picture.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <map>
#include <ostream>
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

/// Appends the outline of a waveform from `left` on, mirrored at the middle of its row.
void AppendWave(const Peaks& peaks, double left, double width, std::string& path) {
  constexpr int kMiddle = kRegionHeight / 2;
  constexpr float kReach = kMiddle - 2;
  struct Stretch {
    std::int64_t units;
    int reach;
  };
  std::vector<Stretch> stretches;  // neighbours of one height are one
  std::int64_t edge = std::llround(left);
  path += 'M' + std::to_string(edge) + ' ' + std::to_string(kMiddle);
  for (std::size_t i = 0; i < peaks.size(); ++i) {
    const double share = static_cast<double>(i + 1) / static_cast<double>(peaks.size());
    const std::int64_t next = std::llround(left + width * share);
    const auto reach = static_cast<int>(std::lround(peaks[i] * kReach));
    if (stretches.empty() || stretches.back().reach != reach) stretches.push_back({0, reach});
    stretches.back().units += next - edge;
    edge = next;
  }
  int reach = 0;
  for (const Stretch& stretch : stretches) {
    if (stretch.reach != reach) path += 'v' + std::to_string(reach - stretch.reach);
    path += 'h' + std::to_string(stretch.units);
    reach = stretch.reach;
  }
  if (stretches.size() == 1 && reach == 0) return;  // silence is a line
  reach = -reach;
  for (auto stretch = stretches.rbegin(); stretch != stretches.rend(); ++stretch) {
    if (stretch->reach != reach) path += 'v' + std::to_string(stretch->reach - reach);
    path += 'h' + std::to_string(-stretch->units);
    reach = stretch->reach;
  }
  path += 'z';
}

enum class Ramp { Up, Down };

/// A row of the picture.
struct Lane {
  std::int64_t track = 0;
  std::size_t place = 0;             ///< from the top
  std::vector<std::size_t> events;   ///< places in SpotRecord::events, of cuts that are not there
  std::vector<std::size_t> regions;  ///< in order of arrival
};

/// Waveforms and fades of regions that do not overlap: one element each, however many they are.
struct Drawing {
  std::string waves;
  std::string fades;
  double begin =
      std::numeric_limits<double>::infinity();  ///< of the regions, in the picture's units
  double end = -std::numeric_limits<double>::infinity();
};

class PictureWriter {
 public:
  PictureWriter(const host::TargetInput& input, const std::vector<EventState>& states,
                const std::vector<Peaks>& peaks, std::ostream& out)
      : input_(input), states_(states), peaks_(peaks), out_(out) {
    const std::vector<host::SessionRegion>& regions = input.session.Regions();
    std::map<std::int64_t, Lane> lanes;
    for (std::size_t i = 0; i < regions.size(); ++i) {
      lanes[regions[i].track].regions.push_back(i);
      view_.Include(regions[i].position, std::max(regions[i].End(), regions[i].position));
    }
    for (std::size_t i = 0; i < states.size(); ++i) {
      const host::RecordedEvent& event = input.record.events[i];
      if (!IsShown(states[i])) continue;
      lanes[event.track].events.push_back(i);
      view_.Include(event.position, std::max(event.end, event.position));
    }
    for (auto& [track, lane] : lanes) {
      lane.track = track;
      lane.place = lanes_.size();
      lanes_.push_back(std::move(lane));
    }
  }

  void Write() {
    out_ << "<div class=\"picture\" id=\"picture\" data-ticks=\"2\" tabindex=\"0\" role=\"group\" "
            "aria-label=\"Timeline\" aria-describedby=\"picture-text\">\n<div class=\"names\" "
            "aria-hidden=\"true\">";
    for (const Lane& lane : lanes_) {
      out_ << "<div>Track " << input_.record.TrackNumber(lane.track) << "</div>";
    }
    const std::size_t height = kRulerHeight + lanes_.size() * kLaneHeight;
    out_ << "</div>\n<svg class=\"lanes\" id=\"lanes\" width=\"100%\" height=\"" << height
         << "\">\n";
    WriteTicks(height);
    for (const Lane& lane : lanes_) {
      const std::size_t line = TopOf(lane);
      out_ << "<line class=\"l\" x2=\"100%\" y1=\"" << line << "\" y2=\"" << line << "\"/>\n";
    }
    // Without an aspect ratio: it is stretched, and lines and texts are not in it.
    out_ << "<svg width=\"100%\" height=\"" << height << "\" viewBox=\"0 0 " << Number(kWidth)
         << ' ' << height << "\" preserveAspectRatio=\"none\">\n";
    for (const Lane& lane : lanes_) WriteLane(lane);
    out_ << "</svg>\n</svg>\n</div>\n";
  }

 private:
  void WriteTicks(std::size_t height) {
    const double limit = std::ldexp(1.0, 62);
    if (view_.isEmpty || view_.first < -limit || view_.end > limit) return;
    const host::SessionClock clock(input_.rates);
    out_ << "<g aria-hidden=\"true\">\n";
    for (const TimeTick& tick : TicksBetween(clock, static_cast<std::int64_t>(view_.first),
                                             static_cast<std::int64_t>(view_.end))) {
      const std::string x = Number(100 * view_.Place(tick.sample) / kWidth, 4) + '%';
      out_ << "<g class=\"t z" << tick.level << "\"><line x1=\"" << x << "\" x2=\"" << x
           << "\" y1=\"16\" y2=\"" << height << "\"/><text x=\"" << x << "\" y=\"13\">"
           << Html(tick.label) << "</text></g>\n";
    }
    out_ << "</g>\n";
  }

  [[nodiscard]] static std::size_t TopOf(const Lane& lane) {
    return kRulerHeight + lane.place * kLaneHeight;
  }

  void WriteLane(const Lane& lane) {
    out_ << "<g class=\"lane\" transform=\"translate(0 " << TopOf(lane) + kRegionTop << ")\">";
    // Under the regions: a cut that is off may lie where another one plays.
    for (const std::size_t event : lane.events) {
      WriteEvent(input_.record.events[event], states_[event]);
    }
    for (const std::size_t region : lane.regions) WriteRegion(region);
    FlushDrawing();
    out_ << "</g>\n";
  }

  void WriteBox(std::int64_t position, double length) {
    out_ << " x=" << Number(view_.Place(position))
         << " width=" << Number(std::max(view_.Units(length), 1.0)) << " />";
  }

  void WriteEvent(const host::RecordedEvent& event, EventState state) {
    const double length = static_cast<double>(event.end) - static_cast<double>(event.position);
    out_ << "<rect class=" << (state == EventState::Off ? "off" : "gone") << " id=e" << event.event;
    WriteBox(event.position, std::max(length, 0.0));
  }

  void WriteRegion(std::size_t index) {
    const host::SessionRegion& region = input_.session.Regions()[index];
    const auto length = static_cast<double>(std::max<std::int64_t>(region.Length(), 0));
    const RegionPiece piece = region.origin ? region.origin->piece : RegionPiece::Main;
    const double left = view_.Place(region.position), width = view_.Units(length);
    // What lies under this region must be drawn before it.
    if (left < drawing_.end && left + width > drawing_.begin) FlushDrawing();
    out_ << "<rect";
    if (piece != RegionPiece::Main) out_ << " class=" << NameOf(piece);
    out_ << " id=r" << index;
    WriteBox(region.position, length);
    const Peaks& peaks = peaks_[index];
    if (!peaks.empty()) AppendWave(peaks, left, width, drawing_.waves);
    AppendFades(index, left, length);
    drawing_.begin = std::min(drawing_.begin, left);
    drawing_.end = std::max(drawing_.end, left + width);
  }

  void FlushDrawing() {
    if (!drawing_.waves.empty()) out_ << "<path d=\"" << drawing_.waves << "\"/>";
    if (!drawing_.fades.empty()) out_ << "<path class=f d=\"" << drawing_.fades << "\"/>";
    drawing_ = {};
  }

  /// A rendered piece is a fade from end to end.
  void AppendFades(std::size_t index, double left, double length) {
    const host::SessionRegion& region = input_.session.Regions()[index];
    const RegionPiece piece = region.origin ? region.origin->piece : RegionPiece::Main;
    const host::AppliedShape& shape = input_.heard.Shapes()[index];
    const bool rises = piece == RegionPiece::FadeIn || piece == RegionPiece::Crossfade;
    const bool falls = piece == RegionPiece::FadeOut || piece == RegionPiece::Crossfade;
    const double fadeIn = rises ? length : static_cast<double>(shape.fadeIn);
    const double fadeOut = falls ? length : static_cast<double>(shape.fadeOut);
    if (fadeIn > 0) AppendRamp(left, view_.Units(fadeIn), Ramp::Up);
    if (fadeOut > 0)
      AppendRamp(left + view_.Units(length - fadeOut), view_.Units(fadeOut), Ramp::Down);
  }

  /// The shade over what a fade takes away.
  void AppendRamp(double left, double width, Ramp ramp) {
    const std::string height = std::to_string(kRegionHeight), across = Number(width);
    drawing_.fades += 'M' + Number(left) + " 0";
    drawing_.fades += ramp == Ramp::Up ? 'v' + height + 'l' + across + '-' + height
                                       : 'l' + across + ' ' + height + "v-" + height;
    drawing_.fades += 'z';
  }

  const host::TargetInput& input_;
  const std::vector<EventState>& states_;
  const std::vector<Peaks>& peaks_;
  std::ostream& out_;
  View view_;
  std::vector<Lane> lanes_;
  Drawing drawing_;  ///< of the regions that were written last
};

}  // namespace

bool HasPicture(const std::vector<EventState>& states, const host::Session& session) {
  return !session.Regions().empty() || std::any_of(states.begin(), states.end(), IsShown);
}

void WritePicture(const host::TargetInput& input, const std::vector<EventState>& states,
                  const std::vector<Peaks>& peaks, std::ostream& out) {
  PictureWriter(input, states, peaks, out).Write();
}

}  // namespace velmora::report
