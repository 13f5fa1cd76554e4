#include "Program/StopRequests.h"

#include <atomic>

namespace velmora::program {
namespace {

std::atomic<bool> interrupted{false};
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler may take no lock");

/// Lets a signal ask for a stop, unless it is ignored.
/// @param flags beside SA_RESTART
/// @return what it did before
struct sigaction Catch(int signal, int flags) {
  struct sigaction before {};
  sigaction(signal, nullptr, &before);
  if (before.sa_handler == SIG_IGN) return before;
  struct sigaction action {};
  action.sa_handler = [](int) { interrupted = true; };
  action.sa_flags = flags | SA_RESTART;
  sigaction(signal, &action, nullptr);
  return before;
}

}  // namespace

void StopOnInterrupt() {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) Catch(signal, static_cast<int>(SA_RESETHAND));
}

bool Interrupted() {
  return interrupted;
}

OnlyAskToStop::OnlyAskToStop()
    : interrupt_(Catch(SIGINT, 0)), terminate_(Catch(SIGTERM, 0)), hangUp_(Catch(SIGHUP, 0)) {}

OnlyAskToStop::~OnlyAskToStop() {
  sigaction(SIGINT, &interrupt_, nullptr);
  sigaction(SIGTERM, &terminate_, nullptr);
  sigaction(SIGHUP, &hangUp_, nullptr);
}

}  // namespace velmora::program
