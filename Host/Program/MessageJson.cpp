#include "Program/MessageJson.h"

#include <cstdint>
#include <string>
#include <vector>

#include "Embedded/AliasRecord.h"

namespace velmora::program {
namespace {

using host::Json;

std::string CodeText(std::uint32_t code) {
  std::string text;
  for (int shift = 24; shift >= 0; shift -= 8) text += static_cast<char>(code >> shift & 0xFF);
  return text;
}

std::string Hex(const std::vector<std::uint8_t>& bytes) {
  constexpr const char* kDigits = "0123456789abcdef";
  std::string hex;
  hex.reserve(bytes.size() * 2);
  for (const std::uint8_t byte : bytes) {
    hex += kDigits[byte >> 4];
    hex += kDigits[byte & 0xF];
  }
  return hex;
}

Json ParameterJson(const RegionParameter& parameter) {
  Json json = {{"key", CodeText(parameter.key)},
               {"type", CodeText(parameter.type)},
               {"hex", Hex(parameter.data)}};
  host::AliasRecord alias;
  if (parameter.key == FourCharCode("FILE") &&
      host::DecodeAlias(parameter.data, alias) == host::AliasStatus::Ok) {
    json["path"] = alias.path;
  }
  return json;
}

Json ParametersJson(const std::vector<RegionParameter>& parameters) {
  Json json = Json::array();
  for (const RegionParameter& parameter : parameters) json.push_back(ParameterJson(parameter));
  return json;
}

}  // namespace

Json MessageJson(const RegionMessage& message) {
  return {
      {"class", CodeText(message.eventClass)},   {"id", CodeText(message.eventId)},
      {"target", CodeText(message.target)},      {"returnId", message.returnId},
      {"transactionId", message.transactionId},  {"sendMode", message.sendMode},
      {"timeout", message.timeoutTicks},         {"parameters", ParametersJson(message.parameters)},
      {"region", ParametersJson(message.region)}};
}

}  // namespace velmora::program
