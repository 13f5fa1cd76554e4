// What a host receives: region messages and alias records of any bytes, and those that the system
// makes.
//
//     1 byte   what follows: a record alone, a message of any form, or the facts of a region
//     the rest see ReadMessage

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Embedded/AliasRecord.h"
#include "Embedded/EmbeddedHost.h"
#include "Embedded/RegionMessageReader.h"
#include "Session/Session.h"
#include "Spot/RegionMessage.h"
#include "Support/Holds.h"
#include "Support/Input.h"
#include "Support/WorkFolder.h"

namespace velmora::fuzz {
namespace {

std::vector<std::uint8_t> Octets(std::string_view text) {
  return {text.begin(), text.end()};
}

/// Without the slashes at its front, of which several count as one.
std::string_view BelowRoot(const std::string& path) {
  return std::string_view(path).substr(std::min(path.find_first_not_of('/'), path.size()));
}

bool SameFacts(const host::AliasRecord& a, const host::AliasRecord& b) {
  return a.isFolder == b.isFolder && BelowRoot(a.path) == BelowRoot(b.path) &&
         a.folderId == b.folderId && a.fileId == b.fileId && a.fileDate == b.fileDate;
}

/// A record that is understood can be made again, and tells the same.
void HoldAlias(const std::vector<std::uint8_t>& record) {
  host::AliasRecord alias;
  const host::AliasStatus status = host::DecodeAlias(record, alias);
  Hold(*host::AliasStatusText(status) != '\0', "a status has words");
  if (status != host::AliasStatus::Ok) return;
  Hold(!alias.path.empty() && alias.path[0] == '/', "an alias has an absolute path", alias.path);
  std::vector<std::uint8_t> made;
  if (host::EncodeAlias(alias, made) != host::AliasStatus::Ok) return;  // its names may be too long
  host::AliasRecord again;
  Hold(host::DecodeAlias(made, again) == host::AliasStatus::Ok, "a record made is understood");
  Hold(SameFacts(alias, again), "a record made tells what was to be told", again.path);
}

/// Any path and names make a record that is understood, or none.
void HoldNames(Input input) {
  host::AliasRecord alias;
  alias.isFolder = input.Flag();
  alias.fileId = input.Number<std::uint32_t>();
  alias.folderId = input.Number<std::uint32_t>();
  alias.fileDate = input.Number<std::uint32_t>();
  alias.fileName = input.ShortBytes();
  alias.folderName = input.ShortBytes();
  alias.volumeName = input.ShortBytes();
  alias.path = input.Rest();
  std::vector<std::uint8_t> record;
  if (host::EncodeAlias(alias, record) != host::AliasStatus::Ok) {
    Hold(record.empty(), "what cannot be made leaves no record");
    return;
  }
  host::AliasRecord again;
  Hold(host::DecodeAlias(record, again) == host::AliasStatus::Ok, "a record made is understood");
  Hold(SameFacts(alias, again), "a record made tells what was to be told", again.path);
}

std::vector<RegionParameter> ReadParameters(Input& input) {
  std::vector<RegionParameter> parameters(input.Byte() % 10);
  for (RegionParameter& parameter : parameters) {
    parameter.key = input.Number<std::uint32_t>();
    parameter.type = input.Number<std::uint32_t>();
    parameter.data = Octets(input.ShortBytes());
  }
  return parameters;
}

/// Changes a sound message: header, keys, types and data of the parameters that the input names.
void Damage(RegionMessage& message, Input& input) {
  while (!input.IsEmpty()) {
    const std::uint8_t place = input.Byte();
    auto& list = (place & 1) != 0 ? message.region : message.parameters;
    RegionParameter& parameter = list[(place >> 1) % list.size()];
    switch (input.Byte() % 8) {
      case 0:
        parameter.key ^= input.Number<std::uint32_t>();
        break;
      case 1:
        parameter.type ^= input.Number<std::uint32_t>();
        break;
      case 2:
        parameter.data = Octets(input.ShortBytes());
        break;
      case 3:
        std::swap(parameter, list[0]);
        break;
      case 4:
        list.push_back(parameter);
        break;
      case 5:
        message.eventId ^= input.Byte();
        break;
      case 6:
        message.sendMode ^= input.Number<std::int32_t>();
        break;
      default:
        message.returnId = input.Number<std::int16_t>();
        break;
    }
  }
}

RegionMessage ReadMessage(Input& input) {
  RegionMessage message;
  message.eventClass = input.Number<std::uint32_t>();
  message.eventId = input.Number<std::uint32_t>();
  message.target = input.Number<std::uint32_t>();
  message.returnId = input.Number<std::int16_t>();
  message.transactionId = input.Number<std::int32_t>();
  message.sendMode = input.Number<std::int32_t>();
  message.timeoutTicks = input.Number<std::int32_t>();
  message.parameters = ReadParameters(input);
  message.region = ReadParameters(input);
  return message;
}

RegionPlacement ReadPlacement(Input& input) {
  RegionPlacement placement;
  placement.track = input.Number<std::int16_t>();
  placement.position = input.Number<std::int64_t>();
  placement.stream = input.Number<std::int16_t>();
  placement.relative = input.Flag();
  placement.start = input.Number<std::int32_t>();
  placement.stop = input.Number<std::int32_t>();
  return placement;
}

void Receive(const RegionMessage& message) {
  host::ReceivedRegion region;
  if (host::ReadRegionMessage(message, region) == host::noErr) {
    Hold(region.alias != nullptr && region.track >= 0, "a region that is received has its facts");
  }
  host::Session session;
  host::EmbeddedHost receiver(session);
  const std::int32_t status = receiver.Send(message);
  Hold((status == 0) == (session.Regions().size() == 1), "what is taken is placed, and no more");
}

/// What the system sends is received as it was told.
RegionMessage HoldSent(const RegionPlacement& placement, std::string_view name,
                       const std::string& path) {
  host::Session session;
  host::EmbeddedHost receiver(session);
  std::vector<std::uint8_t> alias;
  (void)receiver.MakeAlias(path.c_str(), alias);
  RegionMessage message = BuildRegionMessage(placement, name, alias);
  host::ReceivedRegion region;
  if (host::ReadRegionMessage(message, region) == host::noErr) {
    Hold(region.start == placement.start && region.stop == placement.stop &&
             region.stream == placement.stream &&
             region.position == static_cast<long>(placement.position),
         "a region is received as it was sent");
    Hold(region.name == name.substr(0, name.size() % 256), "so is its name", region.name);
  }
  host::Session other;
  host::EmbeddedHost inOne(other);
  const std::int32_t sent = receiver.Send(message);
  Hold(inOne.Place(path.c_str(), placement, name) == sent, "placing in one answers the same");
  Hold(session.Regions().size() == other.Regions().size(), "placing in one places the same");
  return message;
}

}  // namespace
}  // namespace velmora::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace velmora::fuzz;
  static const WorkFolder folder;
  static const std::string path = (WriteSounds(folder), folder.Path("one.wav"));
  Input input(bytes, size);
  switch (input.Byte() % 4) {
    case 0:
      HoldAlias(Octets(input.Rest()));
      break;
    case 1:
      HoldNames(input);
      break;
    case 2:
      Receive(ReadMessage(input));
      break;
    default: {
      const velmora::RegionPlacement placement = ReadPlacement(input);
      const std::string name(input.LongBytes());
      velmora::RegionMessage message = HoldSent(placement, name, path);
      Damage(message, input);
      Receive(message);
      break;
    }
  }
  return 0;
}
