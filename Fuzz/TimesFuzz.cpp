// Timestamps, typed timecode and the keys of an entry field. An input is lines: two timestamps, a
// typed timecode, and keys.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "Differential/SlowTimes.h"
#include "Spot/SpotChoices.h"
#include "Spot/SpotOptions.h"
#include "Spot/SpotRequest.h"
#include "Support/Holds.h"
#include "Support/Input.h"
#include "Timecode/AdlTime.h"
#include "Timecode/TimecodeEntry.h"

namespace velmora::fuzz {
namespace {

namespace slow = test::differential;

void HoldStamps(const std::string& first, const std::string& second) {
  // Memory that ends with the text, so that a look past its end is seen.
  const char* const a = first.c_str();
  const char* const b = second.c_str();
  Hold(AdlToSamples(a) == slow::SlowSamples(a), "a timestamp's samples");
  Hold(AdlDifference(a, b) == slow::SlowDifference(a, b), "samples between timestamps");
  Hold(AdlIsTimestamp(a) == slow::IsSlowTimestamp(a), "the form of a fade's length");
  Hold(TimestampTimecode(a) == slow::SlowTimecode(a), "what is shown of a timestamp");
  Hold(TimestampTimecode(a) == TimestampTimecodeView(a), "the same without a copy");
  (void)AdlSampleRate(a);
}

void Place(const std::string& first, const std::string& typed, std::uint8_t choice) {
  SpotChoices choices;
  choices.positionMode = choice % 5;
  choices.offset = choices.start = typed;
  const float rate = (choice & 8) != 0 ? 44100.0F : 48000.0F;
  SpotOptions options = BuildSpotOptions(choices, {rate, choice >> 5});
  ComputePosition(options, first.c_str());
  (void)Compensation(options, first.c_str());
  (void)SpotWarnings(first.c_str(), rate, choice >> 5);
}

void HoldEntry(const std::string& typed, std::string_view keys, std::uint8_t choice) {
  TimecodeValue value;
  value.sign = (choice & 1) != 0;
  value.max_frames = (choice & 2) != 0 ? 25 : 30;
  value.DigestString(typed.c_str());
  std::string text = value.ComposeString();
  Hold(text.size() == 12, "a field has twelve characters", text);
  for (const char key : keys) {
    text = TimeDataOperation(text, key, value).text;
    Hold(text.size() == 12, "a field keeps its twelve characters", text);
    if (key == '\r') value.DigestString(text.c_str());
  }
  value.DigestString(text.c_str());
  text = value.ComposeString();
  value.DigestString(text.c_str());
  Hold(value.ComposeString() == text, "what was limited stays as it is", text);
  (void)TimeDataOperation(typed, keys.empty() ? '\0' : keys[0], value);
}

}  // namespace
}  // namespace velmora::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace velmora;
  using namespace velmora::fuzz;
  Input input(bytes, size);
  const std::uint8_t choice = input.Byte();
  const std::string first(input.Line());
  const std::string second(input.Line());
  const std::string typed(input.Line());
  HoldStamps(first, second);
  HoldStamps(second, first);
  for (std::int32_t code = -1; code <= 8; ++code) {
    for (const std::int32_t rate : {44100, 48000, 96000, 0}) {
      (void)TimecodeToSamples(typed.c_str(), code, rate);
      (void)TimecodeToSamples(first.c_str(), code, rate);
    }
  }
  Place(first, typed, choice);
  HoldEntry(typed, input.Rest(), choice);
  return 0;
}
