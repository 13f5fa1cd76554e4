#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "Desktop/Logic/BackgroundRun.h"
#include "Desktop/Logic/SpottedSession.h"
#include "Session/SessionTarget.h"

namespace velmora::desktop {

/// Where a session is to be saved.
struct SaveRequest {
  const host::TargetKind* kind = nullptr;
  std::string path;  ///< absolute
  host::TargetChoices choices;
};

/// What came of it.
struct SaveOutcome {
  SaveRequest request;
  host::TargetOutcome made;
  bool cancelled = false;  ///< nothing was made, as the user wished
};

/// The writing of one target, beside the window's work. It reads a copy of the session.
class SaveRun {
 public:
  /// `ended`: as BackgroundRun calls it.
  explicit SaveRun(std::function<void()> ended) : run_(std::move(ended)) {}

  /// Not to be called while one runs. False if there is no thread for it.
  [[nodiscard]] bool Start(const SaveRequest& request,
                           std::shared_ptr<const SpottedSession> session);
  /// Asks it to end. The outcome says that it was cancelled, or that it had come to its end.
  void Stop() { run_.Stop(); }
  [[nodiscard]] bool IsRunning() const { return run_.IsRunning(); }
  /// How far it is, 0 to 1.
  [[nodiscard]] double Share() const { return *share_; }
  /// None while it runs.
  [[nodiscard]] std::optional<SaveOutcome> Take() { return run_.Take(); }
  /// Cancels it and returns when nothing of it is left.
  void Close() { run_.Close(); }

 private:
  std::shared_ptr<std::atomic<double>> share_ = std::make_shared<std::atomic<double>>(0);
  BackgroundRun<SaveOutcome> run_;
};

}  // namespace velmora::desktop
