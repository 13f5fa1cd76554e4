#include "Program/OptionForms.h"

#include <cstddef>
#include <utility>

#include "Program/BoxChoice.h"
#include "Session/SessionClock.h"
#include "Timecode/RateTables.h"
#include "Timecode/TimecodeEntry.h"

namespace velmora::program {
namespace {

/// Puts a typed timecode through the entry field's own limits. Empty if it has another form.
std::string EnteredTimecode(const std::string& typed, bool isSigned) {
  std::string text = typed;
  const bool hasSign = !text.empty() && (text[0] == '+' || text[0] == '-');
  if (hasSign && !isSigned) return {};
  if (isSigned && !hasSign) text.insert(0, "+");
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  std::size_t colons = 0;
  for (std::size_t i = isSigned ? 1 : 0; i < text.size(); ++i) {
    const bool colon = text[i] == ':';
    const bool betweenDigits =
        i > 0 && i + 1 < text.size() && isDigit(text[i - 1]) && isDigit(text[i + 1]);
    if (colon ? !betweenDigits : !isDigit(text[i])) return {};
    colons += colon ? 1 : 0;
  }
  if (colons != 3) return {};
  TimecodeValue value;
  value.sign = isSigned;
  value.DigestString(text.c_str());
  return value.ComposeString();
}

}  // namespace

std::optional<std::int32_t> FrameRateCodeOf(const std::string& text) {
  for (std::size_t code = 0; code < kFrameRateCodes.size(); ++code) {
    const bool named = code > 0 && text == kFrameRateCodes[code].name;
    if (named || text == std::to_string(code)) return static_cast<std::int32_t>(code);
  }
  return std::nullopt;
}

CLI::Validator OneOf(std::vector<std::string> words) {
  return CLI::Validator(
      [words = std::move(words)](std::string& text) -> std::string {
        std::string list;
        for (const std::string& word : words) {
          if (text == word) return {};
          list += (list.empty() ? "" : ", ") + word;
        }
        return "'" + text + "' is none of: " + list;
      },
      "");
}

CLI::Validator TimecodeForm(bool isSigned) {
  const std::string form = isSigned ? "[+-]HH:MM:SS:FF" : "HH:MM:SS:FF";
  return CLI::Validator(
      [isSigned, form](std::string& text) -> std::string {
        const std::string entered = EnteredTimecode(text, isSigned);
        if (entered.empty()) return "'" + text + "' is no timecode of the form " + form;
        text = entered;
        return {};
      },
      "");
}

CLI::Validator NumberListForm() {
  return CLI::Validator(
      [](std::string& text) -> std::string {
        if (NumberSet::Parse(text)) return {};
        return "'" + text + "' is no list of numbers and rising ranges such as 1,3-5";
      },
      "");
}

CLI::Validator FrameRateForm() {
  return CLI::Validator(
      [](std::string& text) -> std::string {
        if (FrameRateCodeOf(text)) return {};
        return "'" + text +
               "' is no frame rate; take a code from 0 to 7, or 24, 25, 29.97, 29.97df, 30, 30df "
               "or 23.976";
      },
      "");
}

CLI::Validator SampleRateForm() {
  constexpr double kLowest = host::SessionClock::kLowestRate;
  constexpr double kHighest = host::SessionClock::kHighestRate;
  static_assert(kLowest == 1 && kHighest == 10'000'000, "as the complaint and help tell");
  return CLI::Validator(
      [](std::string& text) -> std::string {
        double rate = 0;
        const bool good =
            CLI::detail::lexical_cast(text, rate) && rate >= kLowest && rate <= kHighest;
        return good ? "" : "'" + text + "' is no sample rate from 1 to 10000000 Hz";
      },
      "");
}

CLI::Validator JobsForm() {
  constexpr int kMostJobs = 1024;
  return CLI::Validator(
      [](std::string& text) -> std::string {
        int jobs = 0;
        const bool good = CLI::detail::lexical_cast(text, jobs) && jobs >= 1 && jobs <= kMostJobs;
        return good ? "" : "'" + text + "' is no number from 1 to " + std::to_string(kMostJobs);
      },
      "");
}

}  // namespace velmora::program
