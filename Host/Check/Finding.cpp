#include "Check/Finding.h"

namespace velmora::check {

const char* NameOf(Severity severity) {
  constexpr std::array kNames = {"fails", "misplaced", "lost", "note"};
  return kNames[static_cast<std::size_t>(severity)];
}

}  // namespace velmora::check
