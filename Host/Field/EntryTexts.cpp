#include "Field/EntryTexts.h"

#include <algorithm>
#include <span>

#include "Field/FieldTime.h"
#include "Field/Keyword.h"
#include "Field/NumberText.h"

namespace velmora::field {
namespace {

/// Values of one label that are looked at to tell which is which.
constexpr std::size_t kMostValues = 256;

using Values = std::span<const Value>;

Value At(Values values, std::size_t place) {
  return place < values.size() ? values[place] : Value{};
}

bool IsTime(Values values, std::size_t place) {
  return place < values.size() && LooksLikeTime(values[place].text);
}

/// A time, or the sign for one that is not given.
bool IsTimeOrNone(Values values, std::size_t place) {
  return IsTime(values, place) || (place < values.size() && !values[place].IsGiven());
}

const char* EndOf(const Value& value) {
  return value.text.data() + value.text.size() + (value.quoted ? 1 : 0);
}

const char* BeginOf(const Value& value) {
  return value.text.data() - (value.quoted ? 1 : 0);
}

/// Nothing but blanks of one line stands between two values.
bool StandTogether(const Value& first, const Value& second) {
  return std::all_of(EndOf(first), BeginOf(second), [](char c) {
    return static_cast<unsigned char>(c) <= ' ' && c != '\n' && c != '\r';
  });
}

/// Several values as one text, as it stands in the file; fewer where the line ends.
Value Join(Values values, std::size_t first, std::size_t last) {
  if (first >= values.size()) return {};
  std::size_t end = first;
  while (end < last && end + 1 < values.size() && StandTogether(values[end], values[end + 1]))
    ++end;
  if (end == first) return values[first];
  const char* const begin = BeginOf(values[first]);
  return {std::string_view(begin, static_cast<std::size_t>(EndOf(values[end]) - begin)), false};
}

/// Where the three times of a cut begin: at the fifth value, unless they evidently stand elsewhere.
std::size_t TimesOfCut(Values values) {
  constexpr std::size_t kUsual = 4;
  const auto fits = [values](std::size_t i) {
    return IsTime(values, i) && IsTime(values, i + 1) && IsTime(values, i + 2);
  };
  if (fits(kUsual)) return kUsual;
  for (std::size_t i = 1; i + 2 < values.size(); ++i) {
    if (fits(i)) return i;
  }
  return kUsual;
}

/// A name ends with a short extension: where a location of several words ends.
bool EndsLikeAFile(std::string_view text) {
  constexpr std::size_t kLongest = 5;
  const std::size_t dot = text.rfind('.');
  if (dot == std::string_view::npos || dot == 0) return false;
  const std::string_view extension = text.substr(dot + 1);
  return !extension.empty() && extension.size() <= kLongest &&
         std::all_of(extension.begin(), extension.end(), [](char c) {
           return (LowerCase(c) >= 'a' && LowerCase(c) <= 'z') || (c >= '0' && c <= '9');
         });
}

/// Where start and length of a source stand: at the third value, unless a location of several words
/// moves them. Two times tell it, then a file name's end, then one time, then the run of `_`.
std::size_t TimesOfSource(Values values) {
  constexpr std::size_t kUsual = 2;
  if (values.empty() || values[0].quoted) return kUsual;
  if (IsTime(values, 1)) return 1;
  std::size_t words = 1;  // of the first value's line
  while (words < values.size() && StandTogether(values[words - 1], values[words])) ++words;

  const auto times = [values](std::size_t i) { return IsTime(values, i) + IsTime(values, i + 1); };
  const auto fits = [values](std::size_t i) {
    return IsTimeOrNone(values, i) && IsTimeOrNone(values, i + 1);
  };
  for (std::size_t i = kUsual; i < words + 2; ++i) {
    if (times(i) == 2) return i;
  }
  for (std::size_t i = 0; i < words; ++i) {
    if (EndsLikeAFile(values[i].text)) return fits(i + 2) ? i + 2 : kUsual;
  }
  for (std::size_t i = kUsual; i < words + 2; ++i) {
    if (fits(i) && times(i) == 1) return i;
  }
  // Reference, start and length are the first run of `_`, or its last two.
  for (std::size_t i = 1; i < words; ++i) {
    if (values[i].IsGiven()) continue;
    if (fits(i + 1)) return i + 1;
    return fits(i) ? std::max(i, kUsual) : kUsual;
  }
  return kUsual;
}

Values LookedAt(const Tree& tree, const Entry& entry) {
  const Values values = tree.ValuesOf(entry);
  return values.first(std::min(values.size(), kMostValues));
}

}  // namespace

Value ValueAt(const Tree& tree, const Entry& entry, std::size_t place) {
  return At(tree.ValuesOf(entry), place);
}

CutTexts ReadCutTexts(const Tree& tree, const Entry& entry) {
  const Values values = LookedAt(tree, entry);
  const std::size_t times = TimesOfCut(values);
  CutTexts cut;
  cut.sourceType = At(values, 0);
  cut.sourceIn = At(values, times);
  cut.destinationIn = At(values, times + 1);
  cut.destinationOut = At(values, times + 2);
  cut.status = At(values, times + 3);
  if (times >= 4) {
    cut.index = times == 4 ? At(values, 1) : Join(values, 1, times - 3);
    cut.sourceChannels = At(values, times - 2);
    cut.destinationChannels = At(values, times - 1);
    return cut;
  }
  // Values are left out before the times. A number in the first place is the index.
  const bool typeMissing = ReadNumber(values[0].text).has_value();
  if (typeMissing) cut.sourceType = {};
  std::size_t next = typeMissing ? 0 : 1;
  if (next < times) cut.index = values[next++];
  if (next < times) cut.sourceChannels = cut.destinationChannels = values[next++];
  if (next < times) cut.destinationChannels = values[next];
  return cut;
}

SourceTexts ReadSourceTexts(const Tree& tree, const Entry& entry) {
  const Values values = LookedAt(tree, entry);
  const std::size_t times = TimesOfSource(values);
  SourceTexts source{.location = times <= 2 ? At(values, 0) : Join(values, 0, times - 2),
                     .reference = times == 1 ? Value{} : At(values, times - 1),
                     .start = At(values, times),
                     .length = At(values, times + 1),
                     .name = At(values, times + 2),
                     .last = At(values, times + 3)};
  if (!source.last.IsThere() || source.name.quoted || !source.name.IsGiven()) return source;
  // A name of several words, and then the last value, which is one letter or `_`.
  const std::size_t name = times + 2;
  std::size_t end = name;
  while (end + 1 < values.size() && StandTogether(values[end], values[end + 1])) ++end;
  const bool isLast = end > name && IsMark(values[end]);
  source.name = Join(values, name, isLast ? end - 1 : end);
  source.last = isLast ? values[end] : At(values, end + 1);
  return source;
}

bool IsMark(const Value& value) {
  if (value.quoted || value.text.size() != 1) return false;
  const char c = LowerCase(value.text[0]);
  return (c >= 'a' && c <= 'z') || c == '_';
}

FadeTexts ReadFadeTexts(const Tree& tree, const Entry& entry) {
  const Values values = LookedAt(tree, entry);
  FadeTexts fade;
  fade.length = At(values, 0);
  fade.shape = At(values, 1);
  std::size_t next = 2;
  for (Value& level : fade.levels) {
    const Value value = At(values, next);
    if (value.IsGiven() && !ReadDecibels(value.text)) break;
    level = value;
    ++next;
  }
  fade.renderedType = At(values, next);
  fade.renderedIndex = At(values, next + 1);
  fade.renderedIn = At(values, next + 2);
  return fade;
}

GainTexts ReadGainTexts(const Tree& tree, const Entry& entry) {
  const Values values = LookedAt(tree, entry);
  if (values.size() == 1) return {{}, values[0]};
  return {At(values, 0), At(values, 1)};
}

Value ReadLineText(const Tree& tree, const Entry& entry, std::size_t first) {
  const Values values = tree.ValuesOf(entry);
  if (first >= values.size() || values[first].quoted) return At(values, first);
  return Join(values, first, values.size() - 1);
}

Value ReadNameText(const Tree& tree, const Entry& entry) {
  const Value keyword = ValueAt(tree, entry, 0);
  if (!keyword.IsThere() || keyword.quoted || !IsKeyword(keyword.text, "NAME")) return {};
  return ReadLineText(tree, entry, 1);
}

}  // namespace velmora::field
