#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Check/Finding.h"
#include "Check/SourceMedia.h"
#include "Field/FieldProject.h"
#include "Media/MediaSearch.h"

namespace velmora::check {

struct CheckOptions {
  std::vector<std::string> mediaFolders;  ///< absolute, in the order in which they are searched
  field::ReadOptions reading;
  std::optional<double> sessionRate;             ///< Hz; none: as the earliest cut says
  std::optional<std::int32_t> sessionFrameRate;  ///< code 0 to 7; none: as the earliest cut says
  /// Looks for media only where the system looks, and takes all others for missing. Enough to tell
  /// whether there are findings, without a walk through folders.
  bool atAGlance = false;
};

enum class Verdict { Clean, Loses, Unreadable };

/// The name in JSON: "clean", "loses", "unreadable".
[[nodiscard]] const char* NameOf(Verdict verdict);

/// A project with everything that is known of it, and what was found.
struct CheckedProject {
  std::string path;  ///< absolute
  Verdict verdict = Verdict::Unreadable;
  std::unique_ptr<field::Project> project;  ///< null if the file could not be read at all
  SourceMediaList media;                    ///< one for each source of the project, in its order
  std::vector<Finding> findings;            ///< by place in the file, those of the whole file first

  [[nodiscard]] std::size_t Count(Severity severity) const;
};

/// Checks one project. Touches nothing, and is callable from many threads at once.
/// @param path      absolute
/// @param cancelled asked now and then; may be empty. A check that was cancelled is to be thrown
/// away.
[[nodiscard]] CheckedProject CheckProject(const std::string& path, const CheckOptions& options,
                                          media::FolderListings& listings,
                                          const std::function<bool()>& cancelled = {});

/// What a check says of a project that needs more memory than there is.
[[nodiscard]] CheckedProject OutOfMemory(const std::string& path);

/// What a check says in one line: "3 findings: 2 lose something, 1 fails", for programs that only
/// point to it, or that it is no ADL. Empty if nothing fails, is misplaced or lost.
[[nodiscard]] std::string SummaryLine(const CheckedProject& checked);

}  // namespace velmora::check
