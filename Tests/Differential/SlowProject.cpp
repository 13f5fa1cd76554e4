#include "SlowProject.h"

#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "ADL/ShiftJis.h"
#include "SlowTimes.h"

namespace velmora::test::differential {
namespace {

char LowerCase(char byte) {
  return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
}

bool Equal(const std::string& a, const std::string& b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i)
    if (LowerCase(a[i]) != LowerCase(b[i])) return false;
  return true;
}

bool Is(const SlowEntry& entry, const char* label) {
  return Equal(entry.label, label);
}

// A value that is not there is null, and its numbers are 0.
const char* Value(const SlowEntry& entry, std::size_t index) {
  return index < entry.values.size() ? entry.values[index] : nullptr;
}
std::int32_t Number(const SlowEntry& entry, std::size_t index) {
  return SlowNumber(Value(entry, index));
}
double Decimal(const SlowEntry& entry, std::size_t index) {
  const char* const text = Value(entry, index);
  return text == nullptr ? 0 : std::strtod(text, nullptr);
}

void FillCut(AES31Event& event, const SlowEntry& entry) {
  event.cut = {.sourceType = Value(entry, 0),
               .sourceIn = Value(entry, 4),
               .destIn = Value(entry, 5),
               .destOut = Value(entry, 6),
               .cutTail = Value(entry, 7),
               .sourceIndex = Number(entry, 1),
               .sourceChannel = Number(entry, 2),
               .destChannel = Number(entry, 3),
               .cutMark1 = 1,
               .cutMark2 = 1};
}

void FillSilence(AES31Event& event, const SlowEntry& entry) {
  event.silence = {.silenceText1 = Value(entry, 1),
                   .silenceText2 = Value(entry, 2),
                   .silenceText3 = Value(entry, 3),
                   .silenceNumber = Number(entry, 0),
                   .silenceMark = 1};
}

void FillVid(AES31Event& event, const SlowEntry& entry) {
  event.vid = {.vidText0 = Value(entry, 0),
               .vidText1 = Value(entry, 1),
               .vidText2 = Value(entry, 2),
               .vidText3 = Value(entry, 3)};
}

void FillAlt(AES31Event& event, const SlowEntry& entry) {
  event.alt = {.altType = Value(entry, 0),
               .altTime = Value(entry, 3),
               .altIndex = Number(entry, 1),
               .altChannel = Number(entry, 2),
               .altMark = 1};
}

void FillFade(AES31Fade& fade, const SlowEntry& entry, bool whole) {
  fade.present = true;
  fade.length = Value(entry, 0);
  fade.fadeText1 = Value(entry, 1);
  fade.fadeParam2 = Decimal(entry, 2);
  fade.fadeParam3 = Decimal(entry, 3);
  fade.fadeParam4 = Decimal(entry, 4);
  if (!whole) return;
  fade.fadeText5 = Value(entry, 5);
  fade.fadeNumber6 = Number(entry, 6);
  fade.fadeText7 = Value(entry, 7);
}

void FillCrossfade(AES31Crossfade& xfade, const SlowEntry& entry) {
  xfade = {.present = true,
           .xfadeText1 = Value(entry, 1),
           .xfadeText2 = Value(entry, 2),
           .xfadeText3 = Value(entry, 3),
           .xfadeText5 = Value(entry, 5),
           .xfadeNumber0 = Number(entry, 0),
           .xfadeNumber4 = Number(entry, 4)};
}

std::optional<LoadFailureCode> FaultOfFade(const SlowEntry& entry) {
  if (entry.values.size() < 5) return LoadFailureCode::ValuesMissing;
  if (IsSlowTimestamp(entry.values[0])) return std::nullopt;
  std::string mended = entry.values[0];
  if (mended.size() > 8) mended[8] = ';';
  return IsSlowTimestamp(mended.c_str()) ? LoadFailureCode::FadeSeparator
                                         : LoadFailureCode::FadeForm;
}

bool OpensAsFile(const std::string& path) {
  std::error_code ignored;
  return std::filesystem::is_regular_file(path, ignored);
}

}  // namespace

