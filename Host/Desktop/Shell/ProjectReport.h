#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "ADL/AES31Project.h"
#include "ADL/LoadFailure.h"
#include "Session/Session.h"
#include "Session/SessionPreset.h"

namespace velmora::desktop {

/// What the shell keeps of a load, apart from the project itself, which can go at any time.
struct ProjectFacts {
  std::string path;                    ///< empty before the first load
  std::optional<LoadFailure> failure;  ///< set if the project did not load
  std::string earliest;                ///< timestamp of the earliest cut, empty without cuts
  std::size_t cuts = 0;
  std::size_t others = 0;            ///< events that are no cuts: listed, but never placed
  std::size_t sources = 0;           ///< that the cuts name
  std::vector<std::string> missing;  ///< of those, the file names that were not found

  bool Loaded() const { return !path.empty() && !failure; }
};

/// Gathers the facts of one load. `project` is null after a failed one.
ProjectFacts GatherFacts(const std::string& path, const AES31Project* project,
                         const std::optional<LoadFailure>& failure);

enum class Severity { Quiet, Notice, Problem };

/// One statement of the status line.
struct StatusItem {
  Severity severity = Severity::Quiet;
  std::string text;
};

/// What is to be said of a load and of the session that it would be spotted to, gravest first.
std::vector<StatusItem> DescribeProject(const ProjectFacts& facts,
                                        const host::SessionRates& session);

/// "12 regions on 4 tracks from 3 files"; empty without regions.
std::string DescribeSession(const host::SessionSummary& summary);

/// All missing files, one a line, for a tool tip or a list.
std::string MissingList(const ProjectFacts& facts);

}  // namespace velmora::desktop
