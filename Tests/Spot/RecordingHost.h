#pragma once

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <functional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "Spot/RegionMessage.h"

namespace velmora::test {

/// What a run did, call by call, in the order of the calls.
using Journal = std::vector<std::string>;

/// The parameter's data as a number in the machine's byte order; the size must fit.
template <class Number>
Number ValueOf(const RegionParameter& parameter) {
  if (parameter.data.size() != sizeof(Number)) {
    throw std::length_error("parameter of another size");
  }
  Number value{};
  std::memcpy(&value, parameter.data.data(), sizeof value);
  return value;
}

/// What a region message says, for comparison as a whole.
struct Placed {
  std::string file;  ///< as the alias names it
  std::int32_t trak = 0;
  std::int32_t tkOf = 0;
  std::int64_t position = 0;
  std::int64_t start = 0;
  std::int64_t stop = 0;
  std::string name;

  bool operator==(const Placed&) const = default;
};

inline void PrintTo(const Placed& placed, std::ostream* out) {
  *out << placed.file << " Trak " << placed.trak << " TkOf " << placed.tkOf << " SMSt "
       << placed.position << " Star " << placed.start << " Stop " << placed.stop << " Name "
       << placed.name;
}

/// Reads a message back, with the alias as RecordingHost makes it.
inline Placed Read(const RegionMessage& message) {
  const auto& alias = message.parameters.at(0).data;
  const auto& name = message.region.at(2).data;
  return {.file = {alias.begin(), alias.end()},
          .trak = ValueOf<std::int16_t>(message.parameters.at(1)),
          .tkOf = ValueOf<std::int16_t>(message.parameters.at(3)),
          .position = ValueOf<long>(message.parameters.at(4)),
          .start = ValueOf<std::int32_t>(message.region.at(0)),
          .stop = ValueOf<std::int32_t>(message.region.at(1)),
          .name = {name.begin() + 1, name.begin() + 1 + name.at(0)}};
}

/// A host that keeps every message. The alias of a file is its path below `root`, or -43 for a path
/// that does not exist.
class RecordingHost : public RegionHost {
 public:
  explicit RecordingHost(Journal& journal, std::string root = {})
      : journal_(journal), root_(std::move(root)) {}

  std::int32_t MakeAlias(const char* path, std::vector<std::uint8_t>& alias) override {
    std::string name = path;
    if (!root_.empty() && name.starts_with(root_ + "/")) name.erase(0, root_.size() + 1);
    journal_.push_back("alias " + name);
    if (!std::filesystem::exists(path)) return -43;
    alias.assign(name.begin(), name.end());
    return 0;
  }
  std::int32_t Send(const RegionMessage& message) override {
    journal_.push_back("send");
    messages.push_back(message);
    if (onSend) onSend();
    return answer ? answer(messages.size()) : 0;
  }

  std::vector<Placed> PlacedRegions() const {
    std::vector<Placed> all;
    for (const RegionMessage& message : messages) all.push_back(Read(message));
    return all;
  }

  std::vector<RegionMessage> messages;
  /// The status of the n-th send, from 1; unset means that all are taken.
  std::function<std::int32_t(std::size_t)> answer;
  std::function<void()> onSend;

 private:
  Journal& journal_;
  std::string root_;
};

}  // namespace velmora::test
