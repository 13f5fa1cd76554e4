#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "Embedded/MacStatus.h"
#include "Spot/RegionMessage.h"

namespace velmora::host {

/// What a message says, read from its bytes. Views the message, which must outlive it.
struct ReceivedRegion {
  const std::vector<std::uint8_t>* alias = nullptr;
  std::int64_t track = 0;     ///< from 0, the session's first track
  std::int64_t position = 0;  ///< on the timeline, in samples
  std::int32_t stream = 0;
  std::int32_t start = 0;  ///< first sample inside the file
  std::int32_t stop = 0;   ///< end inside the file, exclusive
  std::string_view name;
};

/// Reads a message, knowing nothing of its sender but the form that was agreed: every keyword at
/// its place, with its type and size, and every value inside what it may be.
///
/// | what is wrong                                    | status               |
/// |--------------------------------------------------|----------------------|
/// | event class or id                                | errAEEventNotHandled |
/// | target                                           | procNotFound         |
/// | return id, transaction id, time-out              | paramErr             |
/// | send mode                                        | errAEUnknownSendMode |
/// | a keyword that is missing or at another place    | errAEDescNotFound    |
/// | a keyword too many                               | errAEParamMissed     |
/// | the type of a keyword                            | errAEWrongDataType   |
/// | the size of a keyword's data                     | errAECoercionFail    |
/// | 'FFrm' not 1, 'Trak' below 1 and not -99,        | paramErr             |
/// | 'TkOf' below 0, or not 0 beside a track's number |                      |
///
/// @param region is to be used only if the answer is noErr
[[nodiscard]] MacStatus ReadRegionMessage(const RegionMessage& message, ReceivedRegion& region);

}  // namespace velmora::host