SlowProject::SlowProject(const std::string& text, const std::string& folder) : text_(text) {
  ScanSlowly(text, *this);
  if (!isAdl) diagnostics.push_back({LoadDiagnosticCode::NoAdl, 0, {}});
  Read(Checks::On);
  if (!IsLoaded()) return;
  Resolve(folder);
  Link();
}

void SlowProject::Read(Checks checks) {
  constants.fill(nullptr);
  for (const SlowSection& section : sections)
    if (!ReadSection(section, checks)) return;
}

bool SlowProject::ReadSection(const SlowSection& section, Checks checks) {
  if (Equal(section.name, "SOURCE_INDEX")) return ReadSources(section, checks);
  if (Equal(section.name, "EVENT_LIST")) return ReadEvents(section, checks);
  for (const ProjectConstant& constant : kProjectConstants) {
    if (!Equal(section.name, constant.section)) continue;
    ReadConstants(section);
    break;
  }
  return true;
}

void SlowProject::ReadConstants(const SlowSection& section) {
  for (const SlowEntry& entry : section.entries) {
    bool isKnown = false;
    for (std::size_t id = 0; id < kProjectConstants.size() && !entry.values.empty(); ++id) {
      const ProjectConstant& constant = kProjectConstants[id];
      if (!Equal(section.name, constant.section) || !Is(entry, constant.keyword)) continue;
      constants[id] = entry.values[0];
      isKnown = true;
      break;
    }
    if (!isKnown)
      Tolerate(
          LoadDiagnosticCode::UnknownIdentifier, entry,
          std::string("Found unknown identifier: ") + entry.label + " in section " + section.name);
  }
}

bool SlowProject::ReadSources(const SlowSection& section, Checks checks) {
  const bool checked = checks == Checks::On;
  const std::vector<SlowEntry>& entries = section.entries;
  std::size_t at = 0;
  while (at < entries.size()) {
    if (!Is(entries[at], "Index")) {
      Tolerate(LoadDiagnosticCode::UnexpectedEntry, entries[at],
               std::string("Found unexpected entry: ") + entries[at].label);
      ++at;
      continue;
    }
    if (checked && entries[at].values.empty())
      return Fail(LoadFailureCode::IndexMissing, section, entries[at]);
    const std::int32_t number = Number(entries[at], 0);
    AES31SourceFile source;
    for (++at; at < entries.size() && !Is(entries[at], "Index"); ++at) {
      const SlowEntry& entry = entries[at];
      const std::size_t count = entry.values.size();
      if (Is(entry, "F")) {
        if (checked && count < 4) return Fail(LoadFailureCode::ValuesMissing, section, entry);
        for (std::size_t i = 0; i < 4; ++i) source.fValues[i] = Value(entry, i);
        if (!checked || count >= 6)
          for (std::size_t i = 4; i < 6; ++i) source.fValues[i] = Value(entry, i);
      } else if (Is(entry, "T")) {
        if (checked && count < 5) return Fail(LoadFailureCode::ValuesMissing, section, entry);
        for (std::size_t i = 0; i < 5; ++i) source.tValues[i] = Value(entry, i);
      }
    }
    sourceFiles[number] = source;
  }
  return true;
}

bool SlowProject::ReadEvents(const SlowSection& section, Checks checks) {
  const std::vector<SlowEntry>& entries = section.entries;
  std::map<std::int32_t, AES31Event> byNumber;
  std::size_t at = 0;
  while (at < entries.size()) {
    if (!Is(entries[at], "Entry")) {
      Tolerate(LoadDiagnosticCode::UnexpectedEntry, entries[at],
               std::string("Found unexpected entry: ") + entries[at].label);
      ++at;
      continue;
    }
    if (checks == Checks::On && entries[at].values.empty())
      return Fail(LoadFailureCode::IndexMissing, section, entries[at]);
    AES31Event event{};
    event.entryNumber = Number(entries[at], 0);
    bool editSeen = false;
    for (++at; at < entries.size() && !Is(entries[at], "Entry"); ++at)
      if (!ReadEventLine(event, editSeen, section, entries[at], checks)) return false;
    byNumber[event.entryNumber] = event;
  }
  for (const auto& [number, event] : byNumber) events.push_back(event);
  return true;
}

