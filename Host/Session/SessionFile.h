#pragma once

#include <sys/stat.h>

#include <string>

#include "Base/FileAccess.h"
#include "Session/SessionTarget.h"
#include "Session/StagedFile.h"

namespace velmora::host {

/// A file that takes a session as JSON (see SessionJson.h).
///
/// A file that is there is replaced only if it is empty or an earlier session: a mistyped name must
/// not cost a take. It is replaced whole or not at all, and only if it is still what it was when it
/// was claimed. Of several runs that claimed one name the first to write has it, and the others
/// say so. A link to an earlier session is replaced itself, and what it leads to stays.
///
/// Devices, pipes, and names of what the process has open (/dev/stdout) are written to in place.
class SessionFile : public SessionTarget {
 public:
  /// @param path absolute. The complaint names it and what is wrong with it: a folder, a link to
  ///             nothing, a file that cannot be read or is no session, a place that takes no file.
  [[nodiscard]] static ClaimedTarget Claim(const std::string& path);

  [[nodiscard]] TargetOutcome Write(const TargetInput& input,
                                    const TargetProgress& progress) override;

 private:
  explicit SessionFile(std::string path) : path_(std::move(path)) {}

  std::string ClaimFile();
  std::string ClaimInPlace();
  [[nodiscard]] std::string WriteInPlace(const Session& session);
  [[nodiscard]] std::string WriteBeside(const Session& session) const;
  [[nodiscard]] std::string Publish(StagedFile& file) const;
  [[nodiscard]] bool IsAsClaimed() const;
  [[nodiscard]] std::string Trouble(const std::string& cause) const;

  std::string path_;
  FileStream inPlace_;  ///< what is written to in place, open since it was claimed; else null
  /// The earlier session; null if there is none. Held open, so that no later file can be taken for
  /// it: a file that is gone may leave its number to another.
  FileStream earlier_;
  struct stat earlierFacts_ {};
};

}  // namespace velmora::host
