#include "Base/SystemLog.h"

#include <cstdio>
#include <mutex>
#include <utility>

namespace velmora {
namespace {

struct Receiver {
  std::mutex mutex;
  std::function<void(const std::string&)> function;
};

Receiver& TheReceiver() {
  static Receiver& receiver = *new Receiver;  // outlives workers that log while the program ends
  return receiver;
}

}  // namespace

void SystemLog(const std::string& line) {
  Receiver& receiver = TheReceiver();
  std::function<void(const std::string&)> function;
  {
    const std::lock_guard lock(receiver.mutex);
    function = receiver.function;
  }
  if (function) {
    function(line);
  } else {
    std::fprintf(stderr, "%s\n", line.c_str());
  }
}

void SetSystemLog(std::function<void(const std::string&)> function) {
  Receiver& receiver = TheReceiver();
  const std::lock_guard lock(receiver.mutex);
  receiver.function = std::move(function);
}

}  // namespace velmora
