#include "Prepare/LostWords.h"

namespace velmora::prepare {

LostWords::LostWords(const check::CheckedProject& checked) : checked_(checked) {
  for (std::size_t i = 0; i < checked.findings.size(); ++i) {
    const check::Finding& finding = checked.findings[i];
    if (finding.entry) byCodeAndEntry_.try_emplace({finding.code, *finding.entry}, i);
  }
}

check::Finding LostWords::Of(std::size_t event, check::Code code, const std::string& effect) {
  const field::Event& origin = checked_.project->events[event];
  check::Finding finding;
  if (const auto known = byCodeAndEntry_.find({code, origin.number});
      known != byCodeAndEntry_.end()) {
    finding = checked_.findings[known->second];
  } else {
    finding.code = code;
    finding.line = LineOf(event);
    finding.column = 1;
    finding.entry = origin.number;
    if (origin.source) finding.source = checked_.project->sources[*origin.source].index;
    finding.text = check::RowOf(code).title;
  }
  finding.severity = check::Severity::Lost;
  finding.effect = effect;
  finding.remedy = "Put it right in the program that wrote the project, or do without it.";
  return finding;
}

std::int64_t LostWords::LineOf(std::size_t event) {
  const field::Project& project = *checked_.project;
  if (!lines_) lines_.emplace(project.bytes.data(), project.bytes.size());
  const field::Entry& entry = project.tree.entries[project.events[event].place];
  return lines_->LineAt(project.tree.OffsetOf(entry.label));
}

}  // namespace velmora::prepare
