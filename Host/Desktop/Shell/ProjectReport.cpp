#include "Desktop/Shell/ProjectReport.h"

#include <algorithm>
#include <set>

#include "ADL/ShiftJis.h"
#include "Base/FileNames.h"
#include "Base/Text.h"
#include "Session/SessionClock.h"
#include "Spot/SpotOptions.h"
#include "Timecode/AdlTime.h"

namespace velmora::desktop {
namespace {

constexpr std::size_t kNamedFiles = 3;  // in the status line; the rest are a click away

/// The project's name in a sentence; a path that ends with a slash has none but itself.
std::string ProjectName(const ProjectFacts& facts) {
  const std::string name = FileNameOf(facts.path);
  return name.empty() ? facts.path : name;
}

/// The file name of a source's location, without the quotation marks around it.
std::string SourceName(std::int32_t index, const AES31SourceFile& source) {
  std::string location = ShiftJisToUtf8(source.fValues[0]);
  if (location.size() > 1 && location.front() == '"') location.erase(0, 1);
  if (!location.empty() && location.back() == '"') location.pop_back();
  const std::string name = FileNameOf(location);
  return name.empty() ? "source " + std::to_string(index) + " (no location)" : name;
}

void FindMissing(ProjectFacts& facts, const AES31Project& project,
                 const std::set<std::int32_t>& named) {
  for (const std::int32_t index : named) {
    const auto source = project.sourceFiles.find(index);
    if (source == project.sourceFiles.end()) {
      facts.missing.push_back("source " + std::to_string(index) + " (not in the source index)");
    } else if (source->second.file == nullptr) {
      facts.missing.push_back(SourceName(index, source->second));
    }
  }
}

std::string FailureText(const ProjectFacts& facts) {
  const LoadFailure& failure = *facts.failure;
  std::string text = ProjectName(facts) + " does not load: ";
  if (failure.line > 0) text += "line " + std::to_string(failure.line) + ", ";
  if (!failure.section.empty()) text += "section " + ShiftJisToUtf8(failure.section.c_str()) + ", ";
  if (!failure.label.empty()) text += "(" + ShiftJisToUtf8(failure.label.c_str()) + "): ";
  return text + failure.reason;
}

std::string MissingText(const ProjectFacts& facts) {
  std::string text = std::to_string(facts.missing.size()) + " of " +
                     Counted(facts.sources, "audio file") + " missing: ";
  for (std::size_t i = 0; i < std::min(kNamedFiles, facts.missing.size()); ++i) {
    if (i > 0) text += ", ";
    text += facts.missing[i];
  }
  if (facts.missing.size() > kNamedFiles) {
    text += " and " + std::to_string(facts.missing.size() - kNamedFiles) + " more";
  }
  return text;
}

void DescribeRates(const ProjectFacts& facts, const host::SessionRates& session,
                   std::vector<StatusItem>& items) {
  const char* earliest = facts.earliest.c_str();
  const double projectRate = AdlSampleRate(earliest);
  if (projectRate != static_cast<double>(session.sampleRate)) {
    items.push_back(
        {Severity::Notice, (projectRate > 0 ? "Project at " + host::SampleRateName(projectRate)
                                            : "Project names no sample rate") +
                               ", session at " + host::SampleRateName(session.sampleRate)});
  }
  SpotOptions options;
  options.sessionRate = static_cast<std::int32_t>(session.sampleRate);
  options.frameRate = session.frameRate;
  const std::int64_t moved = Compensation(options, earliest);
  if (moved != 0) {
    items.push_back({Severity::Notice, "The session's timebase moves everything by " +
                                           std::to_string(moved) + " samples"});
  }
}

}  // namespace

ProjectFacts GatherFacts(const std::string& path, const AES31Project* project,
                         const std::optional<LoadFailure>& failure) {
  ProjectFacts facts;
  facts.path = path;
  facts.failure = failure;
  if (project == nullptr) {
    if (!facts.failure) {
      facts.failure =
          LoadFailure{LoadFailureCode::FileNotRead, 0, "", "", "the file cannot be read"};
    }
    return facts;
  }
  const char* earliest = nullptr;
  std::set<std::int32_t> named;
  for (const AES31Event& event : project->events) {
    if (!IsCut(event)) {
      ++facts.others;
      continue;
    }
    ++facts.cuts;
    named.insert(event.cut.sourceIndex);
    if (earliest == nullptr || AdlDifference(earliest, event.cut.destIn) < 0) {
      earliest = event.cut.destIn;
    }
  }
  if (earliest != nullptr) facts.earliest = earliest;
  facts.sources = named.size();
  FindMissing(facts, *project, named);
  return facts;
}

std::vector<StatusItem> DescribeProject(const ProjectFacts& facts,
                                        const host::SessionRates& session) {
  if (facts.path.empty()) {
    return {{Severity::Quiet, "Choose an ADL file to begin"}};
  }
  if (facts.failure) return {{Severity::Problem, FailureText(facts)}};
  if (facts.cuts == 0) {
    return {{Severity::Problem, ProjectName(facts) + " has no cut: there is nothing to place"}};
  }
  std::vector<StatusItem> items;
  if (!facts.missing.empty()) items.push_back({Severity::Problem, MissingText(facts)});
  DescribeRates(facts, session, items);
  if (facts.missing.empty()) {
    items.push_back({Severity::Quiet, Counted(facts.cuts, "cut") + " from " +
                                          Counted(facts.sources, "audio file") + ", all found"});
  }
  // The view lists these in red like cuts whose file is missing.
  if (facts.others > 0) {
    items.push_back({Severity::Quiet, Counted(facts.others, "event") +
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
  for (const std::string& name : facts.missing) list += name + "\n";
  return list;
}

}  // namespace velmora::desktop
