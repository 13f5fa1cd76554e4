#include "Program/CheckText.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "Base/Text.h"
#include "Program/TextTable.h"

namespace velmora::program {
namespace {

using check::CheckedProject;
using check::Finding;
using check::Severity;

constexpr std::size_t kShownPlaces = 4;
constexpr std::size_t kTextWidth = 96;
constexpr const char* kPlain = "\x1b[0m";

struct SeverityLook {
  const char* word;
  const char* colour;
};

SeverityLook LookOf(Severity severity) {
  constexpr auto kLooks = std::to_array<SeverityLook>({{"fails", "\x1b[1;31m"},
                                                       {"misplaces", "\x1b[1;33m"},
                                                       {"loses", "\x1b[1;35m"},
                                                       {"note", "\x1b[2m"}});
  return kLooks[static_cast<std::size_t>(severity)];
}

/// Findings of one code and severity, in file order.
struct Group {
  std::vector<const Finding*> findings;
  [[nodiscard]] const Finding& First() const { return *findings.front(); }
};

std::vector<Group> GroupFindings(const std::vector<Finding>& findings) {
  constexpr std::size_t kSeverities = 4;
  std::vector<Group> bySlot(check::kCodes.size() * kSeverities);
  for (const Finding& finding : findings) {
    const std::size_t slot = static_cast<std::size_t>(finding.severity) * check::kCodes.size() +
                             static_cast<std::size_t>(finding.code);
    bySlot[slot].findings.push_back(&finding);
  }
  std::erase_if(bySlot, [](const Group& group) { return group.findings.empty(); });
  return bySlot;
}

/// "line 12, entry 3"; empty for the file as a whole.
std::string PlaceText(const Finding& finding) {
  std::string text;
  const auto add = [&text](const std::string& what, std::int64_t number) {
    text += (text.empty() ? "" : ", ") + what + " " + std::to_string(number);
  };
  if (finding.line > 0) add("line", finding.line);
  if (finding.entry) add("entry", *finding.entry);
  if (finding.source && !finding.entry) add("source", *finding.source);
  return text;
}

/// Writes a text from a column on, broken at blanks.
void WriteWrapped(std::ostream& out, const std::string& lead, std::string_view text) {
  out << lead;
  std::size_t width = 0;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(' '), text.size());
    const std::string_view word = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (width > 0 && width + 1 + DisplayWidth(word) > kTextWidth) {
      out << '\n' << std::string(lead.size(), ' ');
      width = 0;
    }
    out << (width > 0 ? " " : "") << word;
    width += DisplayWidth(word) + 1;
  }
  out << '\n';
}

void WritePlaces(std::ostream& out, const Group& group) {
  std::vector<std::string> places;
  std::size_t widest = 0;
  for (const Finding* const finding : group.findings) {
    if (places.size() == kShownPlaces) break;
    places.push_back(PlaceText(*finding));
    widest = std::max(widest, places.back().size());
  }
  for (std::size_t i = 0; i < places.size(); ++i) {
    const std::string gap(places[i].size() < widest ? widest - places[i].size() : 0, ' ');
    out << "      " << places[i] << gap << (widest > 0 ? "  " : "")
        << Printable(group.findings[i]->text) << '\n';
  }
  if (group.findings.size() > places.size()) {
    out << "      and " << group.findings.size() - places.size() << " more\n";
  }
}

void WriteGroupHead(std::ostream& out, const Group& group, bool colours) {
  const Finding& first = group.First();
  const SeverityLook look = LookOf(first.severity);
  out << "  " << (colours ? look.colour : "") << look.word << (colours ? kPlain : "") << "  "
      << RowOf(first.code).title;
  if (group.findings.size() > 1) out << ", " << group.findings.size() << " times";
  out << "  [" << RowOf(first.code).name << "]\n";
}

void WriteGroup(std::ostream& out, const Group& group, bool colours) {
  WriteGroupHead(out, group, colours);
  const Finding& first = group.First();
  WritePlaces(out, group);
  WriteWrapped(out, "      Effect: ", Printable(first.effect));
  WriteWrapped(out, "      Remedy: ", Printable(first.remedy));
}

std::string NoteText(const CheckedProject& checked) {
  const std::size_t notes = checked.Count(Severity::Note);
  return notes > 0 ? ", " + Counted(notes, "note") : "";
}

void WriteHead(std::ostream& out, const CheckedProject& checked, bool colours) {
  const auto coloured = [&](const char* colour, const std::string& text) {
    return colours ? colour + text + kPlain : text;
  };
  out << Printable(checked.path) << ": ";
  switch (checked.verdict) {
    case check::Verdict::Clean:
      out << coloured("\x1b[32m", "clean") << NoteText(checked) << '\n';
      return;
    case check::Verdict::Unreadable:
      out << coloured(LookOf(Severity::Fails).colour, "cannot be read as an ADL") << '\n';
      return;
    case check::Verdict::Loses:
      const bool fails = checked.Count(Severity::Fails) > 0;
      const Severity severity = fails ? Severity::Fails : Severity::Lost;
      out << coloured(LookOf(severity).colour, fails ? "does not load" : "does not arrive whole")
          << "; " << check::SummaryLine(checked) << NoteText(checked) << '\n';
      return;
  }
}

}  // namespace

void WriteCheckText(const CheckedProject& checked, bool colours, std::ostream& out) {
  WriteHead(out, checked, colours);
  if (checked.verdict == check::Verdict::Clean) return;
  for (const Group& group : GroupFindings(checked.findings)) WriteGroup(out, group, colours);
  out << '\n';
}

void WriteFindingGroups(const std::vector<Finding>& findings, bool colours, std::ostream& out) {
  for (const Group& group : GroupFindings(findings)) {
    if (group.First().severity == Severity::Note) {
      WriteGroupHead(out, group, colours);
    } else {
      WriteGroup(out, group, colours);
    }
  }
}

void CheckTotals::Count(check::Verdict verdict) {
  switch (verdict) {
    case check::Verdict::Clean:
      ++clean;
      return;
    case check::Verdict::Loses:
      ++loses;
      return;
    case check::Verdict::Unreadable:
      ++unreadable;
      return;
  }
}

void WriteCheckTotals(const CheckTotals& totals, std::ostream& out) {
  out << Counted(totals.All(), "project") << ": " << totals.clean << " clean, " << totals.loses
      << " that would not arrive whole, " << totals.unreadable << " that cannot be read\n";
}

}  // namespace velmora::program
