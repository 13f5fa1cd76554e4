#include "Program/Hosts.h"

#include "Embedded/EmbeddedKind.h"

namespace velmora::program {

host::HostTable Hosts() {
  static constexpr const host::HostKind* kHosts[] = {
      &host::kEmbeddedKind,
  };
  return kHosts;
}

}  // namespace velmora::program
