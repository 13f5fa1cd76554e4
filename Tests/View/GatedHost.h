#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <vector>

#include "Spot/RegionMessage.h"

namespace velmora::view {

/// Stands between a spot and the shell's receiver, and holds each region back until it is let
/// through: a spot takes as long as a scenario needs.
class GatedHost : public RegionHost {
 public:
  /// Puts a gate before the receiver of the spots to come.
  static GatedHost& Install();

  std::int32_t MakeAlias(const char* path, std::vector<std::uint8_t>& alias) override {
    return inner_.MakeAlias(path, alias);
  }
  std::int32_t Send(const RegionMessage& message) override;

  /// Lets that many more regions through.
  void LetThrough(int count);
  /// Lets all through from now on.
  void Open();

  /// Regions that have come to the gate.
  int Arrived() const;
  /// Waits until the region of this number, from 1, stands at the gate.
  void WaitForArrival(int number);

 private:
  explicit GatedHost(RegionHost& inner) : inner_(inner) {}

  RegionHost& inner_;
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  int arrived_ = 0;
  int passes_ = 0;
  bool open_ = false;
};

}  // namespace velmora::view
