// Texts in another encoding than the Shift-JIS in which the system reads them.

#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_map>

#include "ADL/ShiftJis.h"
#include "Check/Judges.h"

namespace velmora::check {
namespace {

bool HasBytesBeyondAscii(std::string_view text) {
  return std::any_of(text.begin(), text.end(),
                     [](char c) { return static_cast<signed char>(c) < 0; });
}

/// Locations by the line that they stand on, with the source.
std::unordered_map<field::EntryPlace, std::size_t> LocationLines(const Case& c) {
  std::unordered_map<field::EntryPlace, std::size_t> lines;
  for (std::size_t i = 0; i < c.project.sources.size(); ++i) {
    if (c.project.sources[i].fPlace) lines[*c.project.sources[i].fPlace] = i;
  }
  return lines;
}

/// A location that the system finds its file by all the same is only shown otherwise.
Severity OfLocation(const Case& c, std::size_t source) {
  const media::Located& located = c.media[source].located;
  const bool isFound =
      located.result == media::SearchResult::Found && located.found == media::Found::Location;
  return isFound ? Severity::Note : c.OfSource(source, Severity::Lost);
}

}  // namespace

void JudgeEncoding(const Case& c, Findings& findings) {
  if (c.project.bytesEncoding != c.project.encoding) {
    findings.Add(Code::TextEncoding, Severity::Lost, {},
                 {"a text in " + c.project.encoding,
                  "The system reads nothing of it: letters are not single bytes in this encoding.",
                  "velmora prepare writes Shift-JIS."});
    return;
  }
  if (c.project.encoding == "ASCII" || c.project.encoding == "Shift-JIS") return;
  const auto locations = LocationLines(c);
  for (field::EntryPlace place = 0; place < c.project.tree.entries.size(); ++place) {
    for (std::size_t i = 0; i < c.Line(place).valueCount; ++i) {
      const field::Value& value = *c.ValueAt(place, i);
      if (!HasBytesBeyondAscii(value.text)) continue;
      const std::string shown = ShiftJisToUtf8(std::string(value.text).c_str());
      if (shown == c.project.TextOf(value)) continue;
      const auto location = locations.find(place);
      const bool isLocation = i == 0 && location != locations.end();
      // What hides a file by nothing else is told with the locations.
      if (isLocation && c.media[location->second].located.hiddenByEncoding) continue;
      const Severity severity = isLocation ? OfLocation(c, location->second) : Severity::Note;
      findings.Add(
          Code::TextEncoding, severity, {.offset = c.ValueOffset(place, i)},
          {c.Show(place, i),
           "The system reads Shift-JIS and gets \"" + shown + "\"" +
               (severity == Severity::Lost ? ", a file that there is not." : "."),
           "velmora prepare writes Shift-JIS, and safe names where that cannot hold them."});
    }
  }
}

}  // namespace velmora::check
