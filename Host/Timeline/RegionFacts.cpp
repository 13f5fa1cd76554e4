#include "Timeline/RegionFacts.h"

#include <cmath>
#include <cstdint>
#include <cstdio>

#include "Base/FileNames.h"
#include "Timeline/TimelineModel.h"

namespace velmora::timeline {
namespace {

const char* Describe(PieceKind kind) {
  switch (kind) {
    case PieceKind::FadeIn:
      return "fade in";
    case PieceKind::Crossfade:
      return "crossfade";
    case PieceKind::FadeOut:
      return "fade out";
    case PieceKind::Region:
      break;
  }
  return "region";
}

/// UTF-8 en dash and middle dot between the parts of a line.
constexpr const char* kTo = " \u2013 ";
constexpr const char* kDot = "   \u00b7   ";

}  // namespace

std::string DurationText(std::int64_t samples, float sampleRate) {
  const double seconds = static_cast<double>(samples) / static_cast<double>(sampleRate);
  char text[64];
  const double magnitude = seconds < 0 ? -seconds : seconds;
  // From here on a rounded number of milliseconds would read as a full minute.
  if (magnitude < 59.9995) {
    std::snprintf(text, sizeof text, "%.3f s", seconds);
    return text;
  }
  const std::int64_t milliseconds = std::llround(magnitude * 1000);
  const std::int64_t minutes = milliseconds / 60000;
  const double rest = static_cast<double>(milliseconds % 60000) / 1000;
  const char* sign = seconds < 0 ? "-" : "";
  if (minutes < 60) {
    std::snprintf(text, sizeof text, "%s%d min %06.3f s", sign, static_cast<int>(minutes), rest);
  } else {
    std::snprintf(text, sizeof text, "%s%lld h %02d min %06.3f s", sign,
                  static_cast<long long>(minutes / 60), static_cast<int>(minutes % 60), rest);
  }
  return text;
}

RegionFacts FactsOf(const host::SessionRegion& region, const host::SessionClock& clock) {
  RegionFacts facts;
  facts.title = region.name + kDot + Describe(KindOfRegion(region)) + " on track " +
                std::to_string(region.track + 1);
  facts.details = clock.Timecode(region.position) + kTo + clock.Timecode(region.End()) + " (" +
                  DurationText(region.Length(), clock.SampleRate()) + ", " +
                  std::to_string(region.Length()) + " samples from " +
                  std::to_string(region.position) + ")" + kDot + FileNameOf(region.path) + " [" +
                  std::to_string(region.start) + kTo + std::to_string(region.stop) + "]";
  return facts;
}

}  // namespace velmora::timeline
