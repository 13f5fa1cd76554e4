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
void PutNumber(RegionParameter& parameter, std::uint32_t key, std::uint32_t type, Number number) {
  parameter.key = key;
  parameter.type = type;
  parameter.data.resize(sizeof number);
  std::memcpy(parameter.data.data(), &number, sizeof number);
}

void PutShort(RegionParameter& parameter, std::uint32_t key, std::int16_t number) {
  PutNumber(parameter, key, FourCharCode("shor"), number);
}

template <class Number>
void PutLong(RegionParameter& parameter, std::uint32_t key, Number number) {
  PutNumber(parameter, key, FourCharCode("long"), number);
}

/// A Pascal string in a field of fixed size. The length byte wraps for a name that does not fit.
void PutName(RegionParameter& parameter, std::string_view name) {
  parameter.key = FourCharCode("Name");
  parameter.type = FourCharCode("TEXT");
  parameter.data.assign(kNameBytes, 0);
  parameter.data[0] = static_cast<std::uint8_t>(name.size() & 0xFF);
  std::copy_n(name.begin(), std::min(name.size(), kNameBytes - 1), parameter.data.begin() + 1);
}

/// Statuses of the host's system are 16 bits wide.
std::int32_t StatusOf(std::int32_t status) {
  return static_cast<std::int16_t>(static_cast<std::uint16_t>(status));
}

}  // namespace

void FillRegionMessage(const RegionPlacement& placement, std::string_view name,
                       RegionMessage& message) {
  const auto absoluteTrack =
      static_cast<std::int16_t>(static_cast<std::uint16_t>(placement.track + 1));
  const bool relative = placement.relative;

  message.eventClass = FourCharCode("Sd2a");
  message.eventId = FourCharCode("SRgn");
  message.target = FourCharCode("PTul");
  message.returnId = kAutomaticReturnId;
  message.transactionId = kAnyTransaction;
  message.sendMode = kWaitReply | kCanInteract;
  message.timeoutTicks = kTimeoutTicks;

  std::vector<RegionParameter>& parameters = message.parameters;
  parameters.resize(6);
  parameters[0].key = FourCharCode("FILE");
  parameters[0].type = FourCharCode("alis");
  PutShort(parameters[1], FourCharCode("Trak"), relative ? kRelativeTrack : absoluteTrack);
  PutShort(parameters[2], FourCharCode("FFrm"), 1);
  PutShort(parameters[3], FourCharCode("TkOf"), relative ? placement.track : std::int16_t{0});
  // The width of the machine's long, though the type says 32 bits: hosts rely on it.
  PutLong(parameters[4], FourCharCode("SMSt"), static_cast<long>(placement.position));
  PutShort(parameters[5], FourCharCode("Strm"), placement.stream);

  std::vector<RegionParameter>& region = message.region;
  region.resize(3);
  PutLong(region[0], FourCharCode("Star"), placement.start);
  PutLong(region[1], FourCharCode("Stop"), placement.stop);
  PutName(region[2], name);
}

RegionMessage BuildRegionMessage(const RegionPlacement& placement, std::string_view name,
                                 std::vector<std::uint8_t> alias) {
  RegionMessage message{};
  FillRegionMessage(placement, name, message);
  message.parameters[0].data = std::move(alias);
  return message;
}

std::int32_t RegionHost::Place(const char* path, const RegionPlacement& placement,
                               std::string_view name) {
  std::vector<std::uint8_t> alias;
  const std::int32_t aliasStatus = StatusOf(MakeAlias(path, alias));
  if (aliasStatus != 0) return aliasStatus;
  return StatusOf(Send(BuildRegionMessage(placement, name, std::move(alias))));
}

}  // namespace velmora
