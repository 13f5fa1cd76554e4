#include "Timecode/TimecodeEntry.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <limits>

#include "Base/Wrapping.h"

namespace velmora {
namespace {

constexpr std::int32_t kSignedHoursLimit = 12;
constexpr auto kDigitPositions = std::to_array<std::size_t>({1, 2, 4, 5, 7, 8, 10, 11});

const char* ClearedText(bool isSigned) {
  return isSigned ? "+00:00:00:00" : " 00:00:00:00";
}

/// One number of the form that scanf's %d reads; false leaves `at` and `number` as they are.
/// Numbers beyond 32 bits count as the nearest.
bool ScanNumber(const char*& at, std::int32_t& number) {
  char* end = nullptr;
  const long value = std::strtol(at, &end, 10);
  if (end == at) return false;
  number = static_cast<std::int32_t>(std::clamp<long>(
      value, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()));
  at = end;
  return true;
}

/// Numbers between colons, as far as the text goes; the others stay.
void ScanFields(const char* at, std::array<std::int32_t, 4>& fields) {
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (i > 0 && *at++ != ':') return;
    if (!ScanNumber(at, fields[i])) return;
  }
}

}  // namespace

std::string TimecodeValue::ComposeString() const {
  const char signCharacter = !sign ? ' ' : sgn < 0 ? '-' : '+';
  const long long shownHours = sign ? std::llabs(hours) : hours;
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%c%02lld:%02d:%02d:%02d", signCharacter, shownHours,
                mins, secs, frames);
  return text.data();
}

void TimecodeValue::DigestString(const char* text) {
  if (text == nullptr) text = "";
  char signCharacter = ' ';
  if (sign && *text != '\0') signCharacter = *text++;
  std::array<std::int32_t, 4> fields{};
  ScanFields(text, fields);
  auto& [newHours, newMins, newSecs, newFrames] = fields;

  if (sign && newHours >= kSignedHoursLimit) {
    fields = {kSignedHoursLimit, 0, 0, 0};
  } else {
    newSecs = std::clamp(newSecs, 0, 59);
    newMins = std::clamp(newMins, 0, 59);
    newHours = std::clamp(newHours, 0, 23);
    newFrames = std::max(newFrames, 0);
  }
  if (newFrames >= max_frames) newFrames = WrapSubtract(max_frames, 1);
  if (sign) sgn = signCharacter == '-' ? -1 : 1;

  hours = newHours;
  mins = newMins;
  secs = newSecs;
  frames = newFrames;
}

EntryResult TimeDataOperation(const std::string& text, char key, const TimecodeValue& committed) {
  constexpr char kEnter = 3;
  constexpr char kBackspace = 8;
  constexpr char kReturn = 13;
  constexpr char kEscape = 27;
  constexpr char kDelete = 127;

  std::string edited = text;
  const std::string cleared = ClearedText(committed.sign);
  if (edited.size() < cleared.size()) edited += cleared.substr(edited.size());

  switch (key) {
    case kEnter:
    case kReturn:
      return {text, true};
    case kBackspace:
    case kDelete:
      return {cleared, false};
    case kEscape:
      return {committed.ComposeString(), true};
    case '+':
    case '-':
      if (!committed.sign) return {text, false};
      edited[0] = key;
      return {edited, false};
    default:
      break;
  }
  if (key < '0' || key > '9') return {text, false};
  for (std::size_t i = 0; i + 1 < kDigitPositions.size(); ++i) {
    edited[kDigitPositions[i]] = edited[kDigitPositions[i + 1]];
  }
  edited[kDigitPositions.back()] = key;
  return {edited, false};
}

}  // namespace velmora
