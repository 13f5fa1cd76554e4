#include "Prepare/AdlText.h"

#include <algorithm>
#include <utility>

#include "Base/Utf8.h"
#include "Field/FieldTime.h"
#include "Prepare/ShiftJisWriter.h"

namespace velmora::prepare {
namespace {

constexpr char kEscape = 0x1B;  // before a quotation mark: it does not end the value (AES31-3)
constexpr char kStandIn = '?';
/// No name that a reader gives a meaning has it: "SOURCE INDEX" stays a stranger.
constexpr char kNameStandIn = '-';

bool IsPlain(char c) {
  return c > ' ' && c < 0x7F;
}

/// A name for a tag or a label, without what would end it and what the scanner takes for blanks.
std::string SafeName(std::string_view name, std::string_view enders) {
  std::string safe(name);
  for (char& c : safe) {
    if (!IsPlain(c) || enders.find(c) != std::string_view::npos) c = kNameStandIn;
  }
  return safe;
}

/// Line ends as CR LF, blanks at the ends off.
std::vector<std::string_view> LinesOf(std::string_view text) {
  std::vector<std::string_view> lines;
  while (true) {
    const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
    lines.push_back(text.substr(0, end));
    if (end == text.size()) return lines;
    const bool pair = text.substr(end, 2) == "\r\n";
    text.remove_prefix(end + (pair ? 2 : 1));
  }
}

/// No mark of a comment's end may stand in it.
void BreakCommentMarks(std::string& text) {
  for (std::size_t at = text.find("*/"); at != std::string::npos; at = text.find("*/", at)) {
    text.replace(at, 2, "* /");
  }
}

std::string_view Trimmed(std::string_view text) {
  const auto isBlank = [](char c) { return static_cast<unsigned char>(c) <= ' '; };
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

}  // namespace

AdlText::AdlText() {
  Add("<ADL>");
}

void AdlText::Add(std::string_view line) {
  text_ += line;
  text_ += "\r\n";
}

void AdlText::OpenSection(std::string_view name) {
  section_ = SectionName(name);
  Add('<' + section_ + '>');
}

void AdlText::CloseSection() {
  Add("</" + section_ + '>');
  section_.clear();
}

void AdlText::Tag(std::string_view tag) {
  Add('<' + std::string(tag) + '>');
}

void AdlText::Comment(std::string_view text) {
  std::string body;
  for (const std::string_view line : LinesOf(text)) {
    body += (body.empty() ? "" : "\r\n") + ToShiftJis(line, kStandIn).bytes;
  }
  // Not before: control characters have become blanks, and who reads this takes them off again.
  body = std::string(Trimmed(body));
  BreakCommentMarks(body);
  // The blanks matter: the system takes "/*/" for a comment of its own.
  Add("/* " + body + " */");
}

void AdlText::Line(std::string_view label, const std::vector<std::string>& values) {
  std::string line = '(' + SafeName(label, "()") + ')';
  for (const std::string& value : values) line += ' ' + value;
  Add(line);
}

void AdlText::CountedLine(std::string_view label, std::string_view value) {
  std::string bytes;
  for (const std::string_view line : LinesOf(value)) {
    bytes += (bytes.empty() ? "" : "\r\n") + ToShiftJis(line, kStandIn).bytes;
  }
  // The count takes in the separator before the value.
  Add('(' + SafeName(label, "()") + ')' + std::to_string(bytes.size() + 1) + ' ' + bytes);
}

std::string AdlText::Finish() {
  Add("</ADL>");
  const bool ascii =
      std::all_of(text_.begin(), text_.end(), [](char c) { return (c & 0x80) == 0; });
  if (!ascii && ValidUtf8(text_) == text_) {
    // Half-width kana can look like UTF-8. A word that cannot settles it for every reader.
    constexpr std::string_view kOpeningLine = "<ADL>\r\n";
    text_.insert(kOpeningLine.size(),
                 "/* Shift-JIS " + ToShiftJis("\u65E5\u672C\u8A9E", kStandIn).bytes + " */\r\n");
  }
  return std::move(text_);
}

std::string AdlText::SectionName(std::string_view name) {
  return SafeName(name, "<>");
}

bool AdlText::NeedsQuotes(std::string_view text) {
  if (text.empty()) return true;
  const char first = text.front();
  if (first == '"' || first == '(' || first == '<') return true;
  // The last is a closing tag to readers who know that a value may touch one.
  for (const char* mark : {"/*", "</"}) {
    if (text.find(mark) != std::string_view::npos) return true;
  }
  return !std::all_of(text.begin(), text.end(), IsPlain);
}

std::string AdlText::Quoted(std::string_view text) {
  std::string bytes = ToShiftJis(text, kStandIn).bytes;
  // "?" is a mark of timestamps, and any byte may stand before the frames: what was no time must
  // not become one.
  if (field::LooksLikeTime(bytes) && !field::LooksLikeTime(text)) bytes += '_';
  std::string value = "\"";
  for (const char c : bytes) {
    if (c == '"') value += kEscape;
    value += c;
  }
  return value + '"';
}

std::string AdlText::Value(std::string_view text, bool quoted) {
  return quoted || NeedsQuotes(text) ? Quoted(text) : std::string(text);
}

}  // namespace velmora::prepare
