#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Session/HeardSession.h"
#include "Session/Session.h"
#include "Session/SpotRecord.h"
#include "Spot/SessionRates.h"

namespace velmora::host {

/// What every target of a spot reads: one session, after its last region has arrived.
struct TargetInput {
  const Session& session;
  const HeardSession& heard;  ///< of that session
  SessionRates rates;
  const SpotRecord& record;
};

/// What became of a target.
struct TargetOutcome {
  /// Empty if the target was made; else its path and the cause, and then nothing stands under its
  /// name.
  std::string trouble;
  /// Regions that it lacks though it was made, each with path and cause. They make the run one in
  /// which something was left out.
  std::vector<std::string> leftOut;
  /// What it tells otherwise than the session has it, or cannot tell. A line each.
  std::vector<std::string> notes;
};

/// Follows a long write: the share that is done, 0 to 1. An answer of false cancels it.
using TargetProgress = std::function<bool(double share)>;

/// A place where a session is written when its last region has arrived. It is claimed before the
/// spot begins, so that a bad name is told before any work is done.
class SessionTarget {
 public:
  virtual ~SessionTarget() = default;
  /// Writes the session, whole or not at all. `progress` may be empty.
  [[nodiscard]] virtual TargetOutcome Write(const TargetInput& input,
                                            const TargetProgress& progress) = 0;
};

/// A claimed target, or none and the reason: the target's name and what stands against it.
struct ClaimedTarget {
  std::unique_ptr<SessionTarget> target;
  std::string complaint;
};

enum class BounceDepth { Bits16, Bits24, Float32 };

/// What somebody may choose for targets beside their names.
struct TargetChoices {
  bool embedMedia = false;  ///< audio inside the target, where it can be
  BounceDepth bounceDepth = BounceDepth::Bits24;
};

/// Which of the choices mean something to a kind of target.
struct OfferedChoices {
  bool embedMedia = false;
  bool bounceDepth = false;
};

/// One kind of target: a row of the table that help, command line, spot and the desktop's menu
/// read. Each target defines its row in its own folder.
struct TargetKind {
  /// What a target makes of a session without regions.
  enum class Use {
    Regions,        ///< it needs one
    Record,         ///< it tells what became of the spot, also of one that placed nothing
    SessionRecord,  ///< it is the session itself
  };

  const char* name;       ///< in JSON and complaints: "dawproject"
  const char* option;     ///< of its own, "--dawproject"; null for a host's target
  const char* form;       ///< what the option takes, as help shows it: "FILE", "DIR"
  const char* extension;  ///< that its files have, ".dawproject"; empty for a folder
  const char* title;      ///< for a menu: "DAWproject"
  const char* help;       ///< one or more lines
  Use use;
  bool canStream = false;  ///< "-" in place of a path is standard output
  /// Looks at a target before the spot begins. `path` is absolute, or "-" where that can be. Makes
  /// nothing there.
  ClaimedTarget (*claim)(const std::string& path, const TargetChoices& choices);
  OfferedChoices offers = {};  ///< that a person may make beside the name
};

}  // namespace velmora::host
