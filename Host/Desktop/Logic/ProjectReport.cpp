#include "Desktop/Logic/ProjectReport.h"

#include <algorithm>

#include "Base/FileNames.h"
#include "Base/Text.h"

namespace velmora::desktop {
namespace {

constexpr std::size_t kNamedFiles = 3;  // in the status line; the rest are a click away

/// The project's name in a sentence; a path that ends with a slash has none but itself.
std::string ProjectName(const ProjectFacts& facts) {
  const std::string name = FileNameOf(facts.path);
  return name.empty() ? facts.path : name;
}

std::string NameOfMissing(const MissingSource& source) {
  if (!source.fileName.empty()) return source.fileName;
  return "source " + std::to_string(source.index) +
         (source.isInIndex ? " (no location)" : " (not in the source index)");
}

std::string MissingText(const ProjectSummary& summary) {
  const std::vector<MissingSource>& missing = summary.missing;
  std::string text = std::to_string(missing.size()) + " of " +
                     Counted(summary.sources, "audio file") + " missing: ";
  for (std::size_t i = 0; i < std::min(kNamedFiles, missing.size()); ++i) {
    if (i > 0) text += ", ";
    text += NameOfMissing(missing[i]);
  }
  if (missing.size() > kNamedFiles) {
    text += " and " + std::to_string(missing.size() - kNamedFiles) + " more";
  }
  return text;
}

void DescribeRates(const RateComparison& rates, std::vector<StatusItem>& items) {
  using Relation = RateComparison::Relation;
  const std::string session = ", session at " + host::SampleRateName(rates.sessionRate);
  if (rates.relation == Relation::Different) {
    items.push_back(
        {Severity::Notice, "Project at " + host::SampleRateName(rates.projectRate) + session});
  } else if (rates.relation == Relation::Unknown) {
    items.push_back({Severity::Notice, "Project names no sample rate" + session});
  }
  if (rates.movedSamples != 0) {
    items.push_back({Severity::Notice, "The session's timebase moves everything by " +
                                           std::to_string(rates.movedSamples) + " samples"});
  }
}

}  // namespace

ProjectFacts GatherFacts(const std::string& path, const AES31Project* project,
                         const LoadFailure* failure) {
  ProjectFacts facts;
  facts.path = path;
  if (failure != nullptr) facts.failure = *failure;
  if (project != nullptr) facts.summary = Summarize(*project);
  return facts;
}

std::vector<StatusItem> DescribeProject(const ProjectFacts& facts,
                                        const host::SessionRates& session) {
  if (facts.path.empty()) return {{Severity::Quiet, "Choose an ADL file to begin"}};
  if (facts.failure) {
    return {
        {Severity::Problem, ProjectName(facts) + " does not load: " + FailureText(*facts.failure)}};
  }
  const ProjectSummary& summary = facts.summary;
  if (summary.cuts == 0) {
    return {{Severity::Problem, ProjectName(facts) + " has no cut: there is nothing to place"}};
  }
  std::vector<StatusItem> items;
  if (!summary.missing.empty()) items.push_back({Severity::Problem, MissingText(summary)});
  DescribeRates(CompareRates(summary.earliest.c_str(), session.sampleRate, session.frameRate),
                items);
  if (summary.missing.empty()) {
    items.push_back({Severity::Quiet, Counted(summary.cuts, "cut") + " from " +
                                          Counted(summary.sources, "audio file") + ", all found"});
  }
  // The view lists these in red like cuts whose file is missing.
  if (summary.otherEvents > 0) {
    items.push_back({Severity::Quiet, Counted(summary.otherEvents, "event") +
                                          " without audio, listed in red but not missed"});
  }
  return items;
}

std::string DescribeSession(const host::SessionSummary& summary) {
  if (summary.regions == 0) return {};
  return Counted(summary.regions, "region") + " on " + Counted(summary.tracks, "track") + " from " +
         Counted(summary.files, "file");
}

std::string MissingList(const ProjectFacts& facts) {
  std::string list;
  for (const MissingSource& source : facts.summary.missing) list += NameOfMissing(source) + "\n";
  return list;
}

}  // namespace velmora::desktop
