#pragma once

#include <cstdint>
#include <functional>
#include <mutex>
#include <vector>

#include "Embedded/EmbeddedHost.h"
#include "Session/Session.h"
#include "Spot/RegionMessage.h"

namespace velmora::desktop {

/// The host of the shell's spots: an embedded host that a spot's thread fills while the main thread
/// reads. All operations may be called from any thread.
class SessionReceiver final : public RegionHost {
 public:
  /// `arrived` is called on the sender's thread when there is something to take and the last notice
  /// has been answered by TakeNew: many regions that land at once give one notice.
  explicit SessionReceiver(std::function<void()> arrived) : arrived_(std::move(arrived)) {}

  std::int32_t MakeAlias(const char* path, std::vector<std::uint8_t>& alias) override;
  std::int32_t Send(const RegionMessage& message) override;

  /// The regions that landed since the last call, in order of arrival.
  [[nodiscard]] std::vector<host::SessionRegion> TakeNew();
  [[nodiscard]] host::SessionSummary Summary() const;
  /// Empties the session. A spot that runs goes on into the new one.
  void Clear();

 private:
  std::function<void()> arrived_;
  mutable std::mutex mutex_;
  host::Session session_;
  host::EmbeddedHost host_{session_};
  std::size_t taken_ = 0;   ///< regions handed out by TakeNew
  bool announced_ = false;  ///< a notice is out that TakeNew has not answered
};

}  // namespace velmora::desktop
