#include "Media/AudioFacts.h"

#include <array>

namespace velmora::media {

const char* NameOf(FileKind kind) {
  constexpr std::array kNames = {"pcm", "extensible", "float", "rf64", "other"};
  return kNames[static_cast<std::size_t>(kind)];
}

}  // namespace velmora::media
