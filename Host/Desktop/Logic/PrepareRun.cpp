#include "Desktop/Logic/PrepareRun.h"

#include <new>

namespace velmora::desktop {
namespace {

prepare::Prepared NotDone(prepare::Outcome outcome, const std::string& trouble = {}) {
  prepare::Prepared prepared;
  prepared.outcome = outcome;
  prepared.trouble = trouble;
  return prepared;
}

}  // namespace

void PrepareRun::Board::Write(double share, const std::string& what) {
  const std::lock_guard lock(mutex_);
  step_ = {share, what};
}

PrepareStep PrepareRun::Board::Read() const {
  const std::lock_guard lock(mutex_);
  return step_;
}

bool PrepareRun::Start(const std::string& path, const prepare::PrepareOptions& options) {
  board_ = std::make_shared<Board>();
  board_->Write(0, "Looking for the audio files");
  return run_.Start([=, board = board_, checker = checker_](const auto& stopped) {
    try {
      const check::CheckedProject checked = checker(path, options.check, stopped);
      if (stopped()) return NotDone(prepare::Outcome::Cancelled);
      return prepare::PrepareProject(checked, options, [&](double share, const std::string& what) {
        board->Write(share, what);
        return !stopped();
      });
    } catch (const std::bad_alloc&) {
      return NotDone(prepare::Outcome::Failed, "There is not enough memory for this project");
    }
  });
}

}  // namespace velmora::desktop
