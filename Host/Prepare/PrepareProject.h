#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "Check/CheckProject.h"
#include "Check/Finding.h"

namespace velmora::prepare {

struct PrepareOptions {
  check::CheckOptions check;
  std::string into;  ///< absolute; must not exist or be an empty folder
  bool copyMedia = false;
  bool keepStereo = false;
  bool keepOff = false;
  bool resample = false;
};

/// One thing that was put right.
struct Change {
  check::Code code = check::Code::NotAnAdl;
  std::int64_t line = 0;               ///< of the ADL that was prepared, from 1
  std::optional<std::int32_t> entry;   ///< as that ADL numbers it
  std::optional<std::int32_t> source;  ///< as that ADL numbers it
  std::string text;
};

enum class HowMade { Linked, Copied, Converted, Split, Resampled };

/// The name in JSON: "linked", "copied", "converted", "split", "resampled".
[[nodiscard]] const char* NameOf(HowMade how);

struct MadeFile {
  std::string from;
  std::string to;  ///< inside the prepared folder
  HowMade how = HowMade::Linked;
};

enum class Outcome {
  Done,
  FolderTaken,  ///< `into` is there and not empty, or cannot be made: nothing was done
  NotAnAdl,
  Left,       ///< prepared, but something is left
  Failed,     ///< could not be written: there is no folder
  Cancelled,  ///< there is no folder
};

struct Prepared {
  Outcome outcome = Outcome::Failed;
  std::string trouble;      ///< path and cause, of FolderTaken, NotAnAdl and Failed
  std::string projectPath;  ///< the prepared ADL: into/NAME.adl
  std::vector<Change> changes;
  std::vector<MadeFile> files;
  /// What remains: first what of the original could not be kept, then what the check of the
  /// prepared project tells.
  std::vector<check::Finding> left;
  /// How many of `left` are of the first kind. They tell lines and numbers of the original, the
  /// others those of the prepared project.
  std::size_t leftOut = 0;
};

/// Progress of a preparation, with what is being done in words for people: "Converting big.wav".
/// Called from the preparing thread; false cancels.
using PrepareProgress = std::function<bool(double share /* 0 to 1 */, const std::string& what)>;

/// Makes a clean project out of a checked one without changing its meaning. The folder appears
/// whole or not at all; the source side is never written to.
[[nodiscard]] Prepared PrepareProject(const check::CheckedProject& checked,
                                      const PrepareOptions& options,
                                      const PrepareProgress& progress = {});

}  // namespace velmora::prepare
