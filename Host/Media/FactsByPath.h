#pragma once

#include <string>
#include <unordered_map>

#include "Media/AudioFacts.h"

namespace velmora::media {

/// Facts of files by their paths. Each file is read once, when it is first asked for.
class FactsByPath {
 public:
  /// Valid as long as this is.
  const FactsOrTrouble& Of(const std::string& path) {
    const auto [row, isNew] = read_.try_emplace(path);
    if (isNew) row->second = ReadFacts(path);
    return row->second;
  }

 private:
  std::unordered_map<std::string, FactsOrTrouble> read_;
};

}  // namespace velmora::media
