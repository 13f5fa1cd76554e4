#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "ADL/AES31Project.h"
#include "ADL/LoadFailure.h"

namespace velmora {

// What is to be said of a project: once, so that the program and the desktop, which only phrase it,
// cannot come to different results.

/// A cut's place on the timeline, in samples at its timestamps' own rates.
struct CutTimes {
  std::int64_t destIn = 0;
  std::int64_t destOut = 0;
};
[[nodiscard]] CutTimes TimesOf(const AES31Cut& cut);

/// The stretch of the timeline that cuts cover. Of equal times the cut that was shown first stays.
/// Differences wrap at 64 bits, so that of times that no rate gives the order of the cuts decides.
struct CutSpan {
  const AES31Cut* earliest = nullptr;  ///< the cut with the lowest destIn; null without any cut
  const AES31Cut* latest = nullptr;    ///< the cut with the highest destOut; null without any cut
  std::int64_t start = 0;              ///< destIn of the earliest, in samples
  std::int64_t end = 0;                ///< destOut of the latest, in samples
  std::int32_t minTrack = std::numeric_limits<std::int32_t>::max();
  std::int32_t maxTrack = std::numeric_limits<std::int32_t>::min();

  void Include(const AES31Cut& cut) { Include(cut, TimesOf(cut)); }
  /// For a caller who has worked out the cut's times for other spans, too.
  void Include(const AES31Cut& cut, const CutTimes& times);
};

/// The span of those cuts of a project that `counts` takes, or of all cuts. It points into the
/// project's events.
[[nodiscard]] CutSpan SpanOfCuts(
    const AES31Project& project, const std::function<bool(const AES31Event& cut)>& counts =
                                     [](const AES31Event&) { return true; });

/// A source without a file. Texts are UTF-8.
struct MissingSource {
  std::int32_t index = 0;
  bool isInIndex = false;  ///< false: the source index has no such number
  std::string location;    ///< as the project has it, quotation marks included; empty for none
  std::string fileName;    ///< what follows the location's last slash; empty for none
};

/// What is known of a source whose file is missing.
[[nodiscard]] MissingSource MissingSourceAt(const AES31Project& project, std::int32_t index);

/// What a loaded project holds. It outlives the project.
struct ProjectSummary {
  std::string earliest;                ///< timestamp of the earliest cut; empty without any cut
  std::size_t cuts = 0;                ///< events that a spot places
  std::size_t otherEvents = 0;         ///< events that are listed but never placed
  std::size_t sources = 0;             ///< that the cuts name, each counted once
  std::vector<MissingSource> missing;  ///< of those, the ones without a file, by rising index
};

[[nodiscard]] ProjectSummary Summarize(const AES31Project& project);

/// How the rate of a session and that of a project compare.
struct RateComparison {
  enum class Relation {
    Same,
    /// The rates differ by less than a host can tell, which answers with a 32-bit float: the float
    /// next to a pulled rate such as 48000/1.001 Hz is a thousandth of a hertz beside it. This is
    /// no difference to show to anybody.
    AsCloseAsAHostTells,
    Different,
    Unknown,  ///< the project names no rate, or has no cut
  };
  Relation relation = Relation::Unknown;
  double projectRate = 0;  ///< Hz; 0 if the project names none
  float sessionRate = 0;   ///< Hz
  /// By how many samples the session's timebase moves everything; 0 without a cut.
  std::int64_t movedSamples = 0;
};

/// @param firstEvent  timestamp of the project's earliest cut; null or empty if there is none
/// @param sessionRate Hz, as the host answers it
/// @param frameRate   the host's frame-rate code, 0 to 7
[[nodiscard]] RateComparison CompareRates(const char* firstEvent, float sessionRate,
                                          std::int32_t frameRate);

/// What is wrong, in one line of UTF-8: "line 12: <EVENT_LIST> (Cut): Cut needs at least 8 values",
/// or the reason alone if it concerns the file as a whole.
[[nodiscard]] std::string FailureText(const LoadFailure& failure);

}  // namespace velmora