bool SlowProject::ReadEventLine(AES31Event& event, bool& editSeen, const SlowSection& section,
                                const SlowEntry& entry, Checks checks) {
  const bool checked = checks == Checks::On;
  const std::size_t count = entry.values.size();
  const auto hasTooFew = [&](std::size_t needed) { return checked && count < needed; };
  const auto fail = [&] { return Fail(LoadFailureCode::ValuesMissing, section, entry); };
  if (!editSeen && Is(entry, "Cut")) {
    if (hasTooFew(8)) return fail();
    FillCut(event, entry);
  } else if (!editSeen && (Is(entry, "Silence") || Is(entry, "Aux"))) {
    if (hasTooFew(4)) return fail();
    FillSilence(event, entry);
  } else if (!editSeen && Is(entry, "Vid")) {
    if (hasTooFew(4)) return fail();
    FillVid(event, entry);
  } else if (!editSeen && Is(entry, "Alt")) {
    if (hasTooFew(4)) return fail();
    FillAlt(event, entry);
    return true;  // no edit in its own right: no label, and another may follow
  } else if (Is(entry, "Infade") || Is(entry, "Outfade")) {
    if (checked)
      if (const auto fault = FaultOfFade(entry)) return Fail(*fault, section, entry);
    FillFade(Is(entry, "Infade") ? event.infade : event.outfade, entry, !checked || count >= 8);
    return true;
  } else if (Is(entry, "Xfade")) {
    if (hasTooFew(6)) return fail();
    FillCrossfade(event.xfade, entry);
    return true;
  } else if (Is(entry, "Gain")) {
    if (hasTooFew(2)) return fail();
    event.gain = {.present = true, .gainNumber = Number(entry, 0), .gainDb = Decimal(entry, 1)};
    return true;
  } else {
    if (!Is(entry, "Rem"))
      Tolerate(LoadDiagnosticCode::UnexpectedLabel, entry,
               std::string("Encountered unexpected label: ") + entry.label);
    return true;
  }
  event.label = entry.label;
  editSeen = true;
  return true;
}

bool SlowProject::Fail(LoadFailureCode code, const SlowSection& section, const SlowEntry& entry) {
  failure = SlowFailure{code, LineOf(entry), section.name, entry.label};
  return false;
}

void SlowProject::Tolerate(LoadDiagnosticCode code, const SlowEntry& entry,
                           const std::string& line) {
  diagnostics.push_back({code, LineOf(entry), line});
  said += line + "\n";
}

std::int64_t SlowProject::LineOf(const SlowEntry& entry) const {
  const auto place = static_cast<std::size_t>(entry.label - block.data());
  std::int64_t line = 1;
  for (std::size_t at = 0; at < place; ++at) {
    const bool endsWithNext = at + 1 < text_.size() && text_[at + 1] == '\n';
    if (text_[at] == '\n' || (text_[at] == '\r' && !endsWithNext)) ++line;
  }
  return line;
}

void SlowProject::Resolve(const std::string& folder) {
  for (const auto& [number, source] : sourceFiles) {
    const char* const raw = source.fValues[0];
    if (raw == nullptr || *raw == '\0') continue;
    std::string location = ShiftJisToUtf8(raw + 1);
    if (location.empty()) continue;
    location.pop_back();
    std::size_t slash = location.rfind('/');
    while (slash != std::string::npos && slash != 0) {
      const std::string path = folder + location.substr(slash);
      if (OpensAsFile(path)) {
        sourcePaths[number] = path;
        break;
      }
      slash = location.rfind('/', slash - 1);
    }
  }
}

void SlowProject::Link() {
  for (AES31Event& event : events) {
    if (event.label == nullptr || !Equal(event.label, "Cut") || event.cut.sourceIndex == -1)
      continue;
    const auto source = sourceFiles.find(event.cut.sourceIndex);
    if (source == sourceFiles.end()) continue;
    event.sourceStart = source->second.fValues[2];
    event.sourceLength = source->second.fValues[3];
  }
}

const std::string* SlowProject::FileOfEvent(std::size_t event) const {
  const AES31Event& e = events[event];
  if (e.label == nullptr || !Equal(e.label, "Cut") || e.cut.sourceIndex == -1) return nullptr;
  const auto path = sourcePaths.find(e.cut.sourceIndex);
  return path == sourcePaths.end() ? nullptr : &path->second;
}

}  // namespace velmora::test::differential
