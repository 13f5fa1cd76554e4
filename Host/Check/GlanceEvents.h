#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>

#include "Check/Glance.h"
#include "Check/GlanceSources.h"
#include "Check/PlainText.h"
#include "Check/PlainTimes.h"
#include "Field/ChannelRun.h"
#include "Field/FieldTime.h"
#include "Timecode/AdlTime.h"

namespace velmora::check {

/// The events of a plain project, judged one by one.
class GlanceEvents {
 public:
  explicit GlanceEvents(GlanceSources& sources) : sources_(sources) {}

  /// Takes a line of the EVENT_LIST. False for what is not plain.
  [[nodiscard]] bool Take(const PlainLine& line);
  /// What all events tell together; after the last line.
  void Close(const field::TimeContext& times, const CheckOptions& options, GlanceResult& result);

 private:
  /// The event whose lines are being read.
  struct Event {
    std::int32_t number = 0;
    bool hasEdit = false;
    bool isLive = false;       ///< a cut that is on
    bool isLevelRight = true;  ///< the system takes the level of the (Gain) as it is meant
    bool isSilent = false;     ///< it takes that for 0 dB
    field::ChannelRun tracks;
    std::int64_t length = 0;
    // Not given: there is no such line.
    std::optional<std::int64_t> fadeIn;
    std::optional<std::int64_t> fadeOut;
    bool hasGain = false;
    std::optional<field::ChannelRun> gainChannels;  ///< none: all of them
  };
  [[nodiscard]] bool TakeEntry(const PlainLine& line);
  [[nodiscard]] bool TakeCut(const PlainLine& line);
  [[nodiscard]] bool TakeFade(const PlainLine& line, std::optional<std::int64_t>& fade);
  [[nodiscard]] bool TakeGain(const PlainLine& line);
  [[nodiscard]] std::optional<std::int64_t> Samples(const field::Value& value);
  void NoteFirst(const PlainTime& time);
  void NoteEarliest(std::int64_t position, std::string_view stamp);
  void JudgeStatus(char status);
  void JudgeEvent();

  GlanceSources& sources_;
  Glance found_;
  std::size_t entries_ = 0;
  bool numbersRise_ = true;
  Event event_;
  PlainTimes times_;
  std::optional<field::TimeRates>
      first_;  ///< of the first cut in the text; its rate is the project's
  struct Earliest {
    std::int64_t position = 0;
    std::int32_t number = 0;
    std::array<char, kTimestampLength> stamp{};
  };
  std::optional<Earliest> earliest_;
  std::int64_t lowestTrack_ = std::numeric_limits<std::int32_t>::max();
  std::int64_t highestLiveTrack_ = std::numeric_limits<std::int32_t>::min();
};

}  // namespace velmora::check
