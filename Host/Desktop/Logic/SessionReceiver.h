#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Desktop/Logic/SessionSettings.h"
#include "Desktop/Logic/SpottedSession.h"
#include "Session/Session.h"
#include "Spot/RegionMessage.h"
#include "Spot/SpotQueue.h"

namespace velmora::desktop {

/// The host of the shell's spots: an embedded host that a spot's thread fills while the main thread
/// reads, and the keeper of what is known of these spots. All operations may be called from any
/// thread.
class SessionReceiver final : public RegionHost, public SpotFollower {
 public:
  /// `arrived` is called on the sender's thread when there is something to take and the last notice
  /// has been answered by TakeNew: many regions that land at once give one notice.
  /// `settings` answers with the session's rates and must outlive this; null for the usual ones.
  explicit SessionReceiver(std::function<void()> arrived,
                           const SessionSettings* settings = nullptr);
  ~SessionReceiver() override;
  SessionReceiver(const SessionReceiver&) = delete;
  SessionReceiver& operator=(const SessionReceiver&) = delete;

  std::int32_t MakeAlias(const char* path, std::vector<std::uint8_t>& alias) override;
  std::int32_t Send(const RegionMessage& message) override;

  void Began(const SpotProject& project, const SpotOptions& options) override;
  void Ended(const SpotOptions& options, bool finished) override;
  void FileMade(FilePass pass, std::int32_t event, const std::string& path,
                std::int32_t status) override;
  void RegionTried(std::int32_t event, RegionPiece piece, std::int32_t attempt,
                   std::int32_t status) override;
  void RegionGivenUp(std::int32_t event, RegionPiece piece, std::int32_t status) override;
  void CutLeftOut(std::int32_t event, const std::string& path) override;

  /// The regions that landed since the last call, in order of arrival.
  [[nodiscard]] std::vector<host::SessionRegion> TakeNew();
  [[nodiscard]] host::SessionSummary Summary() const;
  /// Empties the session. A spot that runs goes on into the new one.
  void Clear();

  /// A project was loaded, so that a spot of it can be told by its file. Both are its own.
  void Loaded(const AES31Project* project, const std::string& path);
  /// Whether spots to come make fades and gain facts of the regions, where they do not render them.
  void SetNative(bool native);

  /// A spot is at work, be it aborted: the session is not whole.
  [[nodiscard]] bool IsFilling() const;
  [[nodiscard]] bool HasRegions() const;
  /// A spot has come to its end since the session was emptied, placed or not.
  [[nodiscard]] bool HasRecord() const;
  /// The session as it stands now.
  [[nodiscard]] std::shared_ptr<const SpottedSession> Copy() const;
  void TargetWritten(const host::RecordedTarget& target);

 private:
  struct State;
  const std::unique_ptr<State> state_;
};

}  // namespace velmora::desktop
