#include <array>

#include "Prepare/PrepareProject.h"

namespace velmora::prepare {

const char* NameOf(HowMade how) {
  constexpr std::array kNames = {"linked", "copied", "converted", "split", "resampled"};
  return kNames[static_cast<std::size_t>(how)];
}

}  // namespace velmora::prepare
