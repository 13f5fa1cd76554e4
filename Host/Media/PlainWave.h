#pragma once

#include <cstdio>
#include <optional>

#include "Media/AudioFacts.h"

namespace velmora::media {

/// What a wave file is that leaves nothing to interpret: 16, 24 or 32-bit integers, common chunks
/// of even size in the usual order, and sizes that fit each other and the file. The system and
/// libsndfile read such a file alike, so that neither needs to be asked: 300 of them take 10 ms
/// less, of which 5 are the loading of libsndfile.
///
/// None for any other file, for an empty one, and where a read failed: then only the readers tell.
/// The audio itself is not read.
[[nodiscard]] std::optional<AudioFacts> FactsOfPlainWave(std::FILE* stream);

}  // namespace velmora::media
