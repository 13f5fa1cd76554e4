#include "Embedded/RegionMessageReader.h"

#include <array>
#include <cstddef>
#include <cstring>
#include <span>

namespace velmora::host {
namespace {

constexpr std::uint32_t kTypeAlias = FourCharCode("alis");
constexpr std::uint32_t kTypeShort = FourCharCode("shor");
constexpr std::uint32_t kTypeLong = FourCharCode("long");
constexpr std::uint32_t kTypeText = FourCharCode("TEXT");

constexpr std::int16_t kAutoReturnId = -1;
constexpr std::int32_t kAnyTransaction = 0;
constexpr std::int32_t kWaitReplyCanInteract = 0x23;
constexpr std::int32_t kTimeoutTicks = 100;
constexpr std::int16_t kTracksFromFirst = -99;
constexpr std::size_t kAnySize = 0;
constexpr std::size_t kNameBytes = 256;

struct Keyword {
  std::uint32_t key;
  std::uint32_t type;
  std::size_t size;  // bytes
};

enum : std::size_t { kFile, kTrack, kFirstFrame, kTrackOffset, kPosition, kStream };
constexpr auto kParameters = std::to_array<Keyword>({
    {FourCharCode("FILE"), kTypeAlias, kAnySize},
    {FourCharCode("Trak"), kTypeShort, 2},
    {FourCharCode("FFrm"), kTypeShort, 2},
    {FourCharCode("TkOf"), kTypeShort, 2},
    // Typed as 32 bits, but sent in the width of the machine's long.
    {FourCharCode("SMSt"), kTypeLong, sizeof(long)},
    {FourCharCode("Strm"), kTypeShort, 2},
});

enum : std::size_t { kStart, kStop, kName };
constexpr auto kRegion = std::to_array<Keyword>({
    {FourCharCode("Star"), kTypeLong, 4},
    {FourCharCode("Stop"), kTypeLong, 4},
    {FourCharCode("Name"), kTypeText, kNameBytes},
});

MacStatus CheckEnvelope(const RegionMessage& message) {
  if (message.eventClass != FourCharCode("Sd2a") || message.eventId != FourCharCode("SRgn")) {
    return errAEEventNotHandled;
  }
  if (message.target != FourCharCode("PTul")) return procNotFound;
  if (message.returnId != kAutoReturnId || message.transactionId != kAnyTransaction) {
    return paramErr;
  }
  if (message.sendMode != kWaitReplyCanInteract) return errAEUnknownSendMode;
  return message.timeoutTicks == kTimeoutTicks ? noErr : paramErr;
}

MacStatus CheckKeyword(const RegionParameter& parameter, const Keyword& keyword) {
  if (parameter.key != keyword.key) return errAEDescNotFound;
  if (parameter.type != keyword.type) return errAEWrongDataType;
  const std::size_t size = parameter.data.size();
  const bool fits = keyword.size == kAnySize ? size > 0 : size == keyword.size;
  return fits ? noErr : errAECoercionFail;
}

MacStatus CheckKeywords(const std::vector<RegionParameter>& parameters,
                        std::span<const Keyword> keywords) {
  for (std::size_t i = 0; i < keywords.size(); ++i) {
    if (i == parameters.size()) return errAEDescNotFound;
    const MacStatus status = CheckKeyword(parameters[i], keywords[i]);
    if (status != noErr) return status;
  }
  return parameters.size() == keywords.size() ? noErr : errAEParamMissed;
}

/// A number in the machine's byte order; the size of the data has been checked.
template <class Number>
Number Read(const RegionParameter& parameter) {
  Number number;
  std::memcpy(&number, parameter.data.data(), sizeof number);
  return number;
}

MacStatus ReadTrack(std::int16_t number, std::int16_t offset, std::int64_t& track) {
  if (number == kTracksFromFirst) {
    track = offset;
    return offset >= 0 ? noErr : paramErr;
  }
  track = number - 1;
  return number >= 1 && offset == 0 ? noErr : paramErr;
}

std::string_view ReadPascal(const std::vector<std::uint8_t>& data) {
  return {reinterpret_cast<const char*>(data.data()) + 1, data[0]};
}

}  // namespace

MacStatus ReadRegionMessage(const RegionMessage& message, ReceivedRegion& region) {
  if (const MacStatus status = CheckEnvelope(message); status != noErr) return status;
  const auto& parameters = message.parameters;
  if (const MacStatus status = CheckKeywords(parameters, kParameters); status != noErr) {
    return status;
  }
  if (const MacStatus status = CheckKeywords(message.region, kRegion); status != noErr) {
    return status;
  }
  if (Read<std::int16_t>(parameters[kFirstFrame]) != 1) return paramErr;
  region.alias = &parameters[kFile].data;
  region.position = Read<long>(parameters[kPosition]);
  region.stream = Read<std::int16_t>(parameters[kStream]);
  region.start = Read<std::int32_t>(message.region[kStart]);
  region.stop = Read<std::int32_t>(message.region[kStop]);
  region.name = ReadPascal(message.region[kName].data);
  return ReadTrack(Read<std::int16_t>(parameters[kTrack]),
                   Read<std::int16_t>(parameters[kTrackOffset]), region.track);
}

}  // namespace velmora::host
