#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace velmora {

/// A four-character code as the 32-bit number that reads the same in big-endian order.
[[nodiscard]] constexpr std::uint32_t FourCharCode(const char (&code)[5]) {
  std::uint32_t value = 0;
  for (int i = 0; i < 4; ++i) {
    value = value << 8 | static_cast<std::uint8_t>(code[i]);
  }
  return value;
}

/// One keyword with its data, numbers in the machine's byte order.
struct RegionParameter {
  std::uint32_t key;
  std::uint32_t type;
  std::vector<std::uint8_t> data;
};

/// The message that places one region, as a value: what an Apple Event carries, apart from how it
/// is sent.
struct RegionMessage {
  std::uint32_t eventClass, eventId, target;  ///< 'Sd2a', 'SRgn', the application 'PTul'
  std::int16_t returnId;
  std::int32_t transactionId;
  std::int32_t sendMode;
  std::int32_t timeoutTicks;                ///< of 1/60 second
  std::vector<RegionParameter> parameters;  ///< FILE, Trak, FFrm, TkOf, SMSt, Strm
  std::vector<RegionParameter> region;      ///< the record 'Rgn ': Star, Stop, Name
};

/// The facts of one region that a message carries.
struct RegionPlacement {
  std::int16_t track = 0;     ///< from 0
  std::int64_t position = 0;  ///< on the timeline, in samples; cut to the width of a long
  std::int16_t stream = 1;
  bool relative = false;   ///< `track` counts from the host's first; else it is absolute
  std::int32_t start = 0;  ///< first sample inside the file
  std::int32_t stop = 0;   ///< end inside the file, exclusive
};

/// Builds the message for a file that `alias` names. A `name` over 255 bytes is cut there, while
/// its length byte wraps.
[[nodiscard]] RegionMessage BuildRegionMessage(const RegionPlacement& placement,
                                               std::string_view name,
                                               std::vector<std::uint8_t> alias);

/// The same in a message that has been used before: its memory is used again. The alias, the data
/// of the first parameter, stays as it is.
void FillRegionMessage(const RegionPlacement& placement, std::string_view name,
                       RegionMessage& message);

/// Where messages go.
class RegionHost {
 public:
  virtual ~RegionHost() = default;
  /// Makes the record by which the host finds the file at `path`. 0, or a status: -43 if the path
  /// does not exist.
  virtual std::int32_t MakeAlias(const char* path, std::vector<std::uint8_t>& alias) = 0;
  /// Hands the message over. 0, or a status, of which the low 16 bits count.
  virtual std::int32_t Send(const RegionMessage& message) = 0;
  /// Places a region of the file at `path`: makes the alias, builds the message and sends it. A
  /// host inside this program may do that in one, with the same answers.
  /// @return 0, or the status of the step that failed, its low 16 bits sign-extended
  virtual std::int32_t Place(const char* path, const RegionPlacement& placement,
                             std::string_view name);
};

}  // namespace velmora
