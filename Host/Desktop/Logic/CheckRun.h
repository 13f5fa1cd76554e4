#pragma once

#include <functional>
#include <memory>
#include <string>

#include "Check/CheckProject.h"
#include "Desktop/Logic/BackgroundRun.h"

namespace velmora::desktop {

/// A checked project that several parts of the window look at; null if the check could not be made.
using CheckedPtr = std::shared_ptr<const check::CheckedProject>;

/// Checks a project; what check::CheckProject does.
using Checker =
    std::function<check::CheckedProject(const std::string& path, const check::CheckOptions& options,
                                        const std::function<bool()>& stopped)>;

/// check::CheckProject with listings of its own: folders may have changed since the last time.
[[nodiscard]] check::CheckedProject CheckAfresh(const std::string& path,
                                                const check::CheckOptions& options,
                                                const std::function<bool()>& stopped);

/// The check that follows each load, beside the window's work. What is taken is always that of the
/// project that was loaded last.
class CheckRun {
 public:
  /// `ended`: as BackgroundRun calls it.
  explicit CheckRun(std::function<void()> ended, Checker checker = CheckAfresh)
      : run_(std::move(ended)), checker_(std::move(checker)) {}

  /// False if there is no thread for it.
  [[nodiscard]] bool Start(const std::string& path, const check::CheckOptions& options);
  void Drop() { run_.Drop(); }
  [[nodiscard]] bool IsRunning() const { return run_.IsRunning(); }
  /// Null while the check runs, if there is none, or if it ran out of memory.
  [[nodiscard]] CheckedPtr Take() { return run_.Take().value_or(nullptr); }
  void Close() { run_.Close(); }

  /// For checks to come, in tests: one that takes as long as they need.
  void UseChecker(Checker checker) { checker_ = std::move(checker); }

 private:
  BackgroundRun<CheckedPtr> run_;
  Checker checker_;
};

}  // namespace velmora::desktop
