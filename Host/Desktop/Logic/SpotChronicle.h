#pragma once

#include <memory>
#include <string>

#include "Desktop/Logic/SpottedSession.h"
#include "Recording/LeftOut.h"
#include "Recording/SpotRecording.h"
#include "Session/Session.h"
#include "Session/SessionHost.h"
#include "Spot/SpotWorker.h"

namespace velmora::desktop {

/// What is known of the spots that filled one session, kept while they run. Several spots of the
/// same project make one record; a spot of another project begins a new one, in which the regions
/// of earlier spots are what their messages tell and no more. Not synchronised.
class SpotChronicle {
 public:
  /// Session and host must outlive this.
  SpotChronicle(host::Session& session, const host::SessionHost& host)
      : session_(session), host_(host) {}

  void Begin(const SpotProject& project, const std::string& projectPath, const SpotOptions& options,
             const host::SessionRates& rates, recording::SpotRecording::NativeParts native);
  void End(const SpotOptions& options, bool finished);

  /// Both null while no spot runs.
  [[nodiscard]] recording::SpotRecording* Recording() const;
  [[nodiscard]] recording::LeftOut* LeftOut() const;

  [[nodiscard]] bool IsRunning() const { return run_ != nullptr; }
  /// A spot has come to its end since the session was emptied.
  [[nodiscard]] bool HasRecord() const { return hasRecord_; }

  /// A copy of the session and of what is known of it.
  [[nodiscard]] std::shared_ptr<const SpottedSession> Copy() const;

  /// A target was written from the session: a report tells of it.
  void TargetWritten(host::RecordedTarget target);

  /// The session was emptied. A spot that runs goes on, and tells of what comes from now on.
  void Clear();

 private:
  struct Run;
  void Join(host::SpotRecord fresh);
  void StartAnew(host::SpotRecord fresh, std::size_t earlierRegions);

  host::Session& session_;
  const host::SessionHost& host_;
  std::shared_ptr<Run> run_;
  bool hasRecord_ = false;
  host::SessionRates rates_;
  host::SpotRecord record_;
  check::CheckOptions reading_;
};

}  // namespace velmora::desktop
