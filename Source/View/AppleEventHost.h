#pragma once

#include <cstdint>
#include <vector>

#include "Spot/RegionMessage.h"

namespace velmora {

/// The host application, reached by Apple Events. Needs the system's Apple Event Manager: built for
/// macOS alone, beside the portable core.
///
/// A call uses nothing but its arguments, so any number of threads may call side by side.
class AppleEventHost : public RegionHost {
 public:
  /// @param path UTF-8, terminated
  /// @return 0, or the system's status if it makes no alias of the file
  std::int32_t MakeAlias(const char* path, std::vector<std::uint8_t>& alias) override;

  /// Sends the message as one Apple Event, and blocks for as long as its mode and time-out tell.
  /// The reply is not asked for: a refusal that only a reply would hold stays unseen.
  /// @return 0, or the status of the first step that failed, its low 16 bits sign-extended; after
  ///         a failed step nothing is sent
  std::int32_t Send(const RegionMessage& message) override;
};

}  // namespace velmora
