#include "Field/ProjectReader.h"

#include "Field/EntryTexts.h"
#include "Field/FieldHeader.h"

namespace velmora::field {
namespace {

bool SameMarks(const StampMarks& a, const StampMarks& b) {
  return a.frameRateMark == b.frameRateMark && a.sampleRateMark == b.sampleRateMark &&
         a.rates.dropFrame == b.rates.dropFrame;
}

/// Undoes the escapes of a quoted value: byte 0x1B before a quotation mark.
std::string WithoutMarkEscapes(std::string_view text) {
  constexpr char kEscape = 0x1B;
  std::string plain(text);
  std::size_t out = 0;
  for (std::size_t i = 0; i < plain.size(); ++i) {
    if (plain[i] == kEscape && i + 1 < plain.size() && plain[i + 1] == '"') continue;
    plain[out++] = plain[i];
  }
  plain.resize(out);
  return plain;
}

}  // namespace

std::string DecodedText(TextDecoder& decoder, const Value& value) {
  if (!value.IsThere()) return {};
  if (value.text.find('\x1B') != std::string_view::npos && value.quoted) {
    return decoder.ToUtf8(WithoutMarkEscapes(value.text));
  }
  return IsAscii(value.text) ? std::string(value.text) : decoder.ToUtf8(value.text);
}

ProjectReader::ProjectReader(Project& project)
    : project_(project), decoder_(project.bytesEncoding) {}

void ProjectReader::ReadHeader() {
  ReadTimeContext(project_);
  const std::optional<EntryPlace> start = project_.header.destStartPlace;
  if (start) {
    (void)ReadSamples(ValueAt(project_.tree, project_.tree.entries[*start], 0), TimeRole::Header);
  }
}

std::optional<std::int64_t> ProjectReader::ReadSamples(const Value& value, TimeRole role) {
  const std::optional<StampMarks> marks = ReadMarks(value.text, project_.times);
  if (!marks) return std::nullopt;
  NoteMarks(value, *marks, role);
  const Time time = TimeOf(value.text, *marks, project_.times);
  return AtRate(time.samples, time.rates.sampleRate, project_.rates.sampleRate);
}

std::string ProjectReader::ReadText(const Value& value) {
  return value.IsGiven() ? DecodedText(decoder_, value) : std::string();
}

void ProjectReader::NoteMarks(const Value& value, const StampMarks& marks, TimeRole role) {
  std::vector<MarksUse>& uses = project_.marks;
  std::size_t& last = lastMarks_[static_cast<std::size_t>(role)];
  const auto fits = [&](const MarksUse& use) {
    return use.role == role && SameMarks(use.marks, marks);
  };
  if (last >= uses.size() || !fits(uses[last])) {
    for (last = 0; last < uses.size() && !fits(uses[last]);) ++last;
    if (last == uses.size()) uses.push_back({marks, role, value.text, 0});
  }
  ++uses[last].count;
}

}  // namespace velmora::field
