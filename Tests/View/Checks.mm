#include "View/Checks.h"

#include <chrono>
#include <cstdio>
#include <thread>

#import "View/Driver.h"
#import "View/EventWatch.h"

namespace velmora::view {

namespace {

int failures = 0;

}  // namespace

void Report(bool passed, const std::string& what, const std::string& expected,
            const std::string& got) {
  if (passed) {
    std::printf("ok %s\n", what.c_str());
  } else {
    ++failures;
    std::printf("FAILED %s: expected %s, got %s\n", what.c_str(), expected.c_str(), got.c_str());
  }
  std::fflush(stdout);
}

int FailureCount() {
  return failures;
}

void Note(const std::string& line) {
  std::printf("%s\n", line.c_str());
  std::fflush(stdout);
}

void CheckContains(const std::string& what, const std::string& part, const std::string& whole) {
  Report(whole.find(part) != std::string::npos, what, "something with " + Shown(part),
         Shown(whole));
}

void WaitFor(const std::string& what, const std::function<bool()>& condition, double seconds) {
  using Clock = std::chrono::steady_clock;
  const auto end = Clock::now() + std::chrono::duration<double>(seconds);
  while (!Ask(condition)) {
    if (Clock::now() > end) {
      Report(false, what, "it happens", "nothing within " + Shown(seconds) + " s");
      Note("the latest events that the application took:\n" + RecentEvents());
      throw ScenarioFailed();
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(15));
  }
  Report(true, what, "", "");
}

}  // namespace velmora::view
