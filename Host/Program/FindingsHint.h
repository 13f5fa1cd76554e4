#pragma once

#include <atomic>
#include <future>
#include <string>

#include "Base/HelperThread.h"
#include "Check/CheckProject.h"
#include "Check/Glance.h"
#include "Model/ViewModel.h"

namespace velmora::program {

/// The line on standard error that names `velmora check` and says what becomes of a project that
/// fails, misplaces or loses something; nothing of a clean one, or of a file that cannot be read.
/// Looks for audio only where the system does, so that no folder is walked through.
///
/// A large project is looked through on a thread of its own from the start, while it is loaded and
/// its rows are printed: on a second core that costs nothing that anybody waits for.
class FindingsHint {
 public:
  /// @param path absolute
  explicit FindingsHint(std::string path, check::CheckOptions options = {});
  ~FindingsHint();
  FindingsHint(const FindingsHint&) = delete;
  FindingsHint& operator=(const FindingsHint&) = delete;

  /// Says the line, if there is one to say. `model` has loaded the path, or tried to.
  void Tell(const ViewModel& model);

 private:
  [[nodiscard]] check::GlanceResult Look() const;
  [[nodiscard]] std::string Troubles(const ViewModel& model);

  const std::string path_;
  check::CheckOptions options_;
  std::atomic<bool> cancelled_ = false;
  std::future<check::GlanceResult> look_;  ///< not valid for a small project
  HelperThread thread_;                    ///< last: it uses all of the above
};

}  // namespace velmora::program
