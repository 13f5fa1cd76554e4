#include "Prepare/LostWords.h"

namespace velmora::prepare {

LostWords::LostWords(const check::CheckedProject& checked)
    : checked_(checked),
      remedy_("Put it right in the program that wrote the project, or do without it.") {
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
    finding.line = static_cast<std::int32_t>(LineOf(event));
    finding.column = 1;
    finding.entry = origin.number;
    if (origin.source) finding.source = checked_.project->sources[*origin.source].index;
    finding.text = check::RowOf(code).title;
  }
  finding.severity = check::Severity::Lost;
  if (effect_.Text() != effect) effect_ = effect;
  finding.effect = effect_;
  finding.remedy = remedy_;
  return finding;
}

std::int64_t LostWords::LineOf(std::size_t event) {
  const field::Project& project = *checked_.project;
  if (!lines_) lines_.emplace(project.bytes.data(), project.bytes.size());
  const field::Entry& entry = project.tree.entries[project.events[event].place];
  return lines_->LineAt(project.tree.OffsetOf(entry.label));
}

}  // namespace velmora::prepare
