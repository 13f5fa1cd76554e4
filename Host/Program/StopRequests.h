#pragma once

#include <csignal>

// Ctrl-C (SIGINT) and requests to end (SIGTERM, SIGHUP). Those that whoever started the program
// lets pass by, as nohup does, stay ignored.

namespace velmora::program {

/// From now on a request asks the run to stop between events and to take away what is half made; a
/// second one of its kind ends the program.
void StopOnInterrupt();

/// Whether a stop has been asked for.
[[nodiscard]] bool Interrupted();

/// While this lives requests only ask to stop, however many come: what is half made has to go
/// first.
class OnlyAskToStop {
 public:
  OnlyAskToStop();
  /// As it was before.
  ~OnlyAskToStop();
  OnlyAskToStop(const OnlyAskToStop&) = delete;
  OnlyAskToStop& operator=(const OnlyAskToStop&) = delete;

 private:
  struct sigaction interrupt_ {};
  struct sigaction terminate_ {};
  struct sigaction hangUp_ {};
};

}  // namespace velmora::program
