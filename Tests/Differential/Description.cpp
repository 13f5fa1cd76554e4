#include "Description.h"

#include <strings.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <functional>

namespace velmora::test::differential {
namespace {

std::string LineAt(const std::string& lines, std::size_t at) {
  const std::size_t begin = at == 0 ? 0 : lines.rfind('\n', at - 1) + 1;
  return lines.substr(begin, lines.find('\n', at) - begin);
}

// Exact to the last bit.
std::string Bits(double number) {
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%a", number);
  return text.data();
}

bool Is(const char* label, const char* keyword) {
  return label != nullptr && strcasecmp(label, keyword) == 0;
}

}  // namespace

std::string Quoted(std::string_view bytes) {
  std::string text = "\"";
  for (const char byte : bytes) {
    if (byte >= ' ' && byte <= '~') {
      if (byte == '"' || byte == '\\') text += '\\';
      text += byte;
      continue;
    }
    // Octal, because three digits end an escape whatever comes next.
    std::array<char, 8> code{};
    std::snprintf(code.data(), code.size(), "\\%03o", static_cast<unsigned char>(byte));
    text += code.data();
  }
  return text + "\"";
}

std::string FirstDifference(const std::string& expected, const std::string& got) {
  if (expected == got) return {};
  const auto [e, g] = std::mismatch(expected.begin(), expected.end(), got.begin(), got.end());
  const auto at = static_cast<std::size_t>(e - expected.begin());
  return "expected " + LineAt(expected, at) + "\n     got " + LineAt(got, at);
}

std::string Description::Text(const char* text) const {
  if (text == nullptr) return "null";
  const std::less<const char*> before;
  if (before(text, begin_) || before(begin_ + size_, text)) return "a text outside the block";
  // Where nothing stands is of no concern to anybody.
  if (*text == '\0') return Quoted("");
  return Quoted(text) + "@" + std::to_string(text - begin_);
}

void Description::AddSources(const std::map<std::int32_t, AES31SourceFile>& sources) {
  for (const auto& [number, source] : sources) {
    std::string line = "source " + std::to_string(number);
    for (const char* const value : source.fValues) line += " " + Text(value);
    line += " /";
    for (const char* const value : source.tValues) line += " " + Text(value);
    AddLine(line);
  }
}

std::string Description::Edit(const AES31Event& event) const {
  const auto number = [](std::int32_t value) { return " " + std::to_string(value); };
  std::string line;
  if (Is(event.label, "Cut")) {
    const AES31Cut& cut = event.cut;
    for (const char* const text :
         {cut.sourceType, cut.sourceIn, cut.destIn, cut.destOut, cut.cutTail})
      line += " " + Text(text);
    for (const std::int32_t value :
         {cut.sourceIndex, cut.sourceChannel, cut.destChannel, cut.cutMark1, cut.cutMark2})
      line += number(value);
    return line;
  }
  if (Is(event.label, "Silence") || Is(event.label, "Aux")) {
    const AES31Silence& silence = event.silence;
    for (const char* const text :
         {silence.silenceText1, silence.silenceText2, silence.silenceText3})
      line += " " + Text(text);
    line += number(silence.silenceNumber) + number(silence.silenceMark);
  } else if (Is(event.label, "Vid")) {
    const AES31Vid& vid = event.vid;
    for (const char* const text : {vid.vidText0, vid.vidText1, vid.vidText2, vid.vidText3})
      line += " " + Text(text);
  } else {
    const AES31Alt& alt = event.alt;
    line += " " + Text(alt.altType) + " " + Text(alt.altTime) + number(alt.altIndex) +
            number(alt.altChannel) + number(alt.altMark);
  }
  // These lie past what other edits fill, and readers take them for 0 there.
  const AES31Cut& cut = event.cut;
  for (const std::int32_t value :
       {cut.sourceIndex, cut.sourceChannel, cut.destChannel, cut.cutMark1, cut.cutMark2})
    line += number(value);
  return line;
}

std::string Description::Fade(const AES31Fade& fade) const {
  return std::string(fade.present ? "1" : "0") + " " + Text(fade.length) + " " +
         Text(fade.fadeText1) + " " + Bits(fade.fadeParam2) + " " + Bits(fade.fadeParam3) + " " +
         Bits(fade.fadeParam4) + " " + Text(fade.fadeText5) + " " +
         std::to_string(fade.fadeNumber6) + " " + Text(fade.fadeText7);
}

void Description::AddEvent(const AES31Event& event) {
  AddLine("event " + std::to_string(event.entryNumber) + " " + Text(event.label) + Edit(event));
  AddLine("  infade " + Fade(event.infade));
  AddLine("  outfade " + Fade(event.outfade));
  const AES31Crossfade& xfade = event.xfade;
  AddLine("  xfade " + std::to_string(int{xfade.present}) + " " + Text(xfade.xfadeText1) + " " +
          Text(xfade.xfadeText2) + " " + Text(xfade.xfadeText3) + " " + Text(xfade.xfadeText5) +
          " " + std::to_string(xfade.xfadeNumber0) + " " + std::to_string(xfade.xfadeNumber4));
  AddLine("  gain " + std::to_string(int{event.gain.present}) + " " +
          std::to_string(event.gain.gainNumber) + " " + Bits(event.gain.gainDb));
  AddLine("  source " + Text(event.sourceStart) + " " + Text(event.sourceLength));
  AddLine("  boxes " + std::to_string(event.eventOn) + " " + std::to_string(event.trackOn));
}

}  // namespace velmora::test::differential
