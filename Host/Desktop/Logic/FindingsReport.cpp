#include "Desktop/Logic/FindingsReport.h"

#include <algorithm>
#include <array>
#include <map>
#include <numeric>
#include <utility>

#include "Base/FileNames.h"
#include "Base/Text.h"

namespace velmora::desktop {
namespace {

using check::Finding;

constexpr std::size_t kNamedKinds = 2;  // in the status line; the rest are a click away

/// What becomes of an event or of the load, in one word.
const char* GravityWord(check::Severity severity) {
  constexpr std::array kWords = {"Fails", "Misplaced", "Lost", "Note"};
  return kWords[static_cast<std::size_t>(severity)];
}

/// The kinds of findings that are more than notes, the gravest and then the most frequent first.
std::vector<std::pair<check::Code, std::size_t>> GraveKinds(const check::CheckedProject& checked) {
  struct Kind {
    check::Severity worst = check::Severity::Note;
    std::size_t count = 0;
  };
  std::map<check::Code, Kind> kinds;
  for (const Finding& finding : checked.findings) {
    if (finding.severity == check::Severity::Note) continue;
    Kind& kind = kinds[finding.code];
    kind.worst = std::min(kind.worst, finding.severity);
    ++kind.count;
  }
  std::vector<std::pair<check::Code, std::size_t>> sorted;
  sorted.reserve(kinds.size());
  for (const auto& [code, kind] : kinds) sorted.emplace_back(code, kind.count);
  std::stable_sort(sorted.begin(), sorted.end(), [&](const auto& a, const auto& b) {
    const Kind& first = kinds[a.first];
    const Kind& second = kinds[b.first];
    return std::pair(first.worst, second.count) < std::pair(second.worst, first.count);
  });
  return sorted;
}

std::string NumberText(const std::optional<std::int32_t>& number) {
  return number ? std::to_string(*number) : std::string();
}

/// -1, 0 or 1. What is not there comes before all numbers, as the file as a whole does.
template <class Value>
int Order(const Value& a, const Value& b) {
  return a < b ? -1 : b < a ? 1 : 0;
}

int Compare(const Finding& a, const Finding& b, FindingColumn column) {
  switch (column) {
    case FindingColumn::Gravity:
      return Order(a.severity, b.severity);
    case FindingColumn::Line:
      return Order(a.line, b.line);
    case FindingColumn::Event:
      return Order(a.entry, b.entry);
    case FindingColumn::Text:
      return Order(a.text, b.text);
    case FindingColumn::Effect:
      return Order(a.effect.Text(), b.effect.Text());
    case FindingColumn::Remedy:
      return Order(a.remedy.Text(), b.remedy.Text());
  }
  return 0;
}

}  // namespace

std::optional<StatusItem> DescribeFindings(const check::CheckedProject& checked) {
  std::string text = check::SummaryLine(checked);
  if (text.empty()) return std::nullopt;
  const auto kinds = GraveKinds(checked);
  for (std::size_t i = 0; i < std::min(kNamedKinds, kinds.size()); ++i) {
    text += i == 0 ? " \u2013 " : ", ";
    text += check::RowOf(kinds[i].first).title;
    if (kinds[i].second > 1) text += " (" + std::to_string(kinds[i].second) + ")";
  }
  if (kinds.size() > kNamedKinds) {
    text += " and " + Counted(kinds.size() - kNamedKinds, "other kind");
  }
  return StatusItem{Severity::Problem, text};
}

std::vector<StatusItem> WithFindings(std::vector<StatusItem> items, const ProjectFacts& facts,
                                     const std::optional<StatusItem>& findings) {
  if (!findings) return items;
  if (findings->severity != Severity::Problem) {
    items.push_back(*findings);
  } else if (!facts.failure) {
    items.insert(items.begin(), *findings);
  } else {
    items.front().text = FailureText(*facts.failure);
    items.insert(items.begin(),
                 {{Severity::Problem, FileNameOf(facts.path) + " does not load"}, *findings});
  }
  return items;
}

bool CanPrepare(const check::CheckedProject& checked) {
  return checked.verdict == check::Verdict::Loses;
}

FindingsList::FindingsList(CheckedPtr checked) : checked_(std::move(checked)) {
  if (checked_ == nullptr) return;
  order_.resize(checked_->findings.size());
  SortBy(FindingColumn::Gravity, false);
}

const Finding& FindingsList::At(std::size_t row) const {
  return checked_->findings[order_[row]];
}

std::string FindingsList::CellText(std::size_t row, FindingColumn column) const {
  const Finding& finding = At(row);
  switch (column) {
    case FindingColumn::Gravity:
      return GravityWord(finding.severity);
    case FindingColumn::Line:
      return finding.line > 0 ? std::to_string(finding.line) : std::string();
    case FindingColumn::Event:
      return NumberText(finding.entry);
    case FindingColumn::Text:
      return OneLine(finding.text);
    case FindingColumn::Effect:
      return OneLine(finding.effect);
    case FindingColumn::Remedy:
      return OneLine(finding.remedy);
  }
  return {};
}

void FindingsList::SortBy(FindingColumn column, bool falling) {
  std::iota(order_.begin(), order_.end(), 0U);  // the findings stand in the order of the file
  std::stable_sort(order_.begin(), order_.end(), [&](std::uint32_t a, std::uint32_t b) {
    const int order = Compare(checked_->findings[a], checked_->findings[b], column);
    return falling ? order > 0 : order < 0;
  });
}

std::size_t FindingsList::RowOf(std::size_t number) const {
  const auto found = std::find(order_.begin(), order_.end(), number);
  return static_cast<std::size_t>(found - order_.begin());
}

std::string FindingsList::Headline() const {
  if (checked_ == nullptr) return {};
  const std::string name = FileNameOf(checked_->path);
  const std::string notes = Counted(checked_->Count(check::Severity::Note), "note");
  const bool hasNotes = checked_->Count(check::Severity::Note) > 0;
  const std::string summary = check::SummaryLine(*checked_);
  if (!summary.empty()) return name + ": " + summary + (hasNotes ? "; and " + notes : "");
  return name + ": " + (hasNotes ? notes + ", nothing is lost" : "nothing to find fault with");
}

std::string FindingsList::FullText(std::size_t row) const {
  const Finding& finding = At(row);
  std::string text = check::RowOf(finding.code).title;
  text += "\n" + std::string(GravityWord(finding.severity)) + " \u00b7 " +
          PlaceText(finding.line, finding.entry, finding.source);
  text += "\n\n" + finding.text;
  if (!finding.effect.empty()) text += "\n\nWhat happens: " + finding.effect;
  if (!finding.remedy.empty()) text += "\n\nWhat helps: " + finding.remedy;
  return text;
}

std::string FindingsList::CopyText(const std::vector<std::size_t>& rows) const {
  std::string text = Headline() + "\n";
  for (const std::size_t row : rows) {
    const Finding& finding = At(row);
    text += "\n" + std::string(GravityWord(finding.severity)) + ". " +
            PlaceText(finding.line, finding.entry, finding.source) + ": " + finding.text + "\n";
    if (!finding.effect.empty()) text += "  What happens: " + finding.effect + "\n";
    if (!finding.remedy.empty()) text += "  What helps: " + finding.remedy + "\n";
  }
  return text;
}

std::string PlaceText(std::int64_t line, std::optional<std::int32_t> entry,
                      std::optional<std::int32_t> source) {
  std::string text = line > 0 ? "Line " + std::to_string(line) : "The whole file";
  if (entry) text += ", event " + std::to_string(*entry);
  if (source) text += ", source " + std::to_string(*source);
  return text;
}

std::string OneLine(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](char c) { return (c >= 0 && c < ' ') || c == '\x7F'; }, ' ');
  return text;
}

}  // namespace velmora::desktop
