#pragma once

#include <memory>
#include <span>
#include <string>

#include "Session/Session.h"
#include "Session/SessionHost.h"
#include "Session/SessionTarget.h"

namespace velmora::host {

enum class TargetUse { Optional, Required };

/// One kind of host: a row of the table that a program's help, its command line and its spot read.
/// Each host defines its row in its own folder.
struct HostKind {
  const char* name;          ///< what stands before the colon of NAME[:TARGET]
  const TargetKind* target;  ///< what may stand after it
  TargetUse targetUse;
  const char* help;  ///< one or more lines

  /// Makes the host that receives the regions and places them in `session`.
  std::unique_ptr<SessionHost> (*connect)(Session& session);
};

using HostTable = std::span<const HostKind* const>;

/// What somebody asked for as NAME[:TARGET].
struct HostChoice {
  const HostKind* kind = nullptr;
  std::string target;  ///< empty for none
};

/// Finds the host that a text names, and its target.
/// @param choice is to be used only if the answer is empty
/// @return an empty text, or what is wrong
[[nodiscard]] std::string ParseHost(HostTable hosts, const std::string& text, HostChoice& choice);

/// How a host is written: "embedded[:FILE.json]".
[[nodiscard]] std::string HostForm(const HostKind& kind);

}  // namespace velmora::host
