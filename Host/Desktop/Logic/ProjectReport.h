#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ADL/LoadFailure.h"
#include "Model/ProjectSummary.h"
#include "Session/Session.h"
#include "Session/SessionPreset.h"

namespace velmora::desktop {

/// What the shell keeps of a load, apart from the project itself, which can go at any time.
struct ProjectFacts {
  std::string path;                    ///< empty before the first load
  std::optional<LoadFailure> failure;  ///< set if the project did not load
  ProjectSummary summary;              ///< of a project that did

  [[nodiscard]] bool Loaded() const { return !path.empty() && !failure; }
};

/// The facts of one load: either `project` is null or `failure` is.
[[nodiscard]] ProjectFacts GatherFacts(const std::string& path, const AES31Project* project,
                                       const LoadFailure* failure);

enum class Severity { Quiet, Notice, Problem };

/// One statement of the status line.
struct StatusItem {
  Severity severity = Severity::Quiet;
  std::string text;  ///< UTF-8
};

/// What is to be said of a load and of the session that it would be spotted to, gravest first.
[[nodiscard]] std::vector<StatusItem> DescribeProject(const ProjectFacts& facts,
                                                      const host::SessionRates& session);

/// "12 regions on 4 tracks from 3 files"; empty without regions.
[[nodiscard]] std::string DescribeSession(const host::SessionSummary& summary);

/// All missing files, one a line, for a tool tip or a list.
[[nodiscard]] std::string MissingList(const ProjectFacts& facts);

}  // namespace velmora::desktop
