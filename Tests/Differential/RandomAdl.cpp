#include "RandomAdl.h"

#include <cstdlib>

#if defined(__SANITIZE_ADDRESS__)
#define VELMORA_IS_SLOW 1
#elif defined(__has_feature)
#define VELMORA_IS_SLOW __has_feature(address_sanitizer)
#else
#define VELMORA_IS_SLOW 0
#endif

namespace velmora::test::differential {
namespace {

using namespace std::string_literals;

const std::vector<std::string> kSectionNames = {
    "VERSION",    "PROJECT",      "SYSTEM",     "SEQUENCE", "TRACK_LIST", "SOURCE_INDEX",
    "EVENT_LIST", "SOURCE_INDEX", "EVENT_LIST", "REF",      "X",          "A)B",
    "REF_LISTS",  "AD",           "",           "E(1)"};

const std::vector<std::string> kConstants = {
    "ADL_ID",       "ADL_UID",        "VER_CREATOR", "PROJ_TITLE", "PROJ_NOTES",
    "SYS_GAIN",     "SYS_SRC_OFFSET", "SEQ_TITLE",   "SEQ_CLEAN",  "SEQ_SAMPLE_RATE",
    "SEQ_DESCRIPT", "SEQ_DEST_START", "NOBODY",      "SEQ_TITL",   "SEQ_TITLES"};

const std::vector<std::string> kEventLabels = {"Cut",     "Silence", "Aux",  "Vid", "Alt", "Infade",
                                               "Outfade", "Xfade",   "Gain", "Rem", "Cue"};

const std::vector<std::string> kPieces = {"<",
                                          ">",
                                          "(",
                                          ")",
                                          "\"",
                                          "\"\"",
                                          "\033\"",
                                          "/*",
                                          "*/",
                                          "/*/",
                                          "*",
                                          "/",
                                          "</",
                                          "<>",
                                          "<REF>",
                                          "</REF>",
                                          "<REF_LIST>",
                                          "</REF_LIST>",
                                          "<ADL>",
                                          "</ADL>",
                                          "(Entry) 1 ",
                                          "(Index) 1 ",
                                          "(Cut) ",
                                          "()",
                                          "(x)3 ab",
                                          "(x)0 ",
                                          "(x)-9 ",
                                          "(x)999999999999 ",
                                          "(x)1",
                                          "(x",
                                          "x)",
                                          "\r\n",
                                          "\r",
                                          "\n",
                                          "\0"s,
                                          "\200",
                                          "\377",
                                          "\033",
                                          "  ",
                                          "<EVENT_LIST>",
                                          "</EVENT_LIST>",
                                          "(F) ",
                                          "_"};

std::string Lower(std::string word) {
  for (char& byte : word)
    if (byte >= 'A' && byte <= 'Z') byte = static_cast<char>(byte + 32);
  return word;
}

}  // namespace

std::string RandomAdl::AnyCase(std::string word) {
  if (!OneIn(4)) return word;
  for (char& byte : word) {
    if (byte >= 'a' && byte <= 'z' && OneIn(2))
      byte = static_cast<char>(byte - 32);
    else if (byte >= 'A' && byte <= 'Z' && OneIn(2))
      byte = static_cast<char>(byte + 32);
  }
  return word;
}

std::string RandomAdl::Blank() {
  switch (Below(16)) {
    case 0:
      return "\r\n";
    case 1:
      return "\r";
    case 2:
      return "\t";
    case 3:
      return "\0"s;
    case 4:
      return "\200";
    case 5:
      return "\377\376";
    case 6:
      return "   ";
    case 7:
      return "\033";
    case 8:
      return "\n\r";
    case 9:
    case 10:
    case 11:
      return "\n";
    default:
      return " ";
  }
}

std::string RandomAdl::Token() {
  static const std::vector<std::string> kTokens = {
      "_",   "I",  "a",   "x.y",   "abc\"d", ")",     "*/",   "a)", "b(c", "d>",  "0",
      "1",   "-1", "007", "2.5",   "-1e3",   "inf",   "nan",  "+",  "1~2", "'q'", "LIN",
      "x/*", "&",  "]",   "ESC\\", "0x10",   "1e999", "-0.0", "}{", "|",   "a=b", ".5"};
  return OneOf(kTokens);
}

std::string RandomAdl::QuotedValue() {
  static const std::vector<std::string> kParts = {
      "a",  "B c",  "\033\"", "(Cut)", "<X>", "</X>", "/*",   "*/",  "\203\\", "\0"s,
      "\n", "\r\n", "\351",   "\\",    "1",   ")",    "URL:", "/s/", ".wav",   "\033"};
  std::string text = "\"";
  for (std::uint32_t parts = Below(5); parts > 0; --parts) text += OneOf(kParts);
  return text + "\"";
}

std::string RandomAdl::Number() {
  static const std::vector<std::string> kNumbers = {
      "0001",  "2",           "3",          "0004",        "5",
      "-1",    "-2147483648", "2147483647", "2147483648",  "-99999999999999999999",
      "12abc", "x",           "+7",         "0",           "00000000000000000000012",
      "1.9",   "0x10",        "- 3",        "99999999999", "\"4\""};
  return OneIn(3) ? OneOf(kNumbers) : std::to_string(Below(8));
}

std::string RandomAdl::Timestamp(char frameSeparator) {
  static const std::vector<std::string> kFrameMarks = {"?", "|", ":", "!", ".", "/", "=", "#", "-"};
  static const std::string kRateMarks = "('=\")[~|^]<-/+>`?@$!{&*#}";
  const auto two = [this](std::uint32_t limit) {
    const std::string digits = std::to_string(Below(limit));
    return digits.size() < 2 ? "0" + digits : digits;
  };
  std::string text =
      two(29) + OneOf(kFrameMarks) + two(60) + ":" + two(60) + frameSeparator + two(30);
  text += OneIn(3) ? kRateMarks[Below(static_cast<std::uint32_t>(kRateMarks.size()))] : '/';
  text += two(100) + two(100);
  // A mark that opens a quotation is none inside a token, and a timestamp is one token.
  return text;
}

std::string RandomAdl::Value() {
  switch (Below(8)) {
    case 0:
      return QuotedValue();
    case 1:
      return Number();
    case 2:
      return Timestamp();
    default:
      return Token();
  }
}

std::string RandomAdl::Values(std::uint32_t count) {
  std::string text;
  for (; count > 0; --count) text += Value() + Blank();
  return text;
}

std::string RandomAdl::Label(const std::string& label) {
  return "(" + AnyCase(label) + ")" + Blank();
}

std::string RandomAdl::WildLabel() {
  switch (Below(8)) {
    case 0:
      return Label(OneOf(kConstants));
    case 1:
      return Label(OneIn(2) ? "Index" : "F");
    case 2:
      return Label("Entry") + Number() + Blank();
    case 3:
      return CountedEntry();
    case 4:
      return "(" + Token() + ")" + Blank();
    case 5:
      return "(" + OneOf(kPieces) + ")" + Blank();
    default:
      return Label(OneOf(kEventLabels));
  }
}

std::string RandomAdl::CountedEntry() {
  std::string body;
  for (std::uint32_t parts = Below(4); parts > 0; --parts) body += OneOf(kPieces) + Value();
  const auto length = static_cast<int>(body.size()) + 1;  // the separator counts
  std::string count;
  switch (Below(8)) {
    case 0:
      count = std::to_string(length + static_cast<int>(Below(7)) - 3);
      break;
    case 1:
      count = std::to_string(Below(3));
      break;
    case 2:
      count = "-" + std::to_string(Below(50));
      break;
    case 3:
      count = OneIn(2) ? "99999999999" : std::to_string(Below(400));
      break;
    case 4:
      count = "x";
      break;
    default:
      count = std::to_string(length);
      break;
  }
  const std::string& label = OneIn(2) ? OneOf(kEventLabels) : OneOf(kConstants);
  const std::string parenthesis = OneIn(10) ? "" : ")";
  return "(" + label + parenthesis + count + " " + body + Blank();
}

std::string RandomAdl::Comment() {
  switch (Below(6)) {
    case 0:
      return "/*/" + Blank();
    case 1:
      return "/**/";
    case 2:
      return "/* " + Values(Below(4)) + "*/";
    case 3:
      return "/*" + Token() + "*/" + Token() + Blank();
    case 4:
      return "/* (Cut) <X> */" + Blank();
    default:
      return "/* words */" + Blank();
  }
}

std::string RandomAdl::Opening(const std::string& name) {
  switch (Below(24)) {
    case 0:
      return "<" + name + Blank();
    case 1:
      return "<" + Lower(name) + ">" + Blank();
    case 2:
      return "<" + name + ">";
    case 3:
      return "<" + Blank();
    default:
      return "<" + name + ">" + Blank();
  }
}

std::string RandomAdl::Closing(const std::string& name) {
  switch (Below(24)) {
    case 0:
      return "</" + name + "S>" + Blank();
    case 1:
      return "</" + Lower(name) + ">" + Blank();
    case 2:
      return "</" + OneOf(kSectionNames) + ">" + Blank();
    case 3:
      return "";
    case 4:
      return "</" + name + Blank();
    default:
      return "</" + name + ">" + Blank();
  }
}

std::string RandomAdl::WildSection(int depth) {
  const std::string& name = OneOf(kSectionNames);
  std::string text = Opening(name);
  if (OneIn(6)) text += Comment();
  for (std::uint32_t entries = Below(6); entries > 0; --entries) {
    text += WildLabel() + Values(Below(10));
    if (OneIn(12)) text += Comment();
    if (OneIn(40)) text += WildItem(depth + 1);
  }
  return text + Closing(name);
}

std::string RandomAdl::ReferenceList(int depth) {
  std::string text = (OneIn(8) ? "<ref_list>" : "<REF_LIST>") + Blank();
  for (std::uint32_t items = Below(4); items > 0; --items) {
    if (OneIn(4)) text += Token() + Blank();
    text += (OneIn(8) ? "<Ref>more" : "<REF>") + Blank();
    for (std::uint32_t inner = Below(3); inner > 0; --inner) text += WildItem(depth + 1);
    text += Closing("REF");
  }
  return text + Closing("REF_LIST");
}

std::string RandomAdl::WildItem(int depth) {
  const bool isDeep = depth > 6;
  switch (Below(8)) {
    case 0:
      return Comment();
    case 1:
      return isDeep ? Comment() : ReferenceList(depth);
    case 2:
      return OneIn(6) ? Token() + Blank() : Comment();
    default:
      return WildSection(depth);
  }
}

std::string RandomAdl::WildText() {
  std::string text = AnyCase("<ADL>");
  if (OneIn(20)) text += Token();
  if (OneIn(60)) text.insert(0, OneIn(2) ? " " : "\357\273\277");
  text += Blank();
  for (std::uint32_t items = Below(7); items > 0; --items) text += WildItem(0);
  return text + Closing("ADL") + (OneIn(4) ? WildItem(0) : "");
}

std::string RandomAdl::SoundConstants() {
  static const std::vector<std::string> kRows = {"VERSION", "PROJECT", "SYSTEM", "SEQUENCE"};
  const std::string& name = OneOf(kRows);
  std::string text = "<" + AnyCase(name) + ">" + Blank();
  for (std::uint32_t entries = Below(6); entries > 0; --entries)
    text += Label(OneOf(kConstants)) + Values(Below(3));
  return text + "</" + name + ">" + Blank();
}

std::string RandomAdl::SoundSources() {
  std::string text = "<SOURCE_INDEX>" + Blank();
  if (OneIn(8)) text += Label("Stray") + Values(Below(3));
  for (std::uint32_t sources = Below(5); sources > 0; --sources) {
    text += Label("Index") + Number() + Blank();
    for (std::uint32_t lines = Below(4); lines > 0; --lines) {
      if (OneIn(2)) {
        text += Label("F") + (OneIn(8) ? Value() : "\"URL:file://h/s/a.wav\"") + Blank() +
                Values(3 + Below(5));
      } else if (OneIn(2)) {
        text += Label("T") + Values(5 + Below(3));
      } else {
        text += Label("Q") + Values(Below(3));
      }
    }
  }
  return text + "</SOURCE_INDEX>" + Blank();
}

std::string RandomAdl::SoundEventLine() {
  switch (Below(14)) {
    case 0:
    case 1:
      return Label("Silence") + Number() + Blank() + Values(3 + Below(3));
    case 2:
      return Label("Aux") + Number() + Blank() + Values(3);
    case 3:
      return Label("Vid") + Values(4 + Below(2));
    case 4:
      return Label("Alt") + Values(1) + Number() + Blank() + Values(2 + Below(3));
    case 5:
    case 6: {
      const char separator = OneIn(2) ? ';' : ',';
      return Label(OneIn(2) ? "Infade" : "Outfade") + Timestamp(separator) + Blank() +
             Values(4 + Below(6));
    }
    case 7:
      return Label("Xfade") + Values(6 + Below(2));
    case 8:
      return Label("Gain") + Values(2 + Below(2));
    case 9:
      return Label("Rem") + Values(Below(4));
    case 10:
      return OneIn(3) ? WildLabel() : Label("Odd");
    default:
      return Label("Cut") + "I " + Number() + Blank() + Number() + " " + Number() + " " +
             Timestamp() + " " + Timestamp() + Blank() + Timestamp() + " " + Values(1 + Below(3));
  }
}

std::string RandomAdl::SoundEvents() {
  std::string text = "<EVENT_LIST>" + Blank();
  if (OneIn(6)) text += Comment();
  if (OneIn(8)) text += Label("Cut") + Values(Below(3));
  for (std::uint32_t entries = Below(9); entries > 0; --entries) {
    text += Label("Entry") + Number() + Blank();
    for (std::uint32_t lines = Below(6); lines > 0; --lines) text += SoundEventLine();
  }
  return text + "</EVENT_LIST>" + Blank();
}

std::string RandomAdl::SoundText() {
  std::string text = "<ADL>" + Blank();
  for (std::uint32_t sections = 1 + Below(6); sections > 0; --sections) {
    switch (Below(5)) {
      case 0:
        text += SoundConstants();
        break;
      case 1:
        text += SoundSources();
        break;
      case 2:
        text += "<TRACK_LIST>" + Blank() + Label("Track") + Values(2) + "</TRACK_LIST>\n";
        break;
      default:
        text += SoundEvents();
        break;
    }
  }
  return text + "</ADL>" + Blank();
}

std::string RandomAdl::TableText() {
  const auto time = [this] { return OneIn(12) ? Value() : Timestamp(OneIn(6) ? ';' : ':'); };
  std::string text = "<ADL>\n";
  for (std::uint32_t sections = Below(3); sections > 0; --sections) text += SoundConstants();
  text += "<SOURCE_INDEX>\n";
  for (std::uint32_t source = 0; source < 6; ++source)
    if (!OneIn(4))
      text += "(Index) " + std::to_string(source) + " (F) \"URL:/h/s/" +
              std::string(1, static_cast<char>('a' + source)) + ".wav\" _ " + Timestamp() + " " +
              Timestamp() + "\n";
  text += "</SOURCE_INDEX>\n<EVENT_LIST>\n";
  const std::uint32_t kind = Below(10);
  const std::uint32_t tracks = 1 + Below(6);
  const std::uint32_t first = Below(5);
  for (std::uint32_t entries = Below(14); entries > 0; --entries) {
    text += Label("Entry") + (OneIn(20) ? Number() : std::to_string(Below(400))) + " ";
    if (OneIn(4)) {
      text += SoundEventLine() + "\n";
      continue;
    }
    std::string track = std::to_string(first + Below(tracks));
    if (kind == 0) track = Number();
    if (kind == 1) track = "-" + track;
    text += Label("Cut") + "I " + std::to_string(Below(7)) + " 1 " + track + " " + time() + " " +
            time() + " " + time() + " _\n";
  }
  return text + "</EVENT_LIST>\n</ADL>\n";
}

std::string RandomAdl::Damaged(std::string text) {
  for (std::uint32_t changes = Below(5); changes > 0 && !text.empty(); --changes) {
    const auto size = static_cast<std::uint32_t>(text.size());
    const std::uint32_t at = Below(size);
    switch (Below(7)) {
      case 0:
        text.erase(at, 1 + Below(OneIn(4) ? size : 6));
        break;
      case 1:
      case 2:
        text.insert(at, OneOf(kPieces));
        break;
      case 3:
        text[at] = static_cast<char>(Below(256));
        break;
      case 4:
        text.insert(Below(size), text.substr(at, 1 + Below(40)));
        break;
      case 5:
        text[at] = OneOf(kPieces)[0];
        break;
      default:
        if (OneIn(3)) text.resize(at);
        break;
    }
  }
  return text;
}

std::uint32_t Rounds(std::uint32_t usual) {
  const char* const more = std::getenv("VELMORA_SEEDS");
  const auto rounds =
      more == nullptr ? usual : static_cast<std::uint32_t>(std::strtoul(more, nullptr, 10));
  return VELMORA_IS_SLOW ? rounds / 10 : rounds;
}

}  // namespace velmora::test::differential
