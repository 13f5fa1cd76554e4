#pragma once

#include <optional>
#include <string>

#include "Base/FileAccess.h"
#include "Media/AudioFacts.h"
#include "Media/SoundFile.h"
#include "Media/WaveHeader.h"

namespace velmora::media {

// What the facts of a file are made of, for those readers that go on with the open file.

/// @param wave the header of the same file; none if it is no wave file
[[nodiscard]] AudioFacts FactsOf(const SoundFile& sound, const std::optional<WaveHeader>& wave);

struct ComparedFacts {
  FactsOrTrouble read;
  Obstacle obstacle = Obstacle::Broken;
};

/// ReadFacts and CompareReaders in one, for which the file is opened half as often.
/// @param stream the file under this path, if it is open already, or null
[[nodiscard]] ComparedFacts ReadAndCompare(const std::string& path, FileStream stream);

}  // namespace velmora::media
