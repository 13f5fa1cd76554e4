#include "Support/Holds.h"

#include <cstdio>
#include <cstdlib>

namespace velmora::fuzz {

void Hold(bool holds, std::string_view rule, std::string_view found) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %.*s\n%.*s\n", static_cast<int>(rule.size()), rule.data(),
               static_cast<int>(found.size()), found.data());
  std::abort();
}

}  // namespace velmora::fuzz
