#include "Spot/RegionMessage.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <utility>

namespace velmora {
namespace {

constexpr std::int16_t kRelativeTrack = -99;
constexpr std::size_t kNameBytes = 256;
constexpr std::int32_t kWaitReply = 3;
constexpr std::int32_t kCanInteract = 0x20;
constexpr std::int32_t kTimeoutTicks = 100;
constexpr std::int16_t kAutomaticReturnId = -1;
constexpr std::int32_t kAnyTransaction = 0;

template <class Number>
RegionParameter NumberParameter(std::uint32_t key, std::uint32_t type, Number number) {
  std::vector<std::uint8_t> data(sizeof number);
  std::memcpy(data.data(), &number, sizeof number);
  return {key, type, std::move(data)};
}

RegionParameter Short(std::uint32_t key, std::int16_t number) {
  return NumberParameter(key, FourCharCode("shor"), number);
}

template <class Number>
RegionParameter Long(std::uint32_t key, Number number) {
  return NumberParameter(key, FourCharCode("long"), number);
}

/// A Pascal string in a field of fixed size. The length byte wraps for a name that does not fit.
RegionParameter Name(std::string_view name) {
  std::vector<std::uint8_t> data(kNameBytes, 0);
  data[0] = static_cast<std::uint8_t>(name.size() & 0xFF);
  std::copy_n(name.begin(), std::min(name.size(), kNameBytes - 1), data.begin() + 1);
  return {FourCharCode("Name"), FourCharCode("TEXT"), std::move(data)};
}

}  // namespace

RegionMessage BuildRegionMessage(const RegionPlacement& placement, std::string_view name,
                                 std::vector<std::uint8_t> alias) {
  const auto absoluteTrack =
      static_cast<std::int16_t>(static_cast<std::uint16_t>(placement.track + 1));
  const bool relative = placement.relative;

  RegionMessage message{};
  message.eventClass = FourCharCode("Sd2a");
  message.eventId = FourCharCode("SRgn");
  message.target = FourCharCode("PTul");
  message.returnId = kAutomaticReturnId;
  message.transactionId = kAnyTransaction;
  message.sendMode = kWaitReply | kCanInteract;
  message.timeoutTicks = kTimeoutTicks;
  message.parameters = {
      {FourCharCode("FILE"), FourCharCode("alis"), std::move(alias)},
      Short(FourCharCode("Trak"), relative ? kRelativeTrack : absoluteTrack),
      Short(FourCharCode("FFrm"), 1),
      Short(FourCharCode("TkOf"), relative ? placement.track : std::int16_t{0}),
      // The width of the machine's long, though the type says 32 bits: hosts rely on it.
      Long(FourCharCode("SMSt"), static_cast<long>(placement.position)),
      Short(FourCharCode("Strm"), placement.stream),
  };
  message.region = {
      Long(FourCharCode("Star"), placement.start),
      Long(FourCharCode("Stop"), placement.stop),
      Name(name),
  };
  return message;
}

}  // namespace velmora
