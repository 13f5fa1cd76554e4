#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "Desktop/Logic/BackgroundRun.h"
#include "Desktop/Logic/CheckRun.h"
#include "Prepare/PrepareProject.h"

namespace velmora::desktop {

/// How far a preparation is.
struct PrepareStep {
  double share = 0;  ///< 0 to 1
  std::string what;  ///< what is being made
};

/// The preparation of one project, beside the window's work. It checks anew, with the media folders
/// that the user has added since the project was loaded.
class PrepareRun {
 public:
  /// `ended`: as BackgroundRun calls it.
  explicit PrepareRun(std::function<void()> ended, Checker checker = CheckAfresh)
      : run_(std::move(ended)), checker_(std::move(checker)) {}

  /// False if there is no thread for it.
  [[nodiscard]] bool Start(const std::string& path, const prepare::PrepareOptions& options);
  /// Asks it to end. The outcome says that it was cancelled, or that it had come to its end.
  void Stop() { run_.Stop(); }
  [[nodiscard]] bool IsRunning() const { return run_.IsRunning(); }
  [[nodiscard]] PrepareStep Step() const { return board_->Read(); }
  /// None while it runs.
  [[nodiscard]] std::optional<prepare::Prepared> Take() { return run_.Take(); }
  /// Cancels it and returns when nothing of it is left.
  void Close() { run_.Close(); }

  /// As CheckRun has it.
  void UseChecker(Checker checker) { checker_ = std::move(checker); }

 private:
  /// What the preparing thread writes and the main thread reads.
  class Board {
   public:
    void Write(double share, const std::string& what);
    [[nodiscard]] PrepareStep Read() const;

   private:
    mutable std::mutex mutex_;
    PrepareStep step_;
  };

  std::shared_ptr<Board> board_ = std::make_shared<Board>();
  BackgroundRun<prepare::Prepared> run_;
  Checker checker_;
};

}  // namespace velmora::desktop
