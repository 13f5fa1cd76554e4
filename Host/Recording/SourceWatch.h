#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "Base/FileStamp.h"
#include "Spot/SpotWorker.h"

namespace velmora::recording {

/// Sees whether the files that a spot reads stay as they are meanwhile. A file that gets shorter is
/// read as silence from there on, and what is made of it would pass for whole.
class SourceWatch {
 public:
  /// Looks at the files of all ticked cuts.
  explicit SourceWatch(const SpotProject& project);

  /// Those that have changed or gone since then, each told once.
  [[nodiscard]] std::vector<std::string> TakeChanged();

 private:
  std::map<std::string, std::optional<FileStamp>> stamps_;  ///< by path
};

}  // namespace velmora::recording
