#include "Check/Findings.h"

#include <algorithm>
#include <utility>

#include "Field/TextPlaces.h"

namespace velmora::check {

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
      stretches[i].end = next != sectionStarts.end() ? *next : tree.file.size();
      if (i + 1 < stretches.size()) {
        stretches[i].end = std::min(stretches[i].end, stretches[i + 1].begin);
      }
    }
  };
  eventStretches_.reserve(project.events.size());
  for (std::size_t i = 0; i < project.events.size(); ++i) {
    eventStretches_.push_back({tree.OffsetOf(tree.entries[project.events[i].place]), 0, i});
  }
  close(eventStretches_);
  for (std::size_t i = 0; i < project.sources.size(); ++i) {
    sourceStretches_.push_back({tree.OffsetOf(tree.entries[project.sources[i].place]), 0, i});
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
  return offset < stretch.end ? std::optional(stretch.which) : std::nullopt;
}

std::optional<std::size_t> Findings::EventAt(std::size_t offset) const {
  return Find(eventStretches_, offset);
}

std::optional<std::size_t> Findings::SourceAt(std::size_t offset) const {
  return Find(sourceStretches_, offset);
}

void Findings::Add(Code code, Severity severity, const Place& place, Words words) {
  Pending pending;
  pending.place = place;
  if (place.offset != Place::kWhole) {
    if (!place.event) pending.place.event = EventAt(place.offset);
    if (!place.source && !pending.place.event) pending.place.source = SourceAt(place.offset);
  }
  pending.finding.code = code;
  pending.finding.severity = severity;
  pending.finding.text = std::move(words.text);
  pending.finding.effect = std::move(words.effect);
  pending.finding.remedy = std::move(words.remedy);
  FillNumbers(pending);
  if (severity != Severity::Note) {
    if (pending.place.event) {
      seriousEvents_[*pending.place.event] = true;
    } else if (pending.place.source) {
      seriousSources_[*pending.place.source] = true;
    }
  }
  pending_.push_back(std::move(pending));
}

void Findings::FillNumbers(Pending& pending) const {
  if (pending.place.event) pending.finding.entry = project_.events[*pending.place.event].number;
  if (pending.place.source) pending.finding.source = project_.sources[*pending.place.source].index;
}

bool Findings::Has(Code code, Severity severity) const {
  return std::any_of(pending_.begin(), pending_.end(), [&](const Pending& pending) {
    return pending.finding.code == code && pending.finding.severity == severity;
  });
}

std::vector<Finding> Findings::Finish() && {
  // One more than the whole file's number is 0: it comes first.
  std::stable_sort(pending_.begin(), pending_.end(), [](const Pending& a, const Pending& b) {
    return a.place.offset + 1 < b.place.offset + 1;
  });
  const field::TextPlaces places(project_.tree.file);
  std::vector<Finding> findings;
  findings.reserve(pending_.size());
  for (Pending& pending : pending_) {
    if (pending.place.offset != Place::kWhole) {
      const field::TextPlace place = places.At(pending.place.offset);
      pending.finding.line = place.line;
      pending.finding.column = place.column;
    }
    findings.push_back(std::move(pending.finding));
  }
  return findings;
}

}  // namespace velmora::check
