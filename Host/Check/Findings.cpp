#include "Check/Findings.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <tuple>
#include <utility>

#include "Field/TextPlaces.h"

namespace velmora::check {
namespace {

std::uint32_t Narrow(std::size_t place) {
  return static_cast<std::uint32_t>(place);
}

/// The text, as the one that was said before if that is the same.
const SharedText& Share(SharedText& said, std::string text) {
  if (said.Text() != text) said = std::move(text);
  return said;
}

}  // namespace

Findings::Findings(const field::Project& project)
    : project_(project),
      seriousEvents_(project.events.size()),
      seriousSources_(project.sources.size()) {
  const field::Tree& tree = project.tree;
  // A section ends where the next begins, and so does what is listed in it last.
  std::vector<std::size_t> sectionStarts;
  for (const field::Section& section : tree.sections) {
    const std::size_t name = tree.OffsetOf(section.name);
    sectionStarts.push_back(name > 0 ? name - 1 : 0);
  }
  std::sort(sectionStarts.begin(), sectionStarts.end());
  const auto close = [&](std::vector<Stretch>& stretches) {
    std::sort(stretches.begin(), stretches.end(),
              [](const Stretch& a, const Stretch& b) { return a.begin < b.begin; });
    for (std::size_t i = 0; i < stretches.size(); ++i) {
      const auto next =
          std::upper_bound(sectionStarts.begin(), sectionStarts.end(), stretches[i].begin);
      stretches[i].end = Narrow(next != sectionStarts.end() ? *next : tree.file.size());
      if (i + 1 < stretches.size()) {
        stretches[i].end = std::min(stretches[i].end, stretches[i + 1].begin);
      }
    }
  };
  eventStretches_.reserve(project.events.size());
  for (std::size_t i = 0; i < project.events.size(); ++i) {
    const std::size_t begin = tree.OffsetOf(tree.entries[project.events[i].place]);
    eventStretches_.push_back({Narrow(begin), 0, Narrow(i)});
  }
  close(eventStretches_);
  for (std::size_t i = 0; i < project.sources.size(); ++i) {
    const std::size_t begin = tree.OffsetOf(tree.entries[project.sources[i].place]);
    sourceStretches_.push_back({Narrow(begin), 0, Narrow(i)});
  }
  close(sourceStretches_);
}

std::optional<std::size_t> Findings::Find(const std::vector<Stretch>& stretches,
                                          std::size_t offset) {
  const auto after =
      std::upper_bound(stretches.begin(), stretches.end(), offset,
                       [](std::size_t at, const Stretch& stretch) { return at < stretch.begin; });
  if (after == stretches.begin()) return std::nullopt;
  const Stretch& stretch = *(after - 1);
  return offset < stretch.end ? std::optional<std::size_t>(stretch.which) : std::nullopt;
}

std::optional<std::size_t> Findings::EventAt(std::size_t offset) const {
  return Find(eventStretches_, offset);
}

std::optional<std::size_t> Findings::SourceAt(std::size_t offset) const {
  return Find(sourceStretches_, offset);
}

void Findings::Add(Code code, Severity severity, const Place& place, Words words) {
  Place full = place;
  if (place.offset != Place::kWhole) {
    if (!place.event) full.event = EventAt(place.offset);
    if (!place.source && !full.event) full.source = SourceAt(place.offset);
  }
  const std::size_t order = findings_.size();
  Finding& finding = findings_.emplace_back();
  finding.code = code;
  finding.severity = severity;
  finding.line = static_cast<std::int32_t>(place.offset + 1);
  finding.column = static_cast<std::int32_t>(order);
  Said& said = said_[static_cast<std::size_t>(code)];
  finding.text = Share(said.text, std::move(words.text));
  finding.effect = Share(said.effect, std::move(words.effect));
  finding.remedy = Share(said.remedy, std::move(words.remedy));
  FillNumbers(full, finding);
  if (severity == Severity::Note) return;
  if (full.event) {
    seriousEvents_[*full.event] = true;
  } else if (full.source) {
    seriousSources_[*full.source] = true;
  }
}

void Findings::FillNumbers(const Place& place, Finding& finding) const {
  if (place.event) finding.entry = project_.events[*place.event].number;
  if (place.source) finding.source = project_.sources[*place.source].index;
}

bool Findings::Has(Code code, Severity severity) const {
  return std::any_of(findings_.begin(), findings_.end(), [&](const Finding& finding) {
    return finding.code == code && finding.severity == severity;
  });
}

std::vector<Finding> Findings::Finish() && {
  // In place, where a stable sort would take half as much memory again.
  std::sort(findings_.begin(), findings_.end(), [](const Finding& a, const Finding& b) {
    return std::tie(a.line, a.column) < std::tie(b.line, b.column);
  });
  const field::TextPlaces places(project_.tree.file);
  for (Finding& finding : findings_) {
    finding.column = 0;
    if (finding.line == 0) continue;
    const field::TextPlace place = places.At(static_cast<std::size_t>(finding.line - 1));
    finding.line = static_cast<std::int32_t>(place.line);
    finding.column = static_cast<std::int32_t>(place.column);
  }
  return std::move(findings_);
}

}  // namespace velmora::check
